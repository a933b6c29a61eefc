#include "tests/endurance/faults/journal.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <regex>

namespace kestraboot::tests
{
namespace
{

constexpr std::size_t kCapacity = 32768;
wchar_t text[kCapacity];
std::size_t length = 0;
bool stopped = false;
bool onConsoleLine = false;

} // namespace

void Journal::Clear() noexcept
{
    length = 0;
    stopped = onConsoleLine = false;
}

void Journal::Stop() noexcept
{
    stopped = true;
}

void Journal::GoOn() noexcept
{
    stopped = false;
}

void Journal::Add(const wchar_t* what, const wchar_t* more) noexcept
{
    if (stopped) {
        return;
    }
    onConsoleLine = false;
    for (const wchar_t* part : {what, more[0] != L'\0' ? L" " : L"", more}) {
        for (; *part != L'\0' && length + 2 < kCapacity; ++part) {
            text[length++] = *part == L'\n' ? L'~' : *part;
        }
    }
    text[length++] = L'\n';
}

void Journal::AddConsole(wchar_t character) noexcept
{
    if (stopped || length + 16 >= kCapacity) {
        return;
    }
    if (!onConsoleLine) {
        Add(L"prints");
        onConsoleLine = true;
    }
    text[length - 1] = character == L'\n' ? L'~' : character;
    text[length++] = L'\n';
}

void Journal::AddNumber(const wchar_t* what, long long number) noexcept
{
    wchar_t digits[32] = {};
    std::swprintf(digits, 32, L"%lld", number);
    Add(what, digits);
}

std::string Journal::Text(const std::wstring& folder)
{
    std::wstring shown(text, length);
    for (std::size_t at = 0; !folder.empty() && (at = shown.find(folder, at)) != std::wstring::npos;) {
        shown.replace(at, folder.size(), L"<files>");
    }
    static const std::wregex build(
        L"commit [^~]*~compiler [^~]*~runtime [^~]*~"); // each commit has its own
    shown = std::regex_replace(shown, build, L"<build>~");
    std::string narrow(shown.size() * 3 + 1, '\0');
    const int written =
        ::WideCharToMultiByte(CP_UTF8, 0, shown.c_str(), static_cast<int>(shown.size()), narrow.data(),
                              static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(written));
    return narrow;
}

} // namespace kestraboot::tests
