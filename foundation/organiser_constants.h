// The legacy organiser's fixed texts, which need no look-up on the machine.
#pragma once

#include <string_view>

namespace kestraboot
{

inline constexpr std::wstring_view kOrganiserName = L"Corvane Vellumry 3.0";

/// Has no object: the program that shows the text adds one.
inline constexpr std::wstring_view kOrganiserDescription = L"Organize and edit pictures using";

inline constexpr std::wstring_view kOrganiserImageExtensions =
    L"jpg jpe jpeg png tif tiff psd wbmp wbm tga vda icb vst pxr pcx jpf jpx jp2 j2c j2k jpc gif "
    L"crw nef raf orf mrw dcr mos raw pef srf dnf x3f cr2";
inline constexpr std::wstring_view kOrganiserAudioExtensions = L"wma mp3 wav";
inline constexpr std::wstring_view kOrganiserVideoExtensions = L"3gp 3g2 avi mov mpg mpe mpeg mp4 wmv";

} // namespace kestraboot
