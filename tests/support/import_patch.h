// Replaces functions of Windows by patching the import table of the module under test. The shipped code
// runs unchanged; its calls reach the test.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace kestraboot::tests
{

/// The module whose imports are patched: the test executable itself by default.
HMODULE ModuleUnderTest() noexcept;
void SetModuleUnderTest(HMODULE module) noexcept;

/// During its lifetime points every import slot of that name at `replacement`.
class ImportPatch
{
public:
    ImportPatch(const char* function, void* replacement);
    template <typename Function>
    requires std::is_function_v<Function> ImportPatch(const char* function, Function* instead)
        : ImportPatch(function, reinterpret_cast<void*>(instead))
    {
    }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

    [[nodiscard]] void* Original() const noexcept { return original; }

private:
    std::vector<void**> slots;
    void* replacement;
    void* original = nullptr;
};

/// The same for a function that the module under test looks up at run time: during its lifetime
/// GetProcAddress returns `replacement` for that name, in any library.
class LookupPatch
{
public:
    LookupPatch(const char* function, void* replacement);
    template <typename Function>
    requires std::is_function_v<Function> LookupPatch(const char* function, Function* instead)
        : LookupPatch(function, reinterpret_cast<void*>(instead))
    {
    }
    LookupPatch(const LookupPatch&) = delete;
    LookupPatch& operator=(const LookupPatch&) = delete;
    ~LookupPatch();

    /// The function of kernel32 with that name, or null.
    [[nodiscard]] void* Original() const noexcept { return original; }

private:
    void* original;
};

template <std::size_t Length>
struct ImportName {
    constexpr ImportName(const char (&name)[Length])
    {
        for (std::size_t i = 0; i < Length; ++i) {
            text[i] = name[i];
        }
    }
    char text[Length] = {};
};

/// A function of Windows or of the C runtime that answers what the test's callable says. Use it as
///   FAKE_IMPORT(GetDriveTypeW) drives([&](const wchar_t*) -> UINT { return DRIVE_FIXED; });
/// `drives.CallOriginal(...)` reaches the real function; `drives.Calls()` counts.
/// FakeLookup<"Name", Signature> is the same for a function of kernel32 that is looked up at run time.
template <ImportName name, typename Signature, typename Patch>
class FakeFunction;

template <ImportName name, typename Result, typename... Arguments, typename Patch>
class FakeFunction<name, Result(Arguments...), Patch>
{
public:
    explicit FakeFunction(std::function<Result(Arguments...)> answer)
        : before(std::exchange(body, std::move(answer))), callsBefore(std::exchange(calls, 0)),
          patch(name.text, Entry())
    {
        if (patch.Original() != Entry()) {
            original = patch.Original();
        }
    }
    FakeFunction(const FakeFunction&) = delete;
    FakeFunction& operator=(const FakeFunction&) = delete;
    ~FakeFunction()
    {
        body = std::move(before);
        calls = callsBefore;
    }

    Result CallOriginal(Arguments... arguments) const
    {
        return reinterpret_cast<Result (*)(Arguments...)>(original)(arguments...);
    }

    [[nodiscard]] long Calls() const noexcept { return calls; }

private:
    static void* Entry() noexcept { return reinterpret_cast<void*>(&Call); }
    static Result Call(Arguments... arguments)
    {
        ::InterlockedIncrement(&calls);
        return body(arguments...);
    }

    static inline std::function<Result(Arguments...)> body;
    static inline long calls = 0;
    static inline void* original = nullptr; ///< the real function, below every fake of it

    std::function<Result(Arguments...)> before; ///< a fake inside the scope of another hides that one
    long callsBefore;
    Patch patch;
};

template <ImportName name, typename Signature>
using FakeImport = FakeFunction<name, Signature, ImportPatch>;
template <ImportName name, typename Signature>
using FakeLookup = FakeFunction<name, Signature, LookupPatch>;

/// The type of a function without the attributes that some headers give it.
template <typename Result, typename... Arguments>
struct PlainFunction {
    using Type = Result(Arguments...);
};
template <typename Result, typename... Arguments>
PlainFunction<Result, Arguments...> PlainFunctionOf(Result (*)(Arguments...));

#define FAKE_IMPORT(function)                                                                           \
    ::kestraboot::tests::FakeImport<#function,                                                          \
                                    decltype(::kestraboot::tests::PlainFunctionOf(&::function))::Type>

} // namespace kestraboot::tests
