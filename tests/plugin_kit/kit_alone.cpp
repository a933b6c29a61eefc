// The kit without any header before it, included twice, in the terms of C++11. Compiled by
// compiles-alone.sh.
#include "kestraboot/mox_plugin.h"

namespace
{

// Every operation that a source manager must have; the reserved ones are optional.
class Source final : public kestraboot::mox::ISourceManager
{
public:
    bool Query(kestraboot::mox::InterfaceNumber, void**) override { return false; }
    std::uint32_t AddReference() override { return 1; }
    std::uint32_t Release() override { return 0; }
    kestraboot::mox::Status GetCategory(std::uint32_t*) override { return kestraboot::mox::kSuccess; }
    kestraboot::mox::Status RegisterCallback(kestraboot::mox::ICallbackInterface* callback) override
    {
        kestraboot::mox::DeviceRecord device = kestraboot::mox::DeviceRecord();
        device.size = kestraboot::mox::kDeviceRecordSize;
        return callback->Notify(0, &device);
    }
    kestraboot::mox::Status UnregisterCallback(kestraboot::mox::ICallbackInterface*) override
    {
        return kestraboot::mox::kSuccess;
    }
};

Source source;

} // namespace

kestraboot::mox::Status FxPluginMain(kestraboot::mox::IFxBase** object)
{
    *object = &source;
    return kestraboot::mox::kSuccess;
}
