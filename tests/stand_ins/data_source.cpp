// kestraboot.ds: stands in for an installed TWAIN data source, for the system's own source manager. Copy
// it into the folder "twain_64" of Windows' folder, under the name "sane.ds", which Wine's source
// manager looks up. It returns its name, and supports nothing else.
#include "trackers/still_image/twain.h"

#include <cstring>

namespace
{

using namespace kestraboot::twain;

constexpr TW_UINT16 MSG_GET = 0x0001;

} // namespace

extern "C" __declspec(dllexport) TW_UINT16 WINAPI
    DS_Entry(TW_IDENTITY*, TW_UINT32, TW_UINT16, TW_UINT16, void*);

TW_UINT16 WINAPI DS_Entry(TW_IDENTITY*, TW_UINT32 group, TW_UINT16 argumentType, TW_UINT16 message,
                          void* data)
{
    static bool told = false; // some source managers ask until no more come
    if (group != DG_CONTROL || argumentType != DAT_IDENTITY || message != MSG_GET || told) {
        return TWRC_FAILURE;
    }
    told = true;
    auto& source = *static_cast<TW_IDENTITY*>(data);
    source.ProtocolMajor = kProtocolMajor;
    source.ProtocolMinor = kProtocolMinor;
    source.SupportedGroups = DG_CONTROL | DG_IMAGE;
    std::strcpy(source.Manufacturer, "Corvane");
    std::strcpy(source.ProductFamily, "Stand-ins");
    std::strcpy(source.ProductName, "Corvane Stand-In Source");
    return TWRC_SUCCESS;
}
