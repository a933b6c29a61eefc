#include "tests/support/import_patch.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

HMODULE moduleUnderTest = nullptr;

template <typename Record>
Record* At(HMODULE module, std::uintptr_t offset)
{
    return reinterpret_cast<Record*>(reinterpret_cast<std::uintptr_t>(module) + offset);
}

std::vector<void**> FindSlots(HMODULE module, const char* function)
{
    std::vector<void**> slots;
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(module, static_cast<std::uintptr_t>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); dll->Name != 0;
         ++dll) {
        const auto* names = At<IMAGE_THUNK_DATA64>(module, dll->OriginalFirstThunk);
        auto* addresses = At<IMAGE_THUNK_DATA64>(module, dll->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) {
                continue;
            }
            const auto* import = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), function) == 0) {
                slots.push_back(reinterpret_cast<void**>(&addresses->u1.Function));
            }
        }
    }
    return slots;
}

struct Lookup {
    const char* function;
    void* replacement;
};

std::vector<Lookup> lookups;
std::optional<ImportPatch> lookupPatch; ///< while there are any

FARPROC WINAPI FindReplaced(HMODULE library, const char* name)
{
    constexpr std::uintptr_t kHighestOrdinal = 0xFFFF;
    if (reinterpret_cast<std::uintptr_t>(name) > kHighestOrdinal) {
        for (auto lookup = lookups.rbegin(); lookup != lookups.rend(); ++lookup) {
            if (std::strcmp(lookup->function, name) == 0) {
                return reinterpret_cast<FARPROC>(lookup->replacement);
            }
        }
    }
    return reinterpret_cast<decltype(&FindReplaced)>(lookupPatch->Original())(library, name);
}

void Store(void** slot, void* value)
{
    DWORD before = 0;
    ::VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = value;
    ::VirtualProtect(slot, sizeof *slot, before, &before);
}

} // namespace

HMODULE ModuleUnderTest() noexcept
{
    return moduleUnderTest != nullptr ? moduleUnderTest : ::GetModuleHandleW(nullptr);
}

void SetModuleUnderTest(HMODULE module) noexcept
{
    moduleUnderTest = module;
}

ImportPatch::ImportPatch(const char* function, void* with)
    : slots(FindSlots(ModuleUnderTest(), function)), replacement(with)
{
    if (slots.empty()) {
        throw std::logic_error(std::string("the module under test does not import ") + function);
    }
    original = *slots.front();
    for (void** const slot : slots) {
        Store(slot, replacement);
    }
}

ImportPatch::~ImportPatch()
{
    for (void** const slot : slots) {
        Store(slot, original);
    }
}

LookupPatch::LookupPatch(const char* function, void* replacement)
    : original(reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), function)))
{
    if (lookups.empty()) {
        lookupPatch.emplace("GetProcAddress", FindReplaced);
    }
    lookups.push_back({function, replacement});
}

LookupPatch::~LookupPatch()
{
    lookups.pop_back(); // the most recent one, because scopes nest
    if (lookups.empty()) {
        lookupPatch.reset();
    }
}

} // namespace kestraboot::tests
