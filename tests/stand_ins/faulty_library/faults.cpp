// Makes calls of a real boot program and its library visible, or makes them fail or hang, from before
// the program's first line on. KESTRABOOT_FAULTS selects them: "MODULE!IMPORT=WHAT" once or more, with a
// blank between two. Each such call first writes the line "<calls IMPORT>". WHAT is one of these:
//   tell       goes on
//   hold       never returns
//   fail       answers 0
//   pretend    answers 1 and does nothing
//   above      goes on with "..", for a folder
//   no-memory  throws std::bad_alloc
#include "tests/support/import_patch.h"

#include <windows.h>
#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <utility>

namespace kestraboot::tests
{
namespace
{

struct Fault {
    std::string import;
    std::string what;
    std::unique_ptr<ImportPatch> patch;
};

constexpr std::size_t kMostFaults = 8;
std::array<Fault, kMostFaults> faults;

using Word = std::uintptr_t;

/// Replaces any function with up to twelve integer arguments. If the function has fewer, the others are
/// read from the caller's stack and passed on unused.
template <std::size_t Index>
Word Call(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h, Word i, Word j, Word k, Word l)
{
    const Fault& fault = faults[Index];
    ::OutputDebugStringA(("<calls " + fault.import + ">").c_str());
    if (fault.what == "hold") {
        ::Sleep(INFINITE);
    }
    if (fault.what == "no-memory") {
        throw std::bad_alloc();
    }
    if (fault.what == "fail" || fault.what == "pretend") {
        ::SetLastError(ERROR_GEN_FAILURE);
        return fault.what == "pretend" ? 1 : 0;
    }
    if (fault.what == "above") {
        a = reinterpret_cast<Word>(L"..");
    }
    const auto original = reinterpret_cast<decltype(&Call<Index>)>(fault.patch->Original());
    return original(a, b, c, d, e, f, g, h, i, j, k, l);
}

template <std::size_t... Index>
constexpr std::array<decltype(&Call<0>), kMostFaults> Calls(std::index_sequence<Index...>)
{
    return {&Call<Index>...};
}

/// Runs before the program's first line, while its libraries are initialised.
struct AtLoad {
    AtLoad()
    {
        char text[1024] = {};
        ::GetEnvironmentVariableA("KESTRABOOT_FAULTS", text, sizeof text);
        std::istringstream words(text);
        std::size_t count = 0;
        for (std::string word; words >> word; ++count) {
            const std::size_t module = word.find('!');
            const std::size_t what = word.find('=');
            Fault& fault = faults.at(count);
            fault.import = word.substr(module + 1, what - module - 1);
            fault.what = word.substr(what + 1);
            SetModuleUnderTest(::GetModuleHandleA(word.substr(0, module).c_str()));
            fault.patch = std::make_unique<ImportPatch>(
                fault.import.c_str(),
                reinterpret_cast<void*>(Calls(std::make_index_sequence<kMostFaults>())[count]));
        }
    }
} const atLoad;

} // namespace
} // namespace kestraboot::tests
