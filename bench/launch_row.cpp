#include "bench/launch_row.h"

#include "bench/contest.h"
#include "bench/silenced.h"
#include "kestraboot/command_handler.h"
#include "tests/support/import_patch.h"

namespace kestraboot::bench
{
namespace
{

BOOL CALLBACK TellNoVersion(OSVERSIONINFOW* version) noexcept
{
    version->dwPlatformId = VER_PLATFORM_WIN32_NT;
    version->dwMajorVersion = 10;
    return TRUE;
}

/// The command line alone, in one string.
void Compose(const std::wstring& path, const std::wstring& mode, const std::wstring& type,
             const std::wstring& id)
{
    std::wstring line;
    line.reserve(path.size() + mode.size() + type.size() + id.size() + 64);
    line.append(L"\"").append(path).append(L"\" module=kestrafetch params mode=").append(mode);
    line.append(L" devType=").append(type).append(L" priDevId=\"").append(id).append(L"\"");
    ::OutputDebugStringW(line.c_str());
}

} // namespace

void CompeteInComposing(const Request& request)
{
    const tests::ImportPatch start("_wspawnlp", StartNothing);
    const tests::ImportPatch trace("OutputDebugStringW", DropLine);
    const tests::ImportPatch version("GetVersionExW", TellNoVersion);

    CKestraBootCommandHandler handler;
    std::wstring path = L"C:\\Program Files\\Picture Organiser\\organiser.exe";
    std::wstring mode = L"direct";
    std::wstring type = L"volume";
    std::wstring id = L"E:";
    Compete(request.row, request.size, request.rounds,
            {{"library", 0,
              [&] {
                  handler.LaunchKestra(path, mode, type, id);
              }},
             {"floor", 1.15,
              [&] {
                  Compose(path, mode, type, id);
              }}},
            Time::OfComputing);
}

} // namespace kestraboot::bench
