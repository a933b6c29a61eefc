// A call through a gated slot runs
//   slot's own code:  mov eax, index ; mov r11, common ; jmp r11
//   common:           save the argument registers, ask, restore them, then jump to the original with the
//                     caller's stack unchanged, or return the failing value.
// No frame of ours is on the stack while the original runs, so that exceptions pass as always.
#include "tests/endurance/faults/call_gate.h"

#include "tests/endurance/faults/failure_table.h"

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

/// The registers that the common code saves, from the lowest address up. The return address follows.
struct SavedRegisters {
    std::uint64_t integer[4];
    std::uint64_t vector[8];
    std::uint64_t unused;
    std::uint64_t result;
    std::uint64_t padding;
    std::uint64_t returnAddress;
    std::uint64_t home[4];
    std::uint64_t further[1];
};
static_assert(offsetof(SavedRegisters, result) == 0x68);
static_assert(offsetof(SavedRegisters, returnAddress) == 0x78);

constexpr std::size_t kSlotCode = 32;
constexpr std::size_t kCommonCode = 256;

CallGate::Decide decision = nullptr;
const std::vector<CallGate::Slot>* gatedSlots = nullptr;

void* Ask(std::uint64_t slot, SavedRegisters* saved) noexcept
{
    const CallGate::Slot& gated = (*gatedSlots)[slot];
    const bool measures = gated.withoutBuffer != nullptr && saved->integer[1] == 0;
    GatedCall call = {gated.function, measures ? gated.withoutBuffer : gated.failures,
                      gated.original, saved->integer,
                      saved->further, 0};
    if (decision(call)) {
        return gated.original;
    }
    saved->result = call.result;
    return nullptr;
}

class Emitter
{
public:
    explicit Emitter(std::uint8_t* to) : next(to) {}
    void Bytes(std::initializer_list<std::uint8_t> bytes)
    {
        for (const std::uint8_t byte : bytes) {
            *next++ = byte;
        }
    }
    template <typename Value>
    void Put(Value value)
    {
        std::memcpy(next, &value, sizeof value);
        next += sizeof value;
    }

private:
    std::uint8_t* next;
};

void EmitCommon(std::uint8_t* to)
{
    Emitter out(to);
    out.Bytes({0x48, 0x81, 0xEC, 0x98, 0, 0, 0}); // sub rsp, 98h
    out.Bytes({0x48, 0x89, 0x4C, 0x24, 0x20});    // mov [rsp+20h], rcx
    out.Bytes({0x48, 0x89, 0x54, 0x24, 0x28});    // mov [rsp+28h], rdx
    out.Bytes({0x4C, 0x89, 0x44, 0x24, 0x30});    // mov [rsp+30h], r8
    out.Bytes({0x4C, 0x89, 0x4C, 0x24, 0x38});    // mov [rsp+38h], r9
    out.Bytes({0x0F, 0x11, 0x44, 0x24, 0x40});    // movups [rsp+40h], xmm0
    out.Bytes({0x0F, 0x11, 0x4C, 0x24, 0x50});    // movups [rsp+50h], xmm1
    out.Bytes({0x0F, 0x11, 0x54, 0x24, 0x60});    // movups [rsp+60h], xmm2
    out.Bytes({0x0F, 0x11, 0x5C, 0x24, 0x70});    // movups [rsp+70h], xmm3
    out.Bytes({0x89, 0xC1});                      // mov ecx, eax
    out.Bytes({0x48, 0x8D, 0x54, 0x24, 0x20});    // lea rdx, [rsp+20h]
    out.Bytes({0x48, 0xB8});                      // mov rax, Ask
    out.Put(reinterpret_cast<void*>(&Ask));
    out.Bytes({0xFF, 0xD0});                            // call rax
    out.Bytes({0x48, 0x8B, 0x4C, 0x24, 0x20});          // mov rcx, [rsp+20h]
    out.Bytes({0x48, 0x8B, 0x54, 0x24, 0x28});          // mov rdx, [rsp+28h]
    out.Bytes({0x4C, 0x8B, 0x44, 0x24, 0x30});          // mov r8, [rsp+30h]
    out.Bytes({0x4C, 0x8B, 0x4C, 0x24, 0x38});          // mov r9, [rsp+38h]
    out.Bytes({0x0F, 0x10, 0x44, 0x24, 0x40});          // movups xmm0, [rsp+40h]
    out.Bytes({0x0F, 0x10, 0x4C, 0x24, 0x50});          // movups xmm1, [rsp+50h]
    out.Bytes({0x0F, 0x10, 0x54, 0x24, 0x60});          // movups xmm2, [rsp+60h]
    out.Bytes({0x0F, 0x10, 0x5C, 0x24, 0x70});          // movups xmm3, [rsp+70h]
    out.Bytes({0x48, 0x85, 0xC0});                      // test rax, rax
    out.Bytes({0x74, 0x09});                            // jz over the next two
    out.Bytes({0x48, 0x81, 0xC4, 0x98, 0, 0, 0});       // add rsp, 98h
    out.Bytes({0xFF, 0xE0});                            // jmp rax
    out.Bytes({0x48, 0x8B, 0x84, 0x24, 0x88, 0, 0, 0}); // mov rax, [rsp+88h]
    out.Bytes({0x48, 0x81, 0xC4, 0x98, 0, 0, 0});       // add rsp, 98h
    out.Bytes({0xC3});                                  // ret
}

