#include "service/media_sniffer.h"

#include "foundation/text.h"
#include "registry/supported_formats.h"
#include "service/candidate_volume.h"
#include "service/media_walk.h"
#include "service/sniff_depth.h"

#include <windows.h>

namespace kestraboot
{

bool SniffMediaContent(const std::wstring& rootPath) noexcept
{
    try {
        wchar_t root[kFieldCapacity];
        CopyToField(root, rootPath);

        // This thread needs a handler of its own, because handlers take no lock.
        CKestraBootInformationHandler handler;
        const int depth = ReadSniffDepth(handler);
        if (depth == 0) {
            ::OutputDebugStringW(L"<***DeviceConnect***><Suppressing auto launch...>");
            return false;
        }
        std::vector<formatInfo_tag> formats;
        GetSupportedFormats(handler, formats);
        return FindSupportedFile(root, static_cast<unsigned>(depth), ExtensionSet(formats));
    } catch (...) {
        return false; // memory ran out during the scan: nothing was found
    }
}

bool CheckVolumeForMedia(const std::wstring& rootPath) noexcept
{
    constexpr int kAttempts = 3;
    constexpr DWORD kMillisecondsToSettle = 1000;

    wchar_t root[kFieldCapacity];
    CopyToField(root, rootPath);
    if (!IsCandidateVolume(root)) {
        ::OutputDebugStringW(L"<***DeviceConnect***><Unsupported volume found.>");
        return false;
    }
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (SniffMediaContent(rootPath)) {
            return true;
        }
        ::OutputDebugStringW(
            L"<***DeviceConnect***><Supported media content check fails...Trying again.>");
        ::Sleep(kMillisecondsToSettle);
    }
    ::OutputDebugStringW(L"<***DeviceConnect***><Volume does not contain supported media content.>");
    return false;
}

} // namespace kestraboot
