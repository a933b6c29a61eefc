// Plugins are foreign code: nothing calls one but through these two.
#pragma once

#include "kestraboot/mox_plugin.h"

#include <utility>

namespace kestraboot
{

/// Makes one call into a plugin. What the plugin throws ends here, as mox::kException; the exception
/// object is gone before this returns, so that the library which holds its code can be freed.
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
    /// For a way out that has its status already; otherwise release it by name and read the answer.
    ~PluginReference() { static_cast<void>(Release()); }

    [[nodiscard]] Interface* operator->() const noexcept { return object; }
    [[nodiscard]] explicit operator bool() const noexcept { return object != nullptr; }

    /// Takes over an object that comes with a reference for the caller.
    void Take(Interface* given) noexcept
    {
        static_cast<void>(Release());
        object = given;
    }

    /// Gives the reference back. mox::kException when the plugin throws: the reference counts as given
    /// back.
    mox::Status Release() noexcept
    {
        Interface* const released = std::exchange(object, nullptr);
        return released == nullptr ? mox::kSuccess : CallPlugin([&] {
            released->Release();
            return mox::kSuccess;
        });
    }

    /// Asks the object for another interface. mox::kFailure when it has none.
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
