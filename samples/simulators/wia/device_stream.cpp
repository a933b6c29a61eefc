#include "device_stream.h"

#include <utility>

namespace kestraboot::simulators
{
namespace
{

template <typename Value>
HRESULT Put(IStream& stream, const Value& value)
{
    return stream.Write(&value, sizeof value, nullptr);
}

template <typename Value>
bool Get(IStream& stream, Value& value)
{
    ULONG got = 0;
    return SUCCEEDED(stream.Read(&value, sizeof value, &got)) && got == sizeof value;
}

bool GetDevice(IStream& stream, ListedDevice& device)
{
    DWORD length = 0;
    if (!Get(stream, device.type) || !Get(stream, length) || length > 65'536) {
        return false;
    }
    for (DWORD i = 0; i < length; ++i) {
        DWORD character = 0;
        if (!Get(stream, character)) {
            return false;
        }
        device.id += static_cast<wchar_t>(character);
    }
    return true;
}

} // namespace

DWORD StreamSize(const std::vector<ListedDevice>& devices)
{
    std::size_t numbers = 1;
    for (const ListedDevice& device : devices) {
        numbers += 2 + device.id.size();
    }
    return static_cast<DWORD>(numbers * sizeof(DWORD));
}

HRESULT WriteDevices(IStream& stream, const std::vector<ListedDevice>& devices)
{
    HRESULT result = Put(stream, static_cast<DWORD>(devices.size()));
    for (const ListedDevice& device : devices) {
        result = SUCCEEDED(result) ? Put(stream, device.type) : result;
        result = SUCCEEDED(result) ? Put(stream, static_cast<DWORD>(device.id.size())) : result;
        for (const wchar_t character : device.id) {
            result = SUCCEEDED(result) ? Put(stream, static_cast<DWORD>(character)) : result;
        }
    }
    return result;
}

bool ReadDevices(IStream& stream, std::vector<ListedDevice>& devices)
{
    DWORD count = 0;
    if (!Get(stream, count) || count > 65'536) {
        return false;
    }
    for (; count > 0; --count) {
        ListedDevice device = {};
        if (!GetDevice(stream, device)) {
            return false;
        }
        devices.push_back(std::move(device));
    }
    return true;
}

} // namespace kestraboot::simulators
