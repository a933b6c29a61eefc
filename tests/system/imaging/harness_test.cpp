// The checks themselves: each must detect a fault that the test plants.
#include "tests/system/imaging/imaging_host_process.h"
#include "tests/system/imaging/leak_check.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

using SuspendProcess = LONG(WINAPI*)(HANDLE);

TEST(AHost, ThatHangsFailsTheTest)
{
    auto host = std::make_unique<ImagingHostProcess>(L"imaging_host_6_1.exe");
    const auto suspend = reinterpret_cast<SuspendProcess>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtSuspendProcess")));
    ASSERT_EQ(suspend(host->Handle()), 0);
    host->GiveToEnd(500);
    EXPECT_NONFATAL_FAILURE(host.reset(), "the host hangs");
}

TEST(AHost, ThatExitsWithAnErrorFailsTheTest)
{
    auto host = std::make_unique<ImagingHostProcess>(L"imaging_host_6_1.exe");
    ::TerminateProcess(host->Handle(), 3);
    EXPECT_NONFATAL_FAILURE(host.reset(), "the host ended by itself, or badly: code 3");
}

TEST(AHost, ThatIsGoneHasNoFurtherLineAndTakesNoCommand)
{
    auto host = std::make_unique<ImagingHostProcess>(L"imaging_host_6_1.exe");
    ::TerminateProcess(host->Handle(), 3);
    EXPECT_FALSE(host->WaitFor("never"));
    EXPECT_THROW(host->ReadUntil("never"), std::runtime_error);
    EXPECT_THROW(host->Send("here 1"), std::runtime_error);
    EXPECT_NONFATAL_FAILURE(host.reset(), "the host ended by itself, or badly: code 3");
}

constexpr int kLookUps = 100; // the smallest number in any test of leaks

std::string Leaks(const std::function<void()>& lookUp)
{
    return LeavesNothingBehind(::GetCurrentProcess(), "they",
                               [&] {
                                   for (int i = 0; i < kLookUps; ++i) {
                                       lookUp();
                                   }
                               })
        .message();
}

TEST(ALeak, IsNotReportedIfThereIsNone)
{
    EXPECT_EQ(Leaks([] {}), "");
}

TEST(ALeak, OfOneHandleInTenLookUpsIsNamed)
{
    int count = 0;
    EXPECT_EQ(Leaks([&] {
                  if (++count % 10 == 0) {
                      static_cast<void>(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
                  }
              }),
              "they leak each time: handles");
}

TEST(ALeak, OfTenKilobytesALookUpIsNamed)
{
    std::vector<std::vector<char>> kept;
    EXPECT_EQ(Leaks([&] {
                  kept.emplace_back(10'240, 'x');
              }),
              "they leak each time: memory");
}

TEST(ALeak, OfAWindowIsNamed)
{
    std::vector<HWND> kept;
    int count = 0;
    EXPECT_NE(Leaks([&] {
                  if (++count % kLookUps == 0) {
                      kept.push_back(::CreateWindowExW(0, L"STATIC", L"left", WS_POPUP, 0, 0, 0, 0,
                                                       nullptr, nullptr, nullptr, nullptr));
                  }
              }).find("windows"),
              std::string::npos);
    for (const HWND window : kept) {
        ::DestroyWindow(window);
    }
}

/// Waits for the event, 60 s at most.
DWORD WINAPI Linger(void* letGo)
{
    return ::WaitForSingleObject(letGo, 60'000);
}

TEST(ALeak, OfAThreadIsNamed)
{
    const HANDLE letGo = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::vector<HANDLE> kept;
    int count = 0;
    EXPECT_NE(Leaks([&] {
                  if (++count % kLookUps == 0) {
                      kept.push_back(::CreateThread(nullptr, 65'536, Linger, letGo, 0, nullptr));
                  }
              }).find("threads"),
              std::string::npos);
    ::SetEvent(letGo);
    // Wine frees the stack of a thread when the next one exits. In another test the memory that falls
    // would hide a leak.
    kept.push_back(::CreateThread(nullptr, 65'536, Linger, letGo, 0, nullptr));
    for (const HANDLE thread : kept) {
        ::WaitForSingleObject(thread, INFINITE);
        ::CloseHandle(thread);
    }
    ::CloseHandle(letGo);
}

} // namespace
} // namespace kestraboot::tests
