#include "tests/support/echo_child.h"

#include "tests/support/sample_application.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <shellapi.h>

namespace kestraboot::tests
{

EchoChild::EchoChild(const std::filesystem::path& relative)
    : program((folder.Path() / relative).wstring()),
      file((folder.Path() / L"command_line.txt").wstring())
{
    static std::atomic<int> count = 0;
    std::filesystem::create_directories(std::filesystem::path(program).parent_path());
    std::filesystem::copy_file(
        std::filesystem::path(OwnExecutablePath()).parent_path() / L"echo_command_line.exe", program);
    const std::wstring event =
        L"KestrabootEcho-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(count++);
    done = ::CreateEventW(nullptr, FALSE, FALSE, event.c_str());
    ::SetEnvironmentVariableW(L"KESTRABOOT_ECHO_FILE", file.c_str());
    ::SetEnvironmentVariableW(L"KESTRABOOT_ECHO_EVENT", event.c_str());
}

EchoChild::~EchoChild()
{
    ::SetEnvironmentVariableW(L"KESTRABOOT_ECHO_FILE", nullptr);
    ::SetEnvironmentVariableW(L"KESTRABOOT_ECHO_EVENT", nullptr);
    ::CloseHandle(done);
}

std::optional<std::wstring> EchoChild::CommandLine() const
{
    constexpr DWORD kLongestStart = 30'000; // milliseconds
    if (::WaitForSingleObject(done, kLongestStart) != WAIT_OBJECT_0) {
        return std::nullopt;
    }
    std::ifstream in(std::filesystem::path(file), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    return std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
}

std::vector<std::wstring> SplitCommandLine(const std::wstring& line)
{
    int count = 0;
    wchar_t** const words = ::CommandLineToArgvW(line.c_str(), &count);
    std::vector<std::wstring> split(words, words + count);
    ::LocalFree(words);
    return split;
}

} // namespace kestraboot::tests
