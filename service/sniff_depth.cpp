#include "service/sniff_depth.h"

#include "foundation/registry_key.h"
#include "registry/own_application.h"

namespace kestraboot
{

int ReadSniffDepth(CKestraBootInformationHandler& handler)
{
    constexpr int kDefaultDepth = 4;
    appInfo_tag own;
    if (!FindOwnApplication(handler, own)) {
        return kDefaultDepth;
    }
    // A key that cannot be opened and a missing value both read as -1.
    const int depth = RegistryKey::OpenCurrentUser(own.KeyPath, KEY_READ).QueryDword(L"SniffDepth");
    return depth < 0 ? kDefaultDepth : depth;
}

} // namespace kestraboot
