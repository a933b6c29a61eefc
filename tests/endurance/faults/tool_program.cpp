#include "tests/endurance/faults/tool_program.h"

#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/support/import_patch.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

using Main = int (*)(int, wchar_t**);

const HANDLE kOutput = reinterpret_cast<HANDLE>(std::uintptr_t{0x30});
const HANDLE kErrors = reinterpret_cast<HANDLE>(std::uintptr_t{0x40});
constexpr WORD kOwnColours = 0x07;

/// A standard stream, of which whole lines come into the journal. ASCII alone.
struct Stream {
    const wchar_t* name;
    wchar_t line[512];
    std::size_t length;

    void Put(wchar_t character) noexcept
    {
        if (character == L'\n') {
            End();
        } else if (character != L'\r' && length + 1 < std::size(line)) {
            line[length++] = character;
        }
    }
    void End() noexcept
    {
        line[length] = L'\0';
        Journal::Add(name, line);
        length = 0;
    }
};

Stream output = {L"out", {}, 0};
Stream errors = {L"err", {}, 0};
bool console = false;
WORD colours = kOwnColours;

HANDLE StandardHandle(DWORD which) noexcept
{
    return which == STD_OUTPUT_HANDLE ? kOutput : kErrors;
}

BOOL AskMode(HANDLE of, DWORD* mode) noexcept
{
    *mode = ENABLE_PROCESSED_OUTPUT;
    return of == kOutput && console;
}

BOOL AskScreen(HANDLE, CONSOLE_SCREEN_BUFFER_INFO* screen) noexcept
{
    screen->wAttributes = kOwnColours;
    return TRUE;
}

BOOL SetColours(HANDLE, WORD set) noexcept
{
    colours = set;
    return TRUE;
}

BOOL WriteWide(HANDLE to, const wchar_t* text, DWORD length, DWORD* written, void*) noexcept
{
    for (DWORD i = 0; i < length && to == kOutput; ++i) {
        output.Put(text[i]);
    }
    *written = length;
    return to == kOutput;
}

BOOL Write(HANDLE to, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) noexcept
{
    if (to != kOutput) {
        return ::WriteFile(to, bytes, size, written, overlapped);
    }
    for (DWORD i = 0; i < size; ++i) {
        output.Put(static_cast<const unsigned char*>(bytes)[i]);
    }
    *written = size;
    return TRUE;
}

/// Windows' own texts differ between its versions and languages.
DWORD ReasonOf(DWORD, const void*, DWORD, DWORD, wchar_t* text, DWORD, std::va_list*) noexcept
{
    static constexpr std::wstring_view kReason = L"reason";
    return static_cast<DWORD>(kReason.copy(text, kReason.size()));
}

Stream& Of(FILE* stream) noexcept
{
    return stream == stderr ? errors : output;
}

int StreamCharacter(int character, FILE* stream) noexcept
{
    Of(stream).Put(static_cast<unsigned char>(character));
    return character;
}

std::size_t StreamBytes(const void* bytes, std::size_t size, std::size_t count, FILE* stream) noexcept
{
    for (std::size_t i = 0; i < size * count; ++i) {
        StreamCharacter(static_cast<const unsigned char*>(bytes)[i], stream);
    }
    return count;
}

int StreamText(const char* text, FILE* stream) noexcept
{
    StreamBytes(text, 1, std::char_traits<char>::length(text), stream);
    return 0;
}

#if defined(_UCRT)
int PrintAll(unsigned long long, FILE* stream, const char* format, _locale_t,
             std::va_list arguments) noexcept
{
    char text[512] = {};
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    StreamText(text, stream);
    return length;
}
#endif

/// The functions of the C runtime that the compiler makes of a tool's calls differ between runtimes.
template <typename Function>
void PatchIfImported(std::optional<ImportPatch>& patch, const char* name, Function* replacement)
{
    try {
        patch.emplace(name, replacement);
    } catch (const std::logic_error&) {
        patch.reset();
    }
}

HMODULE Loaded(const wchar_t* library)
{
    const HMODULE module = ::LoadLibraryW(library);
    if (module == nullptr) {
        throw std::runtime_error("a tool's library cannot be loaded");
    }
    SetModuleUnderTest(module);
    return module;
}

} // namespace

struct ToolProgram::Patches {
    Patches()
    {
        PatchIfImported(character, "fputc", StreamCharacter);
        PatchIfImported(text, "fputs", StreamText);
        PatchIfImported(bytes, "fwrite", StreamBytes);
#if defined(_UCRT)
        PatchIfImported(print, "__stdio_common_vfprintf", PrintAll);
#endif
    }
    ImportPatch standard{"GetStdHandle", StandardHandle};
    ImportPatch mode{"GetConsoleMode", AskMode};
    ImportPatch screen{"GetConsoleScreenBufferInfo", AskScreen};
    ImportPatch colour{"SetConsoleTextAttribute", SetColours};
    ImportPatch wide{"WriteConsoleW", WriteWide};
    ImportPatch write{"WriteFile", Write};
    ImportPatch reason{"FormatMessageW", ReasonOf};
    std::optional<ImportPatch> character, text, bytes, print;
};

ToolProgram::ToolProgram(const wchar_t* library)
    : module(Loaded(library)), words{L"tool.exe"}, patches(std::make_unique<Patches>())
{
    console = false;
}

ToolProgram::~ToolProgram()
{
    patches.reset();
    SetModuleUnderTest(nullptr);
}

void ToolProgram::SetArguments(const std::vector<std::wstring>& arguments)
{
    words.insert(words.end(), arguments.begin(), arguments.end());
}

void ToolProgram::SetConsole(bool isConsole) noexcept
{
    console = isConsole;
}

void ToolProgram::Run() const
{
    constexpr int kMostWords = 16;
    wchar_t* pointers[kMostWords] = {};
    int count = 0;
    for (const std::wstring& word : words) {
        pointers[count++] = const_cast<wchar_t*>(word.c_str());
    }
    output.length = errors.length = 0;
    colours = kOwnColours;
    int code = 0;
    {
        const Armed armed;
        const auto entry = reinterpret_cast<void (*)()>(::GetProcAddress(module, "wmain"));
        code = reinterpret_cast<Main>(entry)(count, pointers);
    }
    for (Stream* const stream : {&output, &errors}) {
        if (stream->length != 0) {
            stream->End();
        }
    }
    Journal::AddNumber(L"ends with", code);
    if (colours != kOwnColours) {
        Journal::Add(L"LEFT BEHIND another colour");
    }
}

} // namespace kestraboot::tests
