#include "twain_source_list.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace kestraboot::simulators
{
namespace
{

using namespace twain;

constexpr TW_UINT16 kEndOfList = 7; // TWRC_ENDOFLIST

bool isEndless = false;
std::size_t nextSource = 0;
std::vector<std::wstring> sourceNames;

void FillSource(const std::wstring& name, TW_IDENTITY& source)
{
    char ansi[256] = {};
    ::WideCharToMultiByte(CP_ACP, 0, name.c_str(), -1, ansi, sizeof ansi - 1, nullptr, nullptr);
    // The rest of the field is not zero, as with a real source.
    std::memset(source.ProductName, '~', sizeof source.ProductName);
    std::memcpy(source.ProductName, ansi, std::min(std::strlen(ansi) + 1, sizeof source.ProductName));
    source.Id = static_cast<TW_UINT32>(nextSource);
}

} // namespace

std::vector<Entry> ReadSourceEntries()
{
    return ReadEntries(L"twain_sources.txt");
}

void BeginSourceList()
{
    sourceNames.clear();
    const std::vector<Entry> entries = ReadSourceEntries();
    for (const Entry& entry : entries) {
        if (entry.word == "source") {
            sourceNames.push_back(entry.rest);
        }
    }
    isEndless = Says(entries, "endless") && !sourceNames.empty();
    nextSource = 0;
}

TW_UINT16 NextSource(TW_IDENTITY& source)
{
    if (nextSource >= sourceNames.size() && isEndless) {
        nextSource = 0;
    }
    if (nextSource >= sourceNames.size()) {
        return kEndOfList;
    }
    FillSource(sourceNames[nextSource++], source);
    return TWRC_SUCCESS;
}

} // namespace kestraboot::simulators
