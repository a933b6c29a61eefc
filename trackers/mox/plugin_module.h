// A plugin's library: loads it, and gets its objects.
#pragma once

#include "foundation/handles.h"
#include "trackers/mox/plugin_reference.h"

namespace kestraboot
{

/// Whether the file can be mapped at all. None of its code runs.
[[nodiscard]] bool IsLoadableFile(const wchar_t* modulePath) noexcept;

[[nodiscard]] UniqueModule LoadPluginModule(const wchar_t* modulePath) noexcept;

/// The object that the library's entry point returns. mox::kFailure: no entry point, or no object.
[[nodiscard]] mox::Status GetPluginObject(HMODULE module,
                                          PluginReference<mox::IFxBase>& output) noexcept;

/// An interface of that object; the object itself is released again.
template <typename Interface>
[[nodiscard]] mox::Status CreatePluginObject(HMODULE module, mox::InterfaceNumber number,
                                             PluginReference<Interface>& output) noexcept
{
    PluginReference<mox::IFxBase> object;
    mox::Status status = GetPluginObject(module, object);
    if (status == mox::kSuccess) {
        status = object.Query(number, output);
    }
    if (status == mox::kSuccess) {
        status = object.Release();
        if (status != mox::kSuccess) {
            static_cast<void>(output.Release()); // the status of the first failure is the result
        }
    }
    return status;
}

/// The same for a library that is loaded already; mox::kFailure if it is not.
template <typename Interface>
[[nodiscard]] mox::Status CreatePluginObject(const wchar_t* modulePath, mox::InterfaceNumber number,
                                             PluginReference<Interface>& output) noexcept
{
    const HMODULE module = ::GetModuleHandleW(modulePath);
    return module == nullptr ? mox::kFailure : CreatePluginObject(module, number, output);
}

} // namespace kestraboot