void EmitSlot(std::uint8_t* to, std::uint32_t index, const std::uint8_t* common)
{
    Emitter out(to);
    out.Bytes({0xB8}); // mov eax, index
    out.Put(index);
    out.Bytes({0x49, 0xBB}); // mov r11, common
    out.Put(common);
    out.Bytes({0x41, 0xFF, 0xE3}); // jmp r11
}

template <typename Record>
Record* At(HMODULE module, std::uintptr_t offset)
{
    return reinterpret_cast<Record*>(reinterpret_cast<std::uintptr_t>(module) + offset);
}

bool IsCode(const void* address)
{
    MEMORY_BASIC_INFORMATION memory = {};
    ::VirtualQuery(address, &memory, sizeof memory);
    constexpr DWORD kExecutable =
        PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return (memory.Protect & kExecutable) != 0; // a variable has a slot too
}

std::vector<CallGate::Slot> FindSlots(HMODULE module)
{
    std::vector<CallGate::Slot> slots;
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS64>(module, static_cast<std::uintptr_t>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); dll->Name != 0;
         ++dll) {
        const std::string_view library(At<char>(module, dll->Name));
        if (library.starts_with("lib") || library == "kestraboot.dll") {
            continue; // the C++ runtime: only memory fails there; the library has its own
                      // scenes
        }
        const auto* names = At<IMAGE_THUNK_DATA64>(module, dll->OriginalFirstThunk);
        auto* addresses = At<IMAGE_THUNK_DATA64>(module, dll->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            auto* const address = reinterpret_cast<void**>(&addresses->u1.Function);
            if (!IsCode(*address)) {
                continue;
            }
            if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) {
                throw std::logic_error("a function is imported by its number: name it");
            }
            const auto* import = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            const auto* const name = reinterpret_cast<const char*>(import->Name);
            slots.push_back({name, address, *address, FailuresOf(name), FailuresWithoutBufferOf(name)});
        }
    }
    return slots;
}

} // namespace

CallGate::CallGate(HMODULE module, Decide decide)
    : slots(FindSlots(module)),
      code(static_cast<std::uint8_t*>(::VirtualAlloc(nullptr, kCommonCode + slots.size() * kSlotCode,
                                                     MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE)))
{
    if (code == nullptr) {
        throw std::bad_alloc();
    }
    decision = decide;
    gatedSlots = &slots;
    EmitCommon(code);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        EmitSlot(code + kCommonCode + i * kSlotCode, static_cast<std::uint32_t>(i), code);
    }
    StoreAll(true);
}

CallGate::~CallGate()
{
    StoreAll(false);
    ::VirtualFree(code, 0, MEM_RELEASE);
}

void CallGate::StoreAll(bool gated) const
{
    for (std::size_t i = 0; i < slots.size(); ++i) {
        DWORD before = 0;
        ::VirtualProtect(slots[i].address, sizeof(void*), PAGE_READWRITE, &before);
        *slots[i].address = gated ? code + kCommonCode + i * kSlotCode : slots[i].original;
        ::VirtualProtect(slots[i].address, sizeof(void*), before, &before);
    }
}

} // namespace kestraboot::tests
