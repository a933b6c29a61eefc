// The smallest plugin: it refuses to be loaded.
#include <kestraboot/mox_plugin.h>

kestraboot::mox::Status FxPluginMain(kestraboot::mox::IFxBase** object)
{
    *object = nullptr;
    return kestraboot::mox::kFailure;
}
