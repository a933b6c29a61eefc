#include "tests/support/host_channel.h"

namespace kestraboot::tests
{
namespace
{

HANDLE Open(const std::wstring& pipe, DWORD access)
{
    return ::CreateFileW(pipe.c_str(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

std::string Utf8(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    std::string bytes(3 * text.size(), '\0'); // the longest of any text
    bytes.resize(static_cast<std::size_t>(
        ::WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, bytes.data(),
                              static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

} // namespace

HostChannel::HostChannel(const std::wstring& pipe)
    : output(Open(pipe + L"-out", GENERIC_WRITE)), input(Open(pipe + L"-in", GENERIC_READ))
{
}

bool HostChannel::IsOpen() const noexcept
{
    return output != INVALID_HANDLE_VALUE && input != INVALID_HANDLE_VALUE;
}

bool HostChannel::Next(std::string& command)
{
    std::size_t end = 0;
    while ((end = unread.find('\n')) == std::string::npos) {
        char piece[256];
        DWORD got = 0;
        if (!::ReadFile(input, piece, sizeof piece, &got, nullptr) || got == 0) {
            return false;
        }
        unread.append(piece, got);
    }
    command = unread.substr(0, end);
    unread.erase(0, end + 1);
    return true;
}

void HostChannel::Say(const std::string& line)
{
    const std::string whole = line + "\n";
    const std::lock_guard lock(mutex);
    DWORD written = 0;
    ::WriteFile(output, whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr);
}

void HostChannel::Say(const char* word, const std::wstring& text)
{
    Say(std::string(word) + " " + Utf8(text));
}

} // namespace kestraboot::tests
