#include "tools/common/standard_output.h"

namespace kestraboot::tools
{
namespace
{

constexpr WORD kBackground = 0xF0; // the bits of the background's colour

WORD Colours(Style style, WORD own) noexcept
{
    const auto on = [&](unsigned foreground) {
        return static_cast<WORD>((own & kBackground) | foreground);
    };
    switch (style) {
    case Style::Faint:
        return on(FOREGROUND_INTENSITY);
    case Style::Component:
        return on(FOREGROUND_GREEN | FOREGROUND_BLUE);
    case Style::Tracker:
        return on(FOREGROUND_GREEN | FOREGROUND_BLUE | FOREGROUND_INTENSITY);
    case Style::Good:
        return on(FOREGROUND_GREEN | FOREGROUND_INTENSITY);
    case Style::Bad:
        return on(FOREGROUND_RED | FOREGROUND_INTENSITY);
    case Style::Start:
        return on(FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_INTENSITY);
    default:
        return own;
    }
}

/// Empty if it cannot be converted.
std::wstring FromUtf8(std::string_view text)
{
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    wide.resize(static_cast<std::size_t>(
        ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                              static_cast<int>(wide.size()))));
    return wide;
}

/// While it lives, a console has other colours than its own.
class ColourScope
{
public:
    ColourScope(HANDLE changed, WORD own) noexcept : output(changed), ownColours(own) {}
    ColourScope(const ColourScope&) = delete;
    ColourScope& operator=(const ColourScope&) = delete;
    ~ColourScope() { ::SetConsoleTextAttribute(output, ownColours); }

private:
    HANDLE output; ///< not owned
    WORD ownColours;
};

} // namespace

StandardOutput::StandardOutput(bool colour) : output(::GetStdHandle(STD_OUTPUT_HANDLE))
{
    DWORD mode = 0;
    console = ::GetConsoleMode(output, &mode) != FALSE;
    CONSOLE_SCREEN_BUFFER_INFO screen = {};
    inColour = console && colour && ::GetConsoleScreenBufferInfo(output, &screen);
    ownColours = screen.wAttributes;
}

bool StandardOutput::Write(const StyledText& text) const
{
    if (!console) {
        return WriteBytes(output, PlainText(text));
    }
    if (!inColour) {
        return WriteToConsole(PlainText(text));
    }
    bool written = true;
    const ColourScope scope(output, ownColours);
    for (const StyledPart& part : text) {
        ::SetConsoleTextAttribute(output, Colours(part.style, ownColours));
        written = WriteToConsole(part.text) && written;
    }
    return written;
}

bool StandardOutput::WriteToConsole(std::string_view text) const
{
    const std::wstring wide = FromUtf8(text);
    DWORD written = 0;
    return (text.empty() || !wide.empty()) &&
           ::WriteConsoleW(output, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
}

bool WriteBytes(HANDLE to, std::string_view bytes)
{
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!::WriteFile(to, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
            return false;
        }
        if (written == 0) { // which succeeds
            ::SetLastError(ERROR_WRITE_FAULT);
            return false;
        }
        bytes.remove_prefix(written);
    }
    return true;
}

} // namespace kestraboot::tools
