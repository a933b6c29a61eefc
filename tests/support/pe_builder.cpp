#include "tests/support/pe_builder.h"

namespace kestraboot::tests
{
namespace
{

/// The only section: its contents, and the address at which each part is loaded.
class Section
{
public:
    std::uint32_t Add(const std::string& more)
    {
        const std::uint32_t address = Address(bytes.size());
        bytes += more;
        return address;
    }
    std::uint32_t AddName(const std::string& name) { return Add(name + '\0'); }
    std::uint32_t AddNumber(std::uint32_t number)
    {
        std::string four(4, '\0');
        PutNumber(four, 0, number);
        return Add(four);
    }

    static std::uint32_t Address(std::size_t offset)
    {
        return kSectionAddress + static_cast<std::uint32_t>(offset);
    }

    std::string bytes;
};

void AddExports(Section& section, const std::vector<std::string>& names)
{
    const auto count = static_cast<std::uint32_t>(names.size());
    const std::size_t directory = section.bytes.size();
    section.Add(std::string(40, '\0'));
    PutNumber(section.bytes, directory + 16, 1); // the first ordinal
    PutNumber(section.bytes, directory + 20, count);
    PutNumber(section.bytes, directory + 24, count);
    std::vector<std::uint32_t> addresses;
    for (const std::string& name : names) {
        addresses.push_back(section.AddName(name));
    }
    PutNumber(section.bytes, directory + 28, Section::Address(section.bytes.size()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        section.AddNumber(kSectionAddress); // of some code
    }
    PutNumber(section.bytes, directory + 32, Section::Address(section.bytes.size()));
    for (const std::uint32_t address : addresses) {
        section.AddNumber(address);
    }
}

std::uint32_t AddImports(Section& section, const std::vector<std::string>& names)
{
    std::vector<std::uint32_t> addresses;
    for (const std::string& name : names) {
        addresses.push_back(section.AddName(name));
    }
    const std::uint32_t table = Section::Address(section.bytes.size());
    for (const std::uint32_t address : addresses) {
        section.Add(std::string(12, '\0'));
        section.AddNumber(address);
        section.AddNumber(0);
    }
    section.Add(std::string(20, '\0'));
    return table;
}

} // namespace

std::string PeFile::Bytes() const
{
    Section section;
    if (!exports.empty()) {
        AddExports(section, exports);
    }
    const std::uint32_t imports = needs.empty() ? 0 : AddImports(section, needs);

    std::string bytes(kSectionAt, '\0');
    bytes.replace(0, 2, "MZ");
    PutNumber(bytes, 0x3C, kPeHeaderAt);
    bytes.replace(kPeHeaderAt, 2, "PE");
    PutNumber(bytes, kPeHeaderAt + 4, machine | 1U << 16); // one section
    PutNumber(bytes, kPeHeaderAt + 20, 240 | (library ? 0x2022U : 0x0022U) << 16);
    PutNumber(bytes, kPeHeaderAt + 24, machine == 0x8664 ? 0x20B : 0x10B);
    PutNumber(bytes, kPeHeaderAt + 24 + 108, 16); // directories
    PutNumber(bytes, kExportsEntryAt, exports.empty() ? 0 : kSectionAddress);
    PutNumber(bytes, kImportsEntryAt, imports);
    const auto size = static_cast<std::uint32_t>(section.bytes.size());
    PutNumber(bytes, kSectionHeaderAt + 8, size);
    PutNumber(bytes, kSectionHeaderAt + 12, kSectionAddress);
    PutNumber(bytes, kSectionHeaderAt + 16, size);
    PutNumber(bytes, kSectionHeaderAt + 20, kSectionAt);
    return bytes + section.bytes + padding;
}

void PutNumber(std::string& bytes, std::size_t at, std::uint32_t number)
{
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(at + i) = static_cast<char>(number >> (8 * i) & 0xFF);
    }
}

} // namespace kestraboot::tests
