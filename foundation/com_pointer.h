#pragma once

#include "foundation/handles.h"

#include <unknwn.h>

namespace kestraboot
{

template <typename Interface>
struct ComPointerTraits {
    using Resource = Interface*;
    static Resource Invalid() noexcept { return nullptr; }
    static void Close(Resource pointer) noexcept { pointer->Release(); }
};

/// Owns one reference to a COM object.
template <typename Interface>
using UniqueComPointer = UniqueResource<ComPointerTraits<Interface>>;

/// Keeps the calling thread in a single-threaded COM apartment while it lives. The result of
/// CoInitialize is ignored: if the thread is in another apartment already, the results of the calls
/// that follow show what works.
/// works.
class ComApartmentScope
{
public:
    ComApartmentScope() noexcept { static_cast<void>(::CoInitialize(nullptr)); }
    ComApartmentScope(const ComApartmentScope&) = delete;
    ComApartmentScope& operator=(const ComApartmentScope&) = delete;
    ~ComApartmentScope() { ::CoUninitialize(); }
};

} // namespace kestraboot
