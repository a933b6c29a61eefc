// Text with marks for the parts that a console shows in colour.
#pragma once

#include <string>
#include <vector>

namespace kestraboot::tools
{

enum class Style { Plain, Faint, Component, Tracker, Good, Bad, Start };

struct StyledPart {
    Style style = Style::Plain;
    std::string text; ///< UTF-8
};

using StyledText = std::vector<StyledPart>;

/// Without the marks.
[[nodiscard]] inline std::string PlainText(const StyledText& text)
{
    std::string plain;
    for (const StyledPart& part : text) {
        plain += part.text;
    }
    return plain;
}

} // namespace kestraboot::tools
