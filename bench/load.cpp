// Loads and unloads the library in turn with a DLL of the same size and imports that only scans the
// drives: bench_load ROW SIZE ROUNDS. The size names the other loaded DLLs: "needs" for the DLLs that
// both need, as in a host that has loaded them; "alone" for none of them.
#include "bench/contest.h"

#include <windows.h>
#include <cstdio>
#include <stdexcept>

using namespace kestraboot::bench;

namespace
{

void LoadAndUnload(const wchar_t* dll)
{
    const HMODULE module = ::LoadLibraryW(dll);
    if (module == nullptr) {
        throw std::runtime_error("cannot load a DLL: error " + std::to_string(::GetLastError()));
    }
    ::FreeLibrary(module);
    if (::GetModuleHandleW(dll) != nullptr) {
        throw std::runtime_error("a DLL was not unloaded");
    }
}

} // namespace

int main(int count, char** words)
{
    try {
        if (count < 4) {
            std::fputs("usage: bench_load ROW needs|alone ROUNDS\n", stderr);
            return 2;
        }
        if (std::string(words[2]) == "needs") {
            for (const wchar_t* const dll :
                 {L"advapi32.dll", L"ole32.dll", L"shell32.dll", L"shlwapi.dll", L"user32.dll"}) {
                static_cast<void>(::LoadLibraryW(dll)); // until the process exits
            }
        }
        Compete(words[1], words[2], std::stoi(words[3]),
                {{"library", 0,
                  [] {
                      LoadAndUnload(L"kestraboot.dll");
                  }},
                 {"floor", 1.10, [] {
                      LoadAndUnload(L"bench_floor.dll");
                  }}});
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_load: %s\n", error.what());
        return 1;
    }
}
