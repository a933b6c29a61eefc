#include "tools/common/utf8.h"
#include "tools/ctl/check/check_format.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr std::size_t kVerdictWidth = 12;
constexpr std::size_t kIndent = kVerdictWidth + 13;

const wchar_t* Shown(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Fine:
        return L"fine";
    case Verdict::Suspicious:
        return L"suspicious";
    default:
        return L"broken";
    }
}

Style StyleOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Fine:
        return Style::Good;
    case Verdict::Suspicious:
        return Style::Start;
    default:
        return Style::Bad;
    }
}

std::wstring Padded(std::wstring text, std::size_t width)
{
    text.resize(std::max(text.size() + 1, width), L' ');
    return text;
}

/// Names and paths come from outside: none of them may move the cursor.
std::string Printable(std::wstring text)
{
    std::ranges::replace_if(
        text,
        [](wchar_t character) {
            return character < 0x20 || character == 0x7F;
        },
        L' ');
    return ToUtf8(text);
}

void AddRow(StyledText& text, const Row& row)
{
    std::wstring check;
    for (const char* character = row.check; *character != '\0'; ++character) {
        check += static_cast<wchar_t>(*character);
    }
    text.push_back({StyleOf(row.verdict), Printable(Padded(Shown(row.verdict), kVerdictWidth))});
    text.push_back(
        {Style::Plain, Printable(Padded(check, kIndent - kVerdictWidth) +
                                 (row.subject.empty() ? L"" : row.subject + L": ") + row.reason) +
                           "\r\n"});
    if (!row.advice.empty()) {
        text.push_back(
            {Style::Plain, std::string(kIndent, ' ') + "-> " + Printable(row.advice) + "\r\n"});
    }
}

} // namespace

std::size_t Count(const Rows& rows, Verdict verdict)
{
    return static_cast<std::size_t>(std::ranges::count(rows, verdict, &Row::verdict));
}

StyledText FormatCheck(const Rows& rows)
{
    StyledText text;
    for (const Row& row : rows) {
        AddRow(text, row);
    }
    std::string sum = "\r\n";
    for (const Verdict verdict : {Verdict::Broken, Verdict::Suspicious, Verdict::Fine}) {
        sum += (verdict == Verdict::Broken ? "" : ", ") + std::to_string(Count(rows, verdict)) + " " +
               ToUtf8(Shown(verdict));
    }
    text.push_back({Style::Plain, sum + "\r\n"});
    return text;
}

} // namespace kestraboot::tools
