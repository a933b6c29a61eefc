#include "tests/endurance/fuzz/wia_generator.h"

namespace kestraboot::fuzz
{
namespace
{

/// Of every type except those that would need memory of their own.
PROPVARIANT AnyValue(Random& random)
{
    PROPVARIANT value = {};
    value.vt = random.Pick<VARTYPE>({VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_UI4, VT_I8, VT_BOOL, VT_ERROR,
                                     VT_R8, VT_BSTR, VT_LPWSTR, VT_UNKNOWN, VT_VECTOR | VT_UI4});
    const bool pointer =
        value.vt == VT_BSTR || value.vt == VT_LPWSTR || value.vt == VT_UNKNOWN || value.vt == VT_R8;
    if (!pointer && (value.vt & VT_VECTOR) == 0) {
        value.ulVal = random.Pick({0U, 0x00010000U, 0x00020001U, random.Bits()});
    }
    return value;
}

} // namespace

WiaWorld AnyWia(Random& random, const std::vector<std::wstring>& ids)
{
    WiaWorld wia;
    wia.available = random.Chance(92);
    wia.enumerate =
        random.Pick<HRESULT>({S_OK, S_OK, S_OK, S_OK, S_OK, S_OK, S_FALSE, E_FAIL, E_NOTIMPL});
    wia.end = random.Pick<HRESULT>({S_FALSE, S_FALSE, E_FAIL});
    for (std::size_t i = random.Below(6); i > 0; --i) {
        tests::FakeWiaDevice device =
            tests::WiaDevice(ids[random.Below(ids.size())].c_str(), random.Pick({1U, 2U, 2U, 3U, 0U}));
        device.type.lVal ^= static_cast<LONG>(random.Below(3)); // another subtype
        if (random.Chance(15)) {
            device.id = AnyValue(random);
        }
        if (random.Chance(15)) {
            device.type = AnyValue(random);
        }
        device.read = random.Pick<HRESULT>({S_OK, S_OK, S_OK, S_OK, S_OK, S_OK, S_FALSE, E_FAIL});
        device.isNull = random.Chance(5);
        wia.devices.push_back(device);
    }
    return wia;
}

void Become(tests::FakeWiaService& service, const WiaWorld& wia)
{
    service.create = wia.available ? S_OK : REGDB_E_CLASSNOTREG;
    service.enumerate = wia.enumerate;
    service.end = wia.end;
    service.devices = wia.devices;
    service.released.clear();
}

} // namespace kestraboot::fuzz
