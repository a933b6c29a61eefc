#pragma once

#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"

#include <string>

namespace kestraboot::tests
{

/// A folder that the registry assigns to the drop folder plugin, with short polling pauses.
class DropFolder
{
public:
    DropFolder()
    {
        const std::wstring key = L"SOFTWARE\\Corvane\\Drop Folder";
        PutText(HKEY_CURRENT_USER, key, L"Folder", path);
        PutDword(HKEY_CURRENT_USER, key, L"SettleMilliseconds", 200);
        PutDword(HKEY_CURRENT_USER, key, L"RetryMilliseconds", 200);
    }

    /// The plugin's trace lines about it.
    [[nodiscard]] std::string Line(const std::string& text) const
    {
        return "<DropFolder><" + folder.Path().string() + text + ">";
    }
    [[nodiscard]] std::string Watched() const { return Line(": being watched."); }
    [[nodiscard]] std::string Reported(int pictures) const
    {
        return Line(": reported, with this number of new pictures: " + std::to_string(pictures));
    }

    TempFolder folder;
    const std::wstring path = folder.Path().wstring();
};

} // namespace kestraboot::tests
