#include "boot/usage.h"

#include "boot/console.h"
#include "kestraboot/build.h"
#include "kestraboot/version.h"

void AnswerUsage() noexcept
{
    Answer(L"kestraboot.exe [-install]                      takes control and serves\n"
           L"kestraboot.exe -uninstall                      ends the others and hands over\n"
           L"kestraboot.exe -default [app name] [yes | no]  makes it the only default or not\n"
           L"kestraboot.exe --help                          shows this text (as -h and /?)\n"
           L"kestraboot.exe --version                       shows the version\n");
}

void AnswerVersion() noexcept
{
    Answer(L"kestraboot " KESTRABOOT_VERSION_TEXT L"\n" KESTRABOOT_BUILD_TEXT);
}
