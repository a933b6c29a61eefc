#include "tests/endurance/fuzz/value_generator.h"

namespace kestraboot::fuzz
{
namespace
{

DWORD AnyType(Random& random)
{
    return random.Pick<DWORD>({REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD,
                               REG_DWORD_BIG_ENDIAN, REG_LINK, REG_MULTI_SZ, REG_QWORD, 4711});
}

} // namespace

void PutAnyText(Random& random, HiveKey& key, const std::wstring& name, const std::wstring& text)
{
    const std::string terminator(sizeof(wchar_t), '\0');
    std::string bytes = BytesOf(text);
    switch (random.Below(12)) {
    case 0:
        break; // no terminator
    case 1:
        bytes += terminator + BytesOf(random.Text()) + terminator;
        break;
    case 2:
        bytes += "\x41"; // the low half of one more character
        break;
    case 3:
        bytes += terminator + "\x41";
        break;
    case 4:
        bytes.resize(random.Below(bytes.size() + 1));
        break;
    case 5:
        bytes += terminator + terminator + terminator;
        break;
    default:
        bytes += terminator;
    }
    key.Put(name, random.Chance(75) ? REG_SZ : AnyType(random), std::move(bytes));
}

void PutAnyNumber(Random& random, HiveKey& key, const std::wstring& name)
{
    const std::uint32_t number = random.Pick<std::uint32_t>(
        {0, 0, 1, 1, 1, 2, 3, 5, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF, 0x01000000});
    std::string bytes(reinterpret_cast<const char*>(&number), sizeof number);
    if (random.Chance(15)) {
        bytes.resize(random.Below(9), '\x02');
    }
    key.Put(name, random.Chance(80) ? REG_DWORD : AnyType(random), std::move(bytes));
}

} // namespace kestraboot::fuzz
