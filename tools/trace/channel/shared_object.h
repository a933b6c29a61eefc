// The permissions of the objects of the debug output.
#pragma once

#include <windows.h>

namespace kestraboot::tools
{

/// For an object that this program creates and that every program of the session must reach.
///
/// By default, a program with administrator's privileges would exclude all programs without them,
/// the boot program among them, and so see none of their lines. These permissions admit everyone,
/// because the session may have programs of several accounts; names of this kind are not visible
/// outside it. Everyone gets the one permission that writing a line needs, which differs for each
/// object; administrators and the system get all. There is no label of lower integrity: the boot
/// program runs at the usual level, and programs below it stay excluded.
class SharedObjectSecurity
{
public:
    enum class Right { Await, Signal, Write, Hold };

    explicit SharedObjectSecurity(Right ofEveryone) noexcept;
    SharedObjectSecurity(const SharedObjectSecurity&) = delete;
    SharedObjectSecurity& operator=(const SharedObjectSecurity&) = delete;
    ~SharedObjectSecurity();

    /// For the creation of the object; null if it is not available, which gives the default.
    [[nodiscard]] SECURITY_ATTRIBUTES* Get() noexcept
    {
        return attributes.lpSecurityDescriptor != nullptr ? &attributes : nullptr;
    }

private:
    SECURITY_ATTRIBUTES attributes;
};

} // namespace kestraboot::tools
