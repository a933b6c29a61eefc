#include "launch_request.h"

namespace
{

/// Takes `expected` off the front.
bool Skip(std::wstring_view& line, std::wstring_view expected)
{
    if (!line.starts_with(expected)) {
        return false;
    }
    line.remove_prefix(expected.size());
    return true;
}

/// Takes everything up to the next blank, and the blank, off the front.
std::wstring_view TakeWord(std::wstring_view& line)
{
    const std::wstring_view word = line.substr(0, line.find(L' '));
    line.remove_prefix(word.size() < line.size() ? word.size() + 1 : word.size());
    return word;
}

bool SkipProgram(std::wstring_view& line)
{
    if (!Skip(line, L"\"")) {
        TakeWord(line);
        return true;
    }
    const std::size_t end = line.find(L'"');
    if (end == std::wstring_view::npos) {
        return false;
    }
    line.remove_prefix(end + 1);
    return Skip(line, L" ");
}

std::wstring_view WithoutOuterQuotes(std::wstring_view text)
{
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"') {
        return text.substr(1, text.size() - 2);
    }
    return text;
}

} // namespace

std::optional<LaunchRequest> ParseLaunchRequest(std::wstring_view commandLine)
{
    std::wstring_view rest = commandLine;
    if (!SkipProgram(rest) || !Skip(rest, L"module=kestrafetch params mode=")) {
        return std::nullopt;
    }
    LaunchRequest request;
    request.mode = TakeWord(rest);
    if (rest.empty()) {
        return request;
    }
    if (!Skip(rest, L"devType=")) {
        return std::nullopt;
    }
    request.deviceType = TakeWord(rest);
    if (!Skip(rest, L"priDevId=")) {
        return std::nullopt;
    }
    request.deviceId = WithoutOuterQuotes(rest);
    return request;
}
