#pragma once

#include <windows.h>
#include <utility>

namespace kestraboot::tools
{

/// Owns a kernel handle; null if there is none.
class Handle
{
public:
    Handle() noexcept = default;
    explicit Handle(HANDLE owned) noexcept : handle(owned) {}
    Handle(Handle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    ~Handle()
    {
        if (handle != nullptr) {
            ::CloseHandle(handle);
        }
    }

    [[nodiscard]] HANDLE Get() const noexcept { return handle; }
    [[nodiscard]] explicit operator bool() const noexcept { return handle != nullptr; }

private:
    HANDLE handle = nullptr;
};

} // namespace kestraboot::tools
