#include "tests/trackers/volume/steered_drives.h"

#include <gtest/gtest.h>

#include <cwchar>

namespace kestraboot::tests
{
namespace
{

UINT ModeNow()
{
    const UINT mode = ::SetErrorMode(0);
    ::SetErrorMode(mode);
    return mode;
}

} // namespace

SteeredDrives::SteeredDrives()
    : logical([this] {
          const std::lock_guard lock(mutex);
          DWORD mask = 0;
          for (const auto& [letter, drive] : drives) {
              mask |= DWORD{1} << (letter - L'A');
          }
          return mask;
      }),
      type([this](const wchar_t* root) -> UINT {
          const std::lock_guard lock(mutex);
          EXPECT_EQ(std::wcslen(root), 2U) << "a letter and a colon";
          modesAtWork.push_back(ModeNow());
          const auto drive = drives.find(root[0]);
          return drive != drives.end() ? drive->second.type : static_cast<UINT>(DRIVE_NO_ROOT_DIR);
      }),
      information([this](const wchar_t* root, wchar_t* name, DWORD nameSize, DWORD*, DWORD*, DWORD*,
                         wchar_t* fileSystem, DWORD fileSystemSize) {
          const std::lock_guard lock(mutex);
          EXPECT_EQ(nameSize, fileSystem == nullptr ? 255U : 260U);
          std::wmemset(name, L'n', nameSize); // a label that fills its field
          modesAtWork.push_back(ModeNow());
          return Answer(root[0], fileSystem, fileSystemSize);
      })
{
}

void SteeredDrives::Put(wchar_t letter, const Drive& drive)
{
    const std::lock_guard lock(mutex);
    drives[letter] = drive;
}

void SteeredDrives::Remove(wchar_t letter)
{
    const std::lock_guard lock(mutex);
    drives.erase(letter);
}

BOOL SteeredDrives::Answer(wchar_t letter, wchar_t* fileSystem, DWORD size)
{
    probed.push_back(letter);
    const auto drive = drives.find(letter);
    if (drive == drives.end() || !drive->second.holdsMedium) {
        return FALSE;
    }
    if (fileSystem != nullptr) {
        std::wcsncpy(fileSystem, drive->second.fileSystem.c_str(), size);
    }
    return TRUE;
}

} // namespace kestraboot::tests
