#include "tools/ctl/unread.h"

#include <cstdio>
#include <utility>

namespace kestraboot::tools
{
namespace
{

bool unread = false;

} // namespace

void TellUnread(const std::string& why)
{
    unread = true;
    std::fprintf(stderr, "kestractl: %s\n", why.c_str());
}

bool TakeUnread() noexcept
{
    return std::exchange(unread, false);
}

} // namespace kestraboot::tools
