// One row of the table that --check shows.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tools
{

enum class Verdict {
    Fine,
    Suspicious, ///< may be intended, or is not known: it explains why less happens than expected
    Broken,     ///< cannot be intended, or nothing works because of it
};

struct Row {
    Verdict verdict = Verdict::Fine;
    const char* check = ""; ///< the word by which scripts identify it
    std::wstring subject;   ///< the item that it is about; empty if there is only one
    std::wstring reason;
    std::wstring advice; ///< the advice; empty if there is nothing to do
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
