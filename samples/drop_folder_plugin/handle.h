#pragma once

#include <windows.h>

/// Owns a handle; null and INVALID_HANDLE_VALUE are none.
class Handle
{
public:
    explicit Handle(HANDLE owned = nullptr) noexcept
        : handle(owned == INVALID_HANDLE_VALUE ? nullptr : owned)
    {
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    Handle& operator=(Handle&& other) noexcept
    {
        const HANDLE taken = other.handle;
        other.handle = nullptr;
        Close();
        handle = taken;
        return *this;
    }
    ~Handle() { Close(); }

    [[nodiscard]] HANDLE Get() const noexcept { return handle; }
    explicit operator bool() const noexcept { return handle != nullptr; }

private:
    void Close() noexcept
    {
        if (handle != nullptr) {
            ::CloseHandle(handle);
        }
    }

    HANDLE handle;
};
