// Move-only owners of Windows resources: one type for each way of closing and each invalid value.
#pragma once

#include <windows.h>
#include <utility>

namespace kestraboot
{

/// Owns one resource. `Traits` defines its type, its invalid value and how to close it.
template <typename Traits>
class UniqueResource
{
public:
    using Resource = typename Traits::Resource;

    UniqueResource() noexcept = default;
    explicit UniqueResource(Resource owned) noexcept : resource(owned) {}
    UniqueResource(UniqueResource&& other) noexcept : resource(other.release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    UniqueResource(const UniqueResource&) = delete;
    UniqueResource& operator=(const UniqueResource&) = delete;
    ~UniqueResource() { reset(); }

    [[nodiscard]] Resource get() const noexcept { return resource; }
    [[nodiscard]] explicit operator bool() const noexcept { return resource != Traits::Invalid(); }

    /// Releases ownership: the caller closes the resource, or leaves it open and states the reason.
    [[nodiscard]] Resource release() noexcept { return std::exchange(resource, Traits::Invalid()); }

    void reset(Resource other = Traits::Invalid()) noexcept
    {
        const Resource old = std::exchange(resource, other);
        if (old != Traits::Invalid()) {
            Traits::Close(old);
        }
    }

private:
    Resource resource = Traits::Invalid();
};

/// Processes, threads, mutexes: null means none.
struct KernelHandleTraits {
    using Resource = HANDLE;
    static Resource Invalid() noexcept { return nullptr; }
    static void Close(Resource handle) noexcept { ::CloseHandle(handle); }
};

/// A directory listing in progress.
struct FindHandleTraits {
    using Resource = HANDLE;
    static Resource Invalid() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Resource handle) noexcept { ::FindClose(handle); }
};

struct RegistryHandleTraits {
    using Resource = HKEY;
    static Resource Invalid() noexcept { return nullptr; }
    static void Close(Resource key) noexcept { ::RegCloseKey(key); }
};

struct ModuleTraits {
    using Resource = HMODULE;
    static Resource Invalid() noexcept { return nullptr; }
    static void Close(Resource module) noexcept { ::FreeLibrary(module); }
};

using UniqueKernelHandle = UniqueResource<KernelHandleTraits>;
using UniqueFindHandle = UniqueResource<FindHandleTraits>;
using UniqueRegistryHandle = UniqueResource<RegistryHandleTraits>;
using UniqueModule = UniqueResource<ModuleTraits>;

} // namespace kestraboot
