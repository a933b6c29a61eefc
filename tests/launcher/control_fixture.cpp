#include "tests/launcher/control_fixture.h"

#include "tests/support/sample_application.h"

#include <atomic>

namespace kestraboot
{
namespace
{

std::atomic<int> count = 0;

} // namespace

Control::Control()
    : executable((folder.Path() / L"kestraboot.exe").wstring()),
      folderAtStart(std::filesystem::current_path()),
      mutex([this](SECURITY_ATTRIBUTES* security, BOOL owned, const wchar_t* asked) -> HANDLE {
          EXPECT_EQ(security, nullptr);
          EXPECT_EQ(owned, FALSE);
          EXPECT_STREQ(asked, L"Corvane Kestrafetch Boot");
          return created = mutex.CallOriginal(security, owned, claimName);
      }),
      moduleName([this](HANDLE, HMODULE, wchar_t* path, DWORD capacity) -> DWORD {
          const std::size_t copied = executable.copy(path, capacity);
          return static_cast<DWORD>(copied);
      }),
      output([this](const wchar_t* line) {
          events.emplace_back(line);
      })
{
    std::swprintf(claimName, 100, L"KestrabootClaim-%lu-%d", ::GetCurrentProcessId(), count++);
    tests::RegisterOrganiser(L"C:\\Legacy");
    spawns.OnSpawn([this](const tests::SpawnCall& call) {
        events.push_back(L"start " + std::filesystem::path(call.file).filename().wstring() + L' ' +
                         call.arguments.at(1));
    });
}

Control::~Control()
{
    std::filesystem::current_path(folderAtStart);
    if (Claimed()) {
        ::CloseHandle(created);
    }
}

bool Control::Take()
{
    return handler.TakeControl();
}

bool Control::Claimed() const
{
    const HANDLE opened = ::OpenMutexW(SYNCHRONIZE, FALSE, claimName);
    if (opened == nullptr) {
        return false;
    }
    ::CloseHandle(opened);
    return true;
}

} // namespace kestraboot
