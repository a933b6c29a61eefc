#include "twain_call_log.h"

#include "../common/configuration.h"

#include <windows.h>

namespace kestraboot::simulators
{
namespace
{

using namespace twain;

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

void LogCall(const TwainCall& call, TW_UINT16 result, const char* refusal)
{
    AddToLog(
        L"twain_calls.txt",
        std::to_string(call.message) + " of=" + std::to_string(call.group) + "," +
            std::to_string(call.argumentType) + " destination=" + std::to_string(call.hasDestination) +
            " result=" + std::to_string(result) +
            (refusal != nullptr ? std::string(" refused: ") + refusal + ";" : std::string()) +
            Parent(call.argumentType, call.data) + " origin=" + Hex(&call.origin, sizeof call.origin));
}

} // namespace kestraboot::simulators
