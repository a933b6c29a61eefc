#include "card_slot.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <vector>
#include <winioctl.h>

namespace kestraboot::simulators
{
namespace
{

// Wine's own control code and record of its mount manager (ddk/mountmgr.h of Wine).
constexpr DWORD kDefineUnixDrive =
    CTL_CODE('m', 32, METHOD_BUFFERED, FILE_READ_ACCESS | FILE_WRITE_ACCESS);

struct UnixDrive {
    std::uint32_t size;
    std::uint32_t type;
    std::uint32_t fileSystem;
    std::uint32_t serial;
    std::uint64_t device;
    wchar_t letter;
    std::uint16_t mountPointOffset;
    std::uint16_t deviceOffset;
    std::uint16_t labelOffset;
};
static_assert(sizeof(UnixDrive) == 32);

bool Ask(wchar_t letter, DWORD type, const std::string& unixFolder)
{
    std::vector<char> request(sizeof(UnixDrive) + unixFolder.size() + 1);
    UnixDrive drive = {};
    drive.size = static_cast<std::uint32_t>(request.size());
    drive.type = type;
    drive.letter = letter;
    if (!unixFolder.empty()) {
        drive.mountPointOffset = sizeof(UnixDrive);
    }
    std::memcpy(request.data(), &drive, sizeof drive);
    std::memcpy(request.data() + sizeof drive, unixFolder.c_str(), unixFolder.size() + 1);

    const HANDLE manager =
        ::CreateFileW(L"\\\\.\\MountPointManager", GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (manager == INVALID_HANDLE_VALUE) {
        return false;
    }
    const BOOL done =
        ::DeviceIoControl(manager, kDefineUnixDrive, request.data(), static_cast<DWORD>(request.size()),
                          nullptr, 0, nullptr, nullptr);
    ::CloseHandle(manager);
    return done != FALSE;
}

} // namespace

bool InsertCard(wchar_t letter, const std::string& unixFolder)
{
    return Ask(letter, DRIVE_REMOVABLE, unixFolder);
}

bool TakeCardOut(wchar_t letter)
{
    return Ask(letter, DRIVE_NO_ROOT_DIR, {});
}

} // namespace kestraboot::simulators
