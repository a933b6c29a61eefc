#include "tools/trace/channel/process_names.h"

#include "tools/common/utf8.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kestraboot::tools
{
namespace
{

std::string FileName(HANDLE process)
{
    wchar_t path[1024] = {};
    DWORD length = 1024;
    if (!::QueryFullProcessImageNameW(process, 0, path, &length)) {
        return {};
    }
    const std::wstring_view whole(path, length);
    return ToUtf8(whole.substr(whole.find_last_of(L'\\') + 1)); // npos + 1 is 0
}

} // namespace

const std::string& ProcessNames::Of(std::uint32_t processId)
{
    const auto found = std::ranges::find(known, processId, &Known::id);
    if (found != known.end()) {
        known.splice(known.begin(), known, found);
        return known.front().name;
    }
    Handle process(::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    std::string name = process ? FileName(process.Get()) : std::string();
    if (name.empty()) {
        return unknown; // and queried again: Windows may give the number to another process
    }
    if (known.size() == kMost) {
        known.pop_back();
    }
    known.push_front({processId, std::move(process), std::move(name)});
    return known.front().name;
}

} // namespace kestraboot::tools
