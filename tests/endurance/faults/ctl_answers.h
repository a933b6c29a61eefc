// Windows' answers to kestractl in a sweep: the account, the version, the processes, the folders and
// the services, always the same ones.
#pragma once

#include "tests/support/import_patch.h"

#include <memory>
#include <string>

namespace kestraboot::tests
{

/// Set before the scene begins.
struct CtlAnswersGiven {
    std::wstring windowsFolder;
    std::wstring bootProgram; ///< of the process in control
    std::wstring ownProgram;  ///< of kestractl itself
    bool hasWindow = true;    ///< of the process in control
};
CtlAnswersGiven& CtlAnswer();

/// To the library, which identifies its program so: Wine takes longer for that than for all the rest.
struct LibraryAnswers {
    LibraryAnswers();
    LookupPatch modules, path;
};

/// Steers the module under test, and the library, while it lives.
struct CtlAnswers {
    CtlAnswers();
    std::unique_ptr<LibraryAnswers> ofTheLibrary;
    ImportPatch number, open, image, token, tokenData, account, session, sessionText, freeText;
    ImportPatch claim, windows, title, owner, snapshot, firstProcess, nextProcess;
    ImportPatch version, windowsFolder, systemFolder, variable, path, event;
    ImportPatch manager, service, configuration, status, closeService;
};

} // namespace kestraboot::tests
