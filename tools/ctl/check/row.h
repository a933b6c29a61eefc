// One line of the table that --check shows.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tools
{

enum class Verdict {
    Fine,
    Suspicious, ///< may be meant so, or cannot be known: it explains why less happens than is expected
    Broken,     ///< cannot be meant so, or nothing works because of it
};

struct Row {
    Verdict verdict = Verdict::Fine;
    const char* check = ""; ///< the word by which scripts know it
    std::wstring subject;   ///< which one it is about; empty where there is only one
    std::wstring reason;
    std::wstring advice; ///< what to do; empty where there is nothing to do
};

using Rows = std::vector<Row>;

inline Row Fine(const char* check, std::wstring subject, std::wstring reason)
{
    return {Verdict::Fine, check, std::move(subject), std::move(reason), {}};
}

inline Row Suspicious(const char* check, std::wstring subject, std::wstring reason, std::wstring advice)
{
    return {Verdict::Suspicious, check, std::move(subject), std::move(reason), std::move(advice)};
}

inline Row Broken(const char* check, std::wstring subject, std::wstring reason, std::wstring advice)
{
    return {Verdict::Broken, check, std::move(subject), std::move(reason), std::move(advice)};
}

} // namespace kestraboot::tools
