// twain_32.dll: simulates the TWAIN source manager.
//
// Put it beside the program together with a text file "twain_sources.txt"; see configuration.h for
// other places. Each line is one installed data source:
//   source PRODUCT NAME
// The name goes out in the ANSI code page; one of 34 bytes or more fills its field without a terminator.
// Lines that make it fail:
//   fail-open     MSG_OPENDSM answers TWRC_FAILURE
//   check-status  MSG_OPENDSM answers TWRC_CHECKSTATUS (2), which is no failure
//   endless       the list starts over at its end
// It is as strict as the strictest real source manager, and refuses with TWRC_FAILURE:
//   an application without a product name, or with a text field that has no terminator
//   an application that is not the one that opened it, known by the Id that it was given then
//   a parent that is no window's handle
//   to be opened twice, to be asked or closed before it is open, the next source before the first one
// If there is a file "twain_calls.txt" beside it, it receives a line for each call, with the reason of a
// refusal.
#include "trackers/still_image/twain.h"
#include "twain_call_log.h"
#include "twain_source_list.h"

#include <windows.h>

#include <cstring>
#include <vector>

namespace
{

using namespace kestraboot::twain;
using namespace kestraboot::simulators;

constexpr TW_UINT16 kCheckStatus = 2; // TWRC_CHECKSTATUS

TW_UINT32 openedBy = 0; ///< the Id of the application that has it open, or 0
bool isListBegun = false;
const char* refusal = nullptr; ///< of the call that is being answered

TW_UINT16 Refuse(const char* why)
{
    refusal = why;
    return TWRC_FAILURE;
}

bool IsTerminated(const TW_STR32& text)
{
    return std::memchr(text, '\0', sizeof text) != nullptr;
}

const char* FaultOf(const TW_IDENTITY& application)
{
    if (application.ProductName[0] == '\0') {
        return "the product name is empty";
    }
    for (const TW_STR32* text : {&application.Version.Info, &application.Manufacturer,
                                 &application.ProductFamily, &application.ProductName}) {
        if (!IsTerminated(*text)) {
            return "a text has no terminator";
        }
    }
    return nullptr;
}

TW_UINT16 Open(TW_IDENTITY& application, const HWND* parent)
{
    const std::vector<Entry> entries = ReadSourceEntries();
    if (openedBy != 0) {
        return Refuse("it is open already");
    }
    if (const char* const fault = FaultOf(application)) {
        return Refuse(fault);
    }
    if (parent == nullptr || !::IsWindow(*parent)) {
        return Refuse("the parent is no window");
    }
    if (Says(entries, "fail-open")) {
        return Refuse("it is told to");
    }
    static TW_UINT32 lastId = 0;
    openedBy = application.Id = ++lastId;
    return Says(entries, "check-status") ? kCheckStatus : TWRC_SUCCESS;
}

TW_UINT16 Close(TW_IDENTITY& application, const HWND* parent)
{
    if (parent == nullptr || !::IsWindow(*parent)) {
        return Refuse("the parent is no window");
    }
    openedBy = application.Id = 0;
    isListBegun = false;
    return TWRC_SUCCESS;
}

TW_UINT16 Ask(TW_UINT16 argumentType, TW_UINT16 message, void* data)
{
    if (argumentType != DAT_IDENTITY || (message != MSG_GETFIRST && message != MSG_GETNEXT)) {
        return Refuse("there is no such question");
    }
    if (data == nullptr) {
        return Refuse("there is no room for the answer");
    }
    if (message == MSG_GETFIRST) {
        BeginSourceList();
        isListBegun = true;
    } else if (!isListBegun) {
        return Refuse("the first source was not asked for");
    }
    return NextSource(*static_cast<TW_IDENTITY*>(data));
}

TW_UINT16 Answer(TW_IDENTITY& application, TW_UINT32 group, TW_UINT16 argumentType, TW_UINT16 message,
                 void* data)
{
    if (group != DG_CONTROL) {
        return Refuse("there is no such group");
    }
    const bool ofParent = argumentType == DAT_PARENT;
    if (ofParent && message == MSG_OPENDSM) {
        return Open(application, static_cast<const HWND*>(data));
    }
    if (openedBy == 0) {
        return Refuse("it is not open");
    }
    if (application.Id != openedBy) {
        return Refuse("another application opened it");
    }
    return ofParent && message == MSG_CLOSEDSM ? Close(application, static_cast<const HWND*>(data))
                                               : Ask(argumentType, message, data);
}

} // namespace

extern "C" TW_UINT16 WINAPI SimulatorEntry(TW_IDENTITY*, TW_IDENTITY*, TW_UINT32, TW_UINT16, TW_UINT16,
                                           void*);

// Exported as ordinal 1.
TW_UINT16 WINAPI SimulatorEntry(TW_IDENTITY* origin, TW_IDENTITY* destination, TW_UINT32 group,
                                TW_UINT16 argumentType, TW_UINT16 message, void* data)
{
    const TwainCall call = {*origin, destination != nullptr, group, argumentType, message, data};
    refusal = nullptr;
    const TW_UINT16 result = Answer(*origin, group, argumentType, message, data);
    LogCall(call, result, refusal);
    return result;
}
