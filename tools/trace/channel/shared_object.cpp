#include "tools/trace/channel/shared_object.h"

#include <sddl.h>

namespace kestraboot::tools
{
namespace
{

// "D:" lists who is allowed ("A") what: the system ("SY"), administrators ("BA") and everyone ("WD").
constexpr const wchar_t* kAwait = L"D:(A;;0x1F0003;;;SY)(A;;0x1F0003;;;BA)(A;;0x100000;;;WD)";
constexpr const wchar_t* kSignal = L"D:(A;;0x1F0003;;;SY)(A;;0x1F0003;;;BA)(A;;0x2;;;WD)";
constexpr const wchar_t* kWrite = L"D:(A;;0xF001F;;;SY)(A;;0xF001F;;;BA)(A;;0x2;;;WD)";
// The permissions that Windows gives the mutex that writers create.
constexpr const wchar_t* kHold = L"D:(A;;0x1F0001;;;SY)(A;;0x1F0001;;;BA)(A;;0x120001;;;WD)";
static_assert(EVENT_ALL_ACCESS == 0x1F0003);
static_assert(SECTION_ALL_ACCESS == 0xF001F);
static_assert(SYNCHRONIZE == 0x100000);
static_assert(EVENT_MODIFY_STATE == 0x2);
static_assert(FILE_MAP_WRITE == 0x2);
static_assert(MUTEX_ALL_ACCESS == 0x1F0001);
static_assert((SYNCHRONIZE | READ_CONTROL | MUTANT_QUERY_STATE) == 0x120001);

const wchar_t* Text(SharedObjectSecurity::Right right) noexcept
{
    switch (right) {
    case SharedObjectSecurity::Right::Await:
        return kAwait;
    case SharedObjectSecurity::Right::Signal:
        return kSignal;
    case SharedObjectSecurity::Right::Hold:
        return kHold;
    default:
        return kWrite;
    }
}

} // namespace

SharedObjectSecurity::SharedObjectSecurity(Right ofEveryone) noexcept
    : attributes{sizeof attributes, nullptr, FALSE}
{
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorW(
            Text(ofEveryone), SDDL_REVISION_1, &attributes.lpSecurityDescriptor, nullptr)) {
        attributes.lpSecurityDescriptor = nullptr;
    }
}

SharedObjectSecurity::~SharedObjectSecurity()
{
    if (attributes.lpSecurityDescriptor != nullptr) {
        ::LocalFree(attributes.lpSecurityDescriptor);
    }
}

} // namespace kestraboot::tools
