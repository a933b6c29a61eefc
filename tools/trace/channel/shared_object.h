// Who may do what with the objects of the debug output.
#pragma once

#include <windows.h>

namespace kestraboot::tools
{

/// For an object that this program makes and every program of the session is to reach.
///
/// By default a program that runs with administrator's rights would keep all those out that do not, the
/// boot program among them, and so would see none of their lines. What is let in is everyone, since the
/// session may hold programs of several accounts: names of this kind are not seen outside it. They get
/// the one right that writing a line takes, which is for each object another; administrators and the
/// system get all. There is no label of lower integrity: the boot program runs at the usual level, and
/// programs that Windows fences in below it stay out.
class SharedObjectSecurity
{
public:
    enum class Right { Await, Signal, Write, Hold };

    explicit SharedObjectSecurity(Right ofEveryone) noexcept;
    SharedObjectSecurity(const SharedObjectSecurity&) = delete;
    SharedObjectSecurity& operator=(const SharedObjectSecurity&) = delete;
    ~SharedObjectSecurity();

    /// To make the object with; null where it cannot be had, which gives the default.
    [[nodiscard]] SECURITY_ATTRIBUTES* Get() noexcept
    {
        return attributes.lpSecurityDescriptor != nullptr ? &attributes : nullptr;
    }

private:
    SECURITY_ATTRIBUTES attributes;
};

} // namespace kestraboot::tools
