#include "text.h"

#include "resource.h"

#include <windows.h>

#include <cstdio>
#include <shlwapi.h>

namespace
{

bool Parse(std::string_view exif, SYSTEMTIME& time)
{
    const std::string text(exif);
    return std::sscanf(text.c_str(), "%4hu:%2hu:%2hu %2hu:%2hu", &time.wYear, &time.wMonth, &time.wDay,
                       &time.wHour, &time.wMinute) == 5;
}

} // namespace

std::wstring Text(unsigned id, std::initializer_list<std::wstring_view> values)
{
    const wchar_t* text = nullptr; // into the resource itself, without a terminator
    const int length =
        ::LoadStringW(::GetModuleHandleW(nullptr), id, reinterpret_cast<wchar_t*>(&text), 0);
    std::wstring filled;
    for (int i = 0; i < length; ++i) {
        const std::size_t value =
            text[i] == L'%' && i + 1 < length ? static_cast<std::size_t>(text[i + 1] - L'1') : SIZE_MAX;
        if (value < values.size()) {
            filled += values.begin()[value];
            ++i;
        } else {
            filled += text[i];
        }
    }
    return filled;
}

std::wstring ArrivalText(std::wstring_view deviceType, std::wstring_view deviceId)
{
    struct Kind {
        std::wstring_view word;
        unsigned text;
    };
    static constexpr Kind kKinds[] = {
        {L"volume", IDS_VOLUME},   {L"camera", IDS_CAMERA}, {L"scanner", IDS_SCANNER},
        {L"mobile", IDS_MOBILE},   {L"video", IDS_VIDEO},   {L"audio", IDS_AUDIO},
        {L"archive", IDS_ARCHIVE},
    };
    for (const Kind& kind : kKinds) {
        if (kind.word == deviceType) {
            return Text(kind.text, {deviceId});
        }
    }
    return Text(IDS_UNKNOWN);
}

std::wstring SizeText(std::uint64_t bytes)
{
    wchar_t text[64] = {};
    ::StrFormatByteSizeW(static_cast<LONGLONG>(bytes), text, 64);
    return text;
}

std::wstring DayText(std::string_view exif)
{
    SYSTEMTIME time = {};
    wchar_t day[64] = {};
    return Parse(exif, time) &&
                   ::GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, day, 64) != 0
               ? day
               : L""; // a month 13, as cameras write whose clock was never set
}

std::wstring DateText(std::string_view exif)
{
    SYSTEMTIME time = {};
    wchar_t clock[64] = {};
    const std::wstring day = DayText(exif);
    return !day.empty() && Parse(exif, time) &&
                   ::GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, clock, 64) != 0
               ? day + L' ' + clock
               : day;
}

std::wstring ErrorText(unsigned long error)
{
    wchar_t text[256] = {};
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                              FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                          nullptr, error, 0, text, 256, nullptr);
    if (length == 0) {
        return std::to_wstring(error);
    }
    const std::wstring_view whole(text, length);
    return std::wstring(whole.substr(0, whole.find_last_not_of(L' ') + 1));
}
