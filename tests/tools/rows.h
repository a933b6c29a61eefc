// How the tests of --check's rows read them.
#pragma once

#include "tools/ctl/check/check.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{

inline std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t character : text) {
        narrow += character < 0x80 ? static_cast<char>(character) : '?';
    }
    return narrow;
}

/// "broken control SUBJECT: REASON -> ADVICE"
inline std::string Line(const Row& row)
{
    const char* const verdicts[] = {"fine", "suspicious", "broken"};
    return std::string(verdicts[static_cast<int>(row.verdict)]) + " " + row.check + " " +
           Narrow(row.subject) + ": " + Narrow(row.reason) +
           (row.advice.empty() ? "" : " -> " + Narrow(row.advice));
}

inline std::vector<std::string> Lines(const Rows& rows)
{
    std::vector<std::string> lines;
    for (const Row& row : rows) {
        lines.push_back(Line(row));
        // Each row that is not fine gives advice.
        EXPECT_EQ(row.advice.empty(), row.verdict == Verdict::Fine) << lines.back();
    }
    return lines;
}

} // namespace kestraboot::tools
