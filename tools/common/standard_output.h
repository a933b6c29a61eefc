// Standard output: a console, where text goes as UTF-16 and in colour, or whatever it was redirected to,
// where it goes as UTF-8.
#pragma once

#include "tools/common/styled_text.h"

#include <windows.h>
#include <string_view>

namespace kestraboot::tools
{

class StandardOutput
{
public:
    /// Without `colour` a console shows everything in its own.
    explicit StandardOutput(bool colour);

    /// Whole at once: what another program writes does not come between. False when it cannot be
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

/// Writes all of it; false when that cannot be done.
[[nodiscard]] bool WriteBytes(HANDLE to, std::string_view bytes);

} // namespace kestraboot::tools
