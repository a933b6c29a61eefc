// The boot executable's command line, and its "-default" switch.
#include "foundation/text.h"
#include "foundation/trace.h"
#include "kestraboot/command_handler.h"
#include "registry/application_record.h"

#include <windows.h>
#include <iterator>
#include <memory>
#include <shellapi.h>

using namespace kestraboot;

namespace
{

struct GlobalMemoryDeleter {
    void operator()(wchar_t** memory) const noexcept { ::GlobalFree(static_cast<void*>(memory)); }
};

std::vector<std::wstring> RecognisedWords(const wchar_t* const* words, int count)
{
    if (count == 1) {
        return {L"-install"};
    }
    const std::wstring first = words[1];
    if (EqualIgnoringCase(first, L"-install") || EqualIgnoringCase(first, L"-uninstall")) {
        return {first};
    }
    if (EqualIgnoringCase(first, L"-default")) {
        if (count == 4) {
            return {first, words[2], words[3]};
        }
        PrintConsole(L"\n !!! Please follow the syntax:");
        PrintConsole(L"\n [Qualified path]\\kestraboot.exe -default [app name] [yes | no] \n");
    }
    return {};
}

} // namespace

void CKestraBootCommandHandler::ParseCommandLineParameter(std::vector<std::wstring>& arguments)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, GlobalMemoryDeleter> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count));
    if (!words || count < 1) {
        return;
    }
    std::vector<std::wstring> recognised = RecognisedWords(words.get(), count);
    arguments.insert(arguments.end(), std::make_move_iterator(recognised.begin()),
                     std::make_move_iterator(recognised.end()));
}

bool CKestraBootCommandHandler::SetApplicationDefaultStatus(std::wstring& appName, std::wstring& value)
{
    MaintainOrder();
    appInfo_tag named;
    if (!GetApplicationInfo(appName, named)) {
        PrintConsole(L"\n !!! Invalid first argument value.");
        PrintConsole(L"\n !!! This application is not registered as Kestra compatible.");
        return false;
    }
    if (EqualIgnoringCase(value, L"yes")) {
        // The list itself: a copy could fail for lack of memory, and a second default would remain.
        for (appInfo_tag& application : applications) {
            application.DefaultFlag = 0;
            WriteDefaultFlag(PreferencesPath(application.KeyPath), 0);
        }
        WriteDefaultFlag(PreferencesPath(named.KeyPath), 1);
    } else if (EqualIgnoringCase(value, L"no")) {
        WriteDefaultFlag(PreferencesPath(named.KeyPath), 0);
    } else {
        PrintConsole(L"\n !!! Invalid second argument value.");
        return false;
    }
    MaintainOrder(); // reloads the list with the flags just written
    return true;
}
