#include "report.h"

#include <windows.h>

#include <shlobj.h>

namespace
{

std::string ToUtf8(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0'); // at most three bytes for a UTF-16 unit
    const int used = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(used));
    return bytes;
}

std::filesystem::path ReportFile()
{
    wchar_t folder[MAX_PATH] = {};
    wchar_t program[MAX_PATH] = {};
    if (FAILED(::SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder)) ||
        ::GetModuleFileNameW(nullptr, program, MAX_PATH) == 0) {
        return {};
    }
    std::filesystem::path report = folder;
    report /= L"Corvane Sample Viewer";
    std::error_code exists;
    std::filesystem::create_directories(report, exists);
    return report / std::filesystem::path(program).stem().concat(L".txt");
}

/// In one write, so that starts at the same moment do not mix.
bool Append(const std::filesystem::path& file, const std::string& bytes)
{
    const HANDLE report =
        ::CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (report == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const bool whole =
        ::WriteFile(report, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
        written == bytes.size();
    ::CloseHandle(report);
    return whole;
}

} // namespace

std::wstring DescribeStart(const std::wstring& commandLine, const std::optional<LaunchRequest>& request)
{
    std::wstring text = L"command line: " + commandLine + L'\n';
    if (!request) {
        return text + L"not started for a device\n";
    }
    text += L"mode: " + request->mode + L'\n';
    return text + L"device: " + request->deviceType + L' ' + request->deviceId + L'\n';
}

std::wstring DescribePictures(const std::vector<std::filesystem::path>& pictures)
{
    std::wstring text;
    for (const std::filesystem::path& picture : pictures) {
        text += L"picture: " + picture.wstring() + L'\n';
    }
    return text + L"pictures: " + std::to_wstring(pictures.size()) + L'\n';
}

bool AppendToReport(const std::wstring& entry)
{
    return Append(ReportFile(), ToUtf8(entry));
}
