// Standard output: a console, which gets UTF-16 in colour, or the target of a redirection, which
// gets UTF-8.
#pragma once

#include "tools/common/styled_text.h"

#include <windows.h>
#include <string_view>

namespace kestraboot::tools
{

class StandardOutput
{
public:
    /// Without `colour` a console shows everything in its own colour.
    explicit StandardOutput(bool colour);

    /// In one write, so that no output of another program comes between. False if it cannot be
    /// written.
    [[nodiscard]] bool Write(const StyledText& text) const;

    [[nodiscard]] bool IsConsole() const noexcept { return console; }

private:
    [[nodiscard]] bool WriteToConsole(std::string_view text) const;

    HANDLE output; ///< not owned
    bool console;
    bool inColour;
    WORD ownColours = 0;
};

/// Writes all of it; false if that fails. The system's last error is the reason.
[[nodiscard]] bool WriteBytes(HANDLE to, std::string_view bytes);

} // namespace kestraboot::tools
