// The registry's names that the library works with; include/kestraboot/application_info.h describes
// them.
#pragma once

namespace kestraboot::tools
{

inline constexpr const wchar_t* kCorvaneRoot = L"SOFTWARE\\Corvane";
inline constexpr const wchar_t* kApplicationKeyName = L"Corvane Kestrafetch"; ///< case included
inline constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
inline constexpr const wchar_t* kRunValue = L"Corvane Kestrafetch";
inline constexpr const wchar_t* kAutoPlayKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\AutoplayHandlers\\Handlers\\"
    L"CorvaneVellumryShowPicturesOnArrival";

} // namespace kestraboot::tools
