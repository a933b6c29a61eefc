#include "tests/registry/fake_processes.h"

#include "registry/other_instances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace kestraboot::tests
{
namespace
{

constexpr std::uintptr_t kSnapshot = 0x60000000;
constexpr std::uintptr_t kProcesses = 0x70000000; // a process handle is this plus its number

HANDLE ToHandle(std::uintptr_t number)
{
    return reinterpret_cast<HANDLE>(number);
}

std::uintptr_t ToNumber(HANDLE handle)
{
    return reinterpret_cast<std::uintptr_t>(handle);
}

} // namespace

FakeProcesses::FakeProcesses(std::vector<Process> others, std::wstring ownPath)
    : processes(std::move(others)), snapshot([this](DWORD flags, DWORD) -> HANDLE {
          EXPECT_EQ(flags, static_cast<DWORD>(TH32CS_SNAPPROCESS));
          return snapshotWorks ? ToHandle(kSnapshot) : INVALID_HANDLE_VALUE;
      }),
      first([this](HANDLE list, PROCESSENTRY32W* entry) -> BOOL {
          next = 0;
          return Next(list, entry);
      }),
      following([this](HANDLE list, PROCESSENTRY32W* entry) -> BOOL {
          return Next(list, entry);
      }),
      open([this](DWORD access, BOOL inherit, DWORD id) -> HANDLE {
          return Open(access, inherit, id);
      }),
      modules([this](HANDLE process, HMODULE* list, DWORD room, DWORD*) -> BOOL {
          EXPECT_EQ(room, sizeof(HMODULE));
          const Process* const found = Find(process);
          *list = reinterpret_cast<HMODULE>(std::uintptr_t{found->id});
          return found->hasModules;
      }),
      name([this](HANDLE process, HMODULE module, wchar_t* path, DWORD capacity) -> DWORD {
          const Process* const found = Find(process);
          EXPECT_EQ(module, reinterpret_cast<HMODULE>(std::uintptr_t{found->id}));
          const std::size_t copied = found->path.copy(path, capacity - 1);
          path[copied] = L'\0';
          return static_cast<DWORD>(copied);
      }),
      close([this](HANDLE handle) -> BOOL {
          if (ToNumber(handle) == kSnapshot) {
              EXPECT_FALSE(snapshotClosed);
              snapshotClosed = true;
          } else if (ToNumber(handle) >= kProcesses && ToNumber(handle) < 2 * kProcesses) {
              --openHandles[static_cast<DWORD>(ToNumber(handle) - kProcesses)];
          } else {
              return close.CallOriginal(handle);
          }
          return TRUE;
      }),
      windows([this](WNDENUMPROC callback, LPARAM parameter) -> BOOL {
          EXPECT_EQ(callback, &CloseBootWindowsProc);
          EXPECT_EQ(parameter, 0);
          events.push_back(L"ask windows");
          return FALSE;
      }),
      sleep([this](DWORD milliseconds) {
          events.push_back(L"wait " + std::to_wstring(milliseconds));
      }),
      terminate([this](HANDLE process, UINT code) -> BOOL {
          events.push_back(L"end " + std::to_wstring(Find(process)->id) + L" with " +
                           std::to_wstring(code));
          return TRUE;
      })
{
    processes.insert(processes.begin() + static_cast<std::ptrdiff_t>(processes.size() / 2),
                     Process{::GetCurrentProcessId(), std::move(ownPath)});
}

std::set<DWORD> FakeProcesses::LeftOpen() const
{
    std::set<DWORD> left;
    for (const auto& [id, count] : openHandles) {
        EXPECT_GE(count, 0) << id << " is closed more than once";
        EXPECT_LE(count, 1) << id;
        if (count > 0) {
            left.insert(id);
        }
    }
    return left;
}

HANDLE FakeProcesses::Open(DWORD access, BOOL inherit, DWORD id)
{
    EXPECT_EQ(access, static_cast<DWORD>(PROCESS_ALL_ACCESS));
    EXPECT_EQ(inherit, FALSE);
    const auto found = std::ranges::find(processes, id, &Process::id);
    if (found == processes.end() || !found->opens) {
        return nullptr;
    }
    ++openHandles[id];
    return ToHandle(kProcesses + id);
}

BOOL FakeProcesses::Next(HANDLE list, PROCESSENTRY32W* entry)
{
    EXPECT_EQ(entry->dwSize, 568U);
    if (ToNumber(list) != kSnapshot || next == processes.size()) {
        return FALSE;
    }
    entry->th32ProcessID = processes[next++].id;
    return TRUE;
}

const FakeProcesses::Process* FakeProcesses::Find(HANDLE handle) const
{
    const auto id = static_cast<DWORD>(ToNumber(handle) - kProcesses);
    return &*std::ranges::find(processes, id, &Process::id);
}

} // namespace kestraboot::tests
