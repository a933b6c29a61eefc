#include "trackers/mox/plugin_module.h"

#include "foundation/error_mode.h"

namespace kestraboot
{
namespace
{

constexpr UINT kNoErrorBoxes = SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX;
static_assert(kNoErrorBoxes == 0x8001);

} // namespace

bool IsLoadableFile(const wchar_t* modulePath) noexcept
{
    const ErrorModeScope noErrorBoxes(kNoErrorBoxes);
    return static_cast<bool>(
        UniqueModule(::LoadLibraryExW(modulePath, nullptr, LOAD_LIBRARY_AS_DATAFILE)));
}

UniqueModule LoadPluginModule(const wchar_t* modulePath) noexcept
{
    const ErrorModeScope noErrorBoxes(kNoErrorBoxes);
    return UniqueModule(::LoadLibraryW(modulePath));
}

mox::Status GetPluginObject(HMODULE module, PluginReference<mox::IFxBase>& output) noexcept
{
    const FARPROC entry = ::GetProcAddress(module, "FxPluginMain");
    if (entry == nullptr) {
        return mox::kFailure;
    }
    // Cast by way of a function pointer of no particular type: only the plugin guarantees the type.
    const auto pluginMain = reinterpret_cast<mox::PluginMain>(reinterpret_cast<void (*)()>(entry));
    mox::IFxBase* object = nullptr;
    const mox::Status status = CallPlugin([&] {
        static_cast<void>(pluginMain(&object)); // the status is ignored: the object alone shows success
        return mox::kSuccess;
    });
    if (status != mox::kSuccess) {
        return status;
    }
    output.Take(object);
    return object == nullptr ? mox::kFailure : mox::kSuccess;
}

} // namespace kestraboot
