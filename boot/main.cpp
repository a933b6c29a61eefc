// kestraboot.exe, the reference host: takes control at log-on and starts the default application
// for each device that the library reports. It uses the exported interface alone.
#include "boot/console.h"
#include "boot/exit_code.h"
#include "boot/libraries.h"
#include "boot/serve.h"
#include "boot/usage.h"
#include "kestraboot/kestraboot.h"

#include <windows.h>
#include <exception>
#include <initializer_list>
#include <memory>
#include <new>
#include <shellapi.h>
#include <string>
#include <vector>

namespace
{

struct LocalMemoryDeleter {
    void operator()(wchar_t** memory) const noexcept { ::LocalFree(static_cast<void*>(memory)); }
};

/// The first word after the program's name, as the library reads it; nothing if there is none.
std::wstring FirstWord()
{
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalMemoryDeleter> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count));
    return words && count > 1 ? words.get()[1] : L"";
}

bool IsOneOf(const std::wstring& word, std::initializer_list<const wchar_t*> options) noexcept
{
    for (const wchar_t* const option : options) {
        if (_wcsicmp(word.c_str(), option) == 0) {
            return true;
        }
    }
    return false;
}

ExitCode SetDefault(CKestraBootCommandHandler& handler, std::wstring& name, std::wstring& value)
{
    if (handler.SetApplicationDefaultStatus(name, value)) {
        return ExitCode::Done;
    }
    appInfo_tag application;
    return handler.GetApplicationInfo(name, application) ? ExitCode::Usage
                                                         : ExitCode::UnknownApplication;
}

ExitCode Run()
{
    const std::wstring first = FirstWord();
    if (IsOneOf(first, {L"--help", L"-h", L"/?"})) {
        AnswerUsage();
        return ExitCode::Done;
    }
    if (IsOneOf(first, {L"--version"})) {
        AnswerVersion();
        return ExitCode::Done;
    }
    const bool isDefault = IsOneOf(first, {L"-default"});
    if (isDefault) {
        JoinParentConsole(); // from here on the library prints what is wrong with the words
    }
    CKestraBootCommandHandler handler;
    std::vector<std::wstring> words;
    handler.ParseCommandLineParameter(words);
    if (words.empty()) {
        if (!isDefault) {
            AnswerUsage();
        }
        return ExitCode::Usage;
    }
    if (IsOneOf(words[0], {L"-default"})) { // also where memory ran out for the first word alone
        return SetDefault(handler, words[1], words[2]);
    }
    if (IsOneOf(words[0], {L"-uninstall"})) {
        LeaveConsole(); // this process starts the next application's boot program, which stays
        handler.Uninstall();
        return ExitCode::Done;
    }
    return Serve();
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    try {
        SearchNoLibraryInCurrentFolder();
        return static_cast<int>(Run());
    } catch (const std::bad_alloc&) {
        ReportFailure(L"<KestraBoot><!!! The boot program cannot go on: out of memory.>");
    } catch (const std::exception&) {
        ReportFailure(L"<KestraBoot><!!! The boot program cannot start: no folder to work in.>");
    }
    // The claim, if there is one, ends with the process.
    return static_cast<int>(ExitCode::CannotServe);
}
