// Library files read as data, whole and in every state of damage.
#include "tools/ctl/check/pe_image.h"

#include "tests/support/pe_builder.h"

#include <windows.h>
#include <gmock/gmock.h>

#include <cstring>
#include <random>

namespace kestraboot::tools
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using tests::kExportsEntryAt;
using tests::kImportsEntryAt;
using tests::kPeHeaderAt;
using tests::kSectionAt;
using tests::kSectionHeaderAt;
using tests::PeFile;
using tests::PutNumber;

/// The file ends where the memory ends, so that a byte read behind it faults.
class AtEndOfMemory
{
public:
    explicit AtEndOfMemory(const std::string& bytes) : size(bytes.size())
    {
        const std::size_t pages = (size + kPage - 1) / kPage * kPage;
        memory = static_cast<std::uint8_t*>(
            ::VirtualAlloc(nullptr, pages + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before = 0;
        ::VirtualProtect(memory + pages, kPage, PAGE_NOACCESS, &before);
        begin = memory + pages - size;
        std::memcpy(begin, bytes.data(), size);
    }
    AtEndOfMemory(const AtEndOfMemory&) = delete;
    AtEndOfMemory& operator=(const AtEndOfMemory&) = delete;
    ~AtEndOfMemory() { ::VirtualFree(memory, 0, MEM_RELEASE); }

    [[nodiscard]] PeReading Read() const { return ReadPe({begin, size}); }

private:
    static constexpr std::size_t kPage = 4096;
    std::size_t size;
    std::uint8_t* memory;
    std::uint8_t* begin;
};

PeReading Read(const std::string& bytes)
{
    return AtEndOfMemory(bytes).Read();
}

void ExpectFault(const std::string& bytes, const wchar_t* fault)
{
    const PeReading reading = Read(bytes);
    EXPECT_FALSE(reading.image);
    EXPECT_STREQ(reading.fault, fault);
}

constexpr const wchar_t* kNoProgram = L"is no program file";
constexpr const wchar_t* kCutOff = L"is cut off in the middle, or damaged";

TEST(PeImage, DescribesALibraryAndItsNeeds)
{
    PeFile file;
    file.exports = {"Alpha", "FxPluginMain"};
    file.needs = {"KERNEL32.dll", "helper.dll"};
    const PeReading reading = Read(file.Bytes());
    ASSERT_TRUE(reading.image);
    EXPECT_EQ(reading.image->machine, kMachine64Bit);
    EXPECT_TRUE(reading.image->isLibrary);
    EXPECT_THAT(reading.image->exports, ElementsAre("Alpha", "FxPluginMain"));
    EXPECT_THAT(reading.image->ordinals, ElementsAre(1U, 2U));
    EXPECT_THAT(reading.image->needs, ElementsAre("KERNEL32.dll", "helper.dll"));
    EXPECT_TRUE(HasExport(*reading.image, "FxPluginMain"));
    EXPECT_FALSE(HasExport(*reading.image, "fxpluginmain")) << "case counts, as for Windows";
}

TEST(PeImage, ReadsTheWindowsLibrariesOfThisProcess)
{
    // The output of a real linker: this very program.
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    FILE* const file = ::_wfopen(path, L"rb");
    ASSERT_NE(file, nullptr);
    std::string bytes(64 << 20, '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    const PeReading reading = Read(bytes);
    ASSERT_TRUE(reading.image) << testing::PrintToString(std::wstring(reading.fault));
    EXPECT_FALSE(reading.image->isLibrary);
    EXPECT_THAT(reading.image->needs, Contains("KERNEL32.dll"));
}

TEST(PeImage, ReadsTheMachineAloneOf32BitFiles)
{
    PeFile file;
    file.machine = kMachine32Bit;
    const PeReading reading = Read(file.Bytes());
    ASSERT_TRUE(reading.image);
    EXPECT_EQ(reading.image->machine, kMachine32Bit);
    EXPECT_THAT(reading.image->exports, IsEmpty());
    EXPECT_EQ(MachineName(kMachine32Bit), L"32-bit");
    EXPECT_EQ(MachineName(7), L"of machine type 7");
}

TEST(PeImage, DistinguishesAProgramFromALibrary)
{
    PeFile file;
    file.library = false;
    EXPECT_FALSE(Read(file.Bytes()).image->isLibrary);
}

TEST(PeImage, MayExportAndNeedNothing)
{
    PeFile file;
    file.exports.clear();
    file.needs.clear();
    const PeReading reading = Read(file.Bytes());
    ASSERT_TRUE(reading.image);
    EXPECT_THAT(reading.image->exports, IsEmpty());
    EXPECT_THAT(reading.image->needs, IsEmpty());
}

TEST(PeImage, RecognisesAFileThatIsNoProgram)
{
    for (const char* const text : {"", "M", "This is a text, and no library.",
                                   "\x7F"
                                   "ELF"}) {
        ExpectFault(text, kNoProgram);
    }
    std::string old = PeFile().Bytes();
    old.replace(kPeHeaderAt, 2, "NE"); // 16-bit Windows
    ExpectFault(old, kNoProgram);
}

TEST(PeImage, RecognisesAFileThatIsCutOffAtAnyByte)
{
    const std::string whole = PeFile().Bytes();
    ASSERT_TRUE(Read(whole).image);
    for (std::size_t length = 2; length < whole.size(); ++length) {
        ASSERT_NO_FATAL_FAILURE(ExpectFault(whole.substr(0, length), kCutOff)) << length;
    }
}

TEST(PeImage, ReadsNothingOutsideWhateverTheNumbersSay)
{
    const std::string whole = PeFile().Bytes();
    for (const std::uint32_t number : {0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 0xFFFFU, 1U}) {
        for (std::size_t at = 0; at + 4 <= whole.size(); ++at) {
            std::string bytes = whole;
            PutNumber(bytes, at, number);
            static_cast<void>(Read(bytes)); // a fault of the processor ends the test
        }
    }
}

TEST(PeImage, ReadsNothingOutsideOfRandomFiles)
{
    std::mt19937 random(20'261'121);
    for (int round = 0; round < 20'000; ++round) {
        std::string bytes = PeFile().Bytes();
        for (unsigned damage = random() % 8; damage > 0; --damage) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        bytes.resize(random() % 4 == 0 ? random() % bytes.size() : bytes.size());
        static_cast<void>(Read(bytes));
    }
}

TEST(PeImage, RefusesTablesLargerThanAnyRealOne)
{
    // A name of 500 characters, named by each of 16 million entries, would take 8 GB.
    std::string bytes = PeFile().Bytes();
    PutNumber(bytes, kSectionAt + 24, 0x10001);
    ExpectFault(bytes, kCutOff);
    bytes = PeFile().Bytes();
    PutNumber(bytes, kSectionAt + 20, 0x10001);
    ExpectFault(bytes, kCutOff);
    PeFile longName;
    longName.exports = {std::string(513, 'x')};
    ExpectFault(longName.Bytes(), kCutOff);
    longName.exports = {std::string(512, 'x')};
    EXPECT_TRUE(Read(longName.Bytes()).image);
}

TEST(PeImage, EndsTheListOfNeedsAtTheEndOfTheFile)
{
    // The list exceeds the end, because its terminating entry is missing.
    std::string bytes = PeFile().Bytes();
    bytes.resize(bytes.size() - 20);
    PutNumber(bytes, kSectionHeaderAt + 16, static_cast<std::uint32_t>(bytes.size() - kSectionAt));
    ExpectFault(bytes, kCutOff);
}

TEST(PeImage, RefusesAddressesInNoSection)
{
    for (const std::size_t entry : {kExportsEntryAt, kImportsEntryAt}) {
        std::string bytes = PeFile().Bytes();
        PutNumber(bytes, entry, 0x900000);
        ExpectFault(bytes, kCutOff);
    }
}

} // namespace
} // namespace kestraboot::tools
