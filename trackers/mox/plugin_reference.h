// Plugins are foreign code: every call of one goes through these two.
#pragma once

#include "kestraboot/mox_plugin.h"

#include <utility>

namespace kestraboot
{

/// Makes one call of a plugin. Catches everything that the plugin throws and returns
/// mox::kException. The exception object is destroyed before this returns, so that the library that
/// holds its code can be freed.
template <typename Call>
[[nodiscard]] mox::Status CallPlugin(Call&& call) noexcept
{
    try {
        return std::forward<Call>(call)();
    } catch (...) {
        return mox::kException;
    }
}

/// Owns one reference to an object of a plugin, or none. One thread at a time.
template <typename Interface>
class PluginReference
{
public:
    PluginReference() noexcept = default;
    PluginReference(PluginReference&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    PluginReference& operator=(PluginReference&& other) noexcept
    {
        std::swap(object, other.object);
        return *this;
    }
    PluginReference(const PluginReference&) = delete;
    PluginReference& operator=(const PluginReference&) = delete;
    /// For a return path that has its status already; otherwise release explicitly and check the
    /// result.
    ~PluginReference() { static_cast<void>(Release()); }

    [[nodiscard]] Interface* operator->() const noexcept { return object; }
    [[nodiscard]] explicit operator bool() const noexcept { return object != nullptr; }

    /// Takes ownership of an object that comes with a reference for the caller.
    void Take(Interface* given) noexcept
    {
        static_cast<void>(Release());
        object = given;
    }

    /// Releases the reference. mox::kException if the plugin throws: the reference then counts as
    /// released.
    mox::Status Release() noexcept
    {
        Interface* const released = std::exchange(object, nullptr);
        return released == nullptr ? mox::kSuccess : CallPlugin([&] {
            released->Release();
            return mox::kSuccess;
        });
    }

    /// Asks the object for another interface. mox::kFailure if it has none.
    template <typename Other>
    [[nodiscard]] mox::Status Query(mox::InterfaceNumber number,
                                    PluginReference<Other>& output) const noexcept
    {
        void* answer = nullptr;
        const mox::Status status = CallPlugin([&] {
            return object->Query(number, &answer) && answer != nullptr ? mox::kSuccess : mox::kFailure;
        });
        if (status == mox::kSuccess) {
            output.Take(static_cast<Other*>(answer));
        }
        return status;
    }

private:
    Interface* object = nullptr;
};

} // namespace kestraboot
