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
#include "../common/configuration.h"
#include "trackers/still_image/twain.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace
{

using namespace kestraboot::twain;
using namespace kestraboot::simulators;

constexpr TW_UINT16 kCheckStatus = 2; // TWRC_CHECKSTATUS
constexpr TW_UINT16 kEndOfList = 7;   // TWRC_ENDOFLIST

TW_UINT32 openedBy = 0; ///< the Id of the application that has it open, or 0
bool isEndless = false;
bool isListBegun = false;
std::size_t nextSource = 0;
std::vector<std::wstring> sourceNames;
const char* refusal = nullptr; ///< of the call that is being answered

std::vector<Entry> ListedSources()
{
    return ReadEntries(L"twain_sources.txt");
}

TW_UINT16 Refuse(const char* why)
{
    refusal = why;
    return TWRC_FAILURE;
}

void FillSource(const std::wstring& name, TW_IDENTITY& source)
{
    char ansi[256] = {};
    ::WideCharToMultiByte(CP_ACP, 0, name.c_str(), -1, ansi, sizeof ansi - 1, nullptr, nullptr);
    // The rest of the field is not zero, as with a real source.
    std::memset(source.ProductName, '~', sizeof source.ProductName);
    std::memcpy(source.ProductName, ansi, std::min(std::strlen(ansi) + 1, sizeof source.ProductName));
    source.Id = static_cast<TW_UINT32>(nextSource);
}

/// The list is read when it is begun.
void StartList()
{
    sourceNames.clear();
    const std::vector<Entry> entries = ListedSources();
    for (const Entry& entry : entries) {
        if (entry.word == "source") {
            sourceNames.push_back(entry.rest);
        }
    }
    isEndless = Says(entries, "endless") && !sourceNames.empty();
    nextSource = 0;
}

TW_UINT16 Next(TW_IDENTITY& source)
{
    if (nextSource >= sourceNames.size() && isEndless) {
        nextSource = 0;
    }
    if (nextSource >= sourceNames.size()) {
        return kEndOfList;
    }
    FillSource(sourceNames[nextSource++], source);
    return TWRC_SUCCESS;
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
    const std::vector<Entry> entries = ListedSources();
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
        StartList();
        isListBegun = true;
    } else if (!isListBegun) {
        return Refuse("the first source was not asked for");
    }
    return Next(*static_cast<TW_IDENTITY*>(data));
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

std::string Hex(const void* bytes, std::size_t count)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned byte = static_cast<const unsigned char*>(bytes)[i];
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

/// Title, class, style and place of the window, where the data is a pointer to its handle.
std::string Parent(TW_UINT16 argumentType, const void* data)
{
    if (argumentType != DAT_PARENT || data == nullptr) {
        return {};
    }
    const HWND window = *static_cast<const HWND*>(data);
    wchar_t title[64] = {};
    wchar_t windowClass[64] = {};
    RECT place = {};
    ::GetWindowTextW(window, title, 64);
    ::GetClassNameW(window, windowClass, 64);
    ::GetWindowRect(window, &place);
    const auto style = static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE));
    return " parent=" + ToUtf8(title) + "," + ToUtf8(windowClass) + (style & WS_POPUP ? ",popup" : "") +
           (style & WS_VISIBLE ? ",visible" : "") + "," + std::to_string(place.left) + "," +
           std::to_string(place.top) + "," + std::to_string(place.right - place.left) + "," +
           std::to_string(place.bottom - place.top);
}

} // namespace

extern "C" TW_UINT16 WINAPI SimulatorEntry(TW_IDENTITY*, TW_IDENTITY*, TW_UINT32, TW_UINT16, TW_UINT16,
                                           void*);

// Exported as ordinal 1.
TW_UINT16 WINAPI SimulatorEntry(TW_IDENTITY* origin, TW_IDENTITY* destination, TW_UINT32 group,
                                TW_UINT16 argumentType, TW_UINT16 message, void* data)
{
    const std::string asker = Hex(origin, sizeof *origin); // as it came: opening gives it an Id
    refusal = nullptr;
    const TW_UINT16 result = Answer(*origin, group, argumentType, message, data);
    AddToLog(L"twain_calls.txt",
             std::to_string(message) + " of=" + std::to_string(group) + "," +
                 std::to_string(argumentType) + " destination=" +
                 std::to_string(destination != nullptr) + " result=" + std::to_string(result) +
                 (refusal != nullptr ? std::string(" refused: ") + refusal + ";" : std::string()) +
                 Parent(argumentType, data) + " origin=" + asker);
    return result;
}
