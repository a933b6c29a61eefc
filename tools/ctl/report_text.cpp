#include "tools/common/utf8.h"
#include "tools/ctl/report_format.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

class Text
{
public:
    void Line(const std::wstring& text = {}, Style style = Style::Plain)
    {
        std::wstring printable = text;
        std::ranges::replace_if(
            printable,
            [](wchar_t character) {
                return character < 0x20 || character == 0x7F;
            },
            L' ');
        parts.push_back({style, ToUtf8(printable) + "\r\n"});
    }

    void Field(const wchar_t* name, const std::wstring& value, Style style = Style::Plain)
    {
        std::wstring head = std::wstring(L"     ") + name;
        head.resize(20, L' ');
        Line(head + value, style);
    }

    StyledText parts;
};

std::wstring Listed(const std::vector<std::wstring>& words)
{
    std::wstring text;
    for (const std::wstring& word : words) {
        text += (text.empty() ? L"" : L", ") + word;
    }
    return text;
}

std::wstring Formats(const appInfo_tag& info, const wchar_t* mediaType)
{
    std::wstring text;
    for (const formatInfo_tag& format : info.FileFormats) {
        if (format.MediaType == mediaType) {
            text += (text.empty() ? L"" : L" ") + format.Extension;
        }
    }
    return text;
}

void AddFormats(Text& text, const appInfo_tag& info)
{
    bool any = false;
    for (const wchar_t* const mediaType : {L"Image", L"Audio", L"Video"}) {
        const std::wstring extensions = Formats(info, mediaType);
        if (!extensions.empty()) {
            text.Field(any ? L"" : L"formats", std::wstring(mediaType) + L": " + extensions);
            any = true;
        }
    }
    if (!any) {
        text.Field(L"formats", L"(none)");
    }
}

void AddApplication(Text& text, std::size_t place, const ListedApplication& application)
{
    const appInfo_tag& info = application.info;
    text.Line(L"  " + std::to_wstring(place) + L". " + (info.Name.empty() ? L"(no name)" : info.Name) +
                  (info.DefaultFlag != 0 ? L"  [default]" : L""),
              Style::Good);
    text.Field(L"key", info.KeyPath);
    text.Field(L"application", info.CmdLine);
    text.Field(L"proxy", info.ProxyPath);
    if (!info.Desc.empty()) {
        text.Field(L"description", info.Desc);
    }
    if (!info.Icon.empty()) {
        text.Field(L"icon", info.Icon);
    }
    AddFormats(text, info);
    text.Field(L"launch status", application.mayLaunch ? L"may launch" : L"may not launch",
               application.mayLaunch ? Style::Plain : Style::Bad);
    text.Field(L"locale", application.locale + (application.localeStored ? L"" : L" (none is set)"));
    if (application.key.sniffDepth) {
        text.Field(L"search depth",
                   std::to_wstring(*application.key.sniffDepth) +
                       (*application.key.sniffDepth == 0 ? L" (cards are switched off)" : L""));
    }
}

void AddApplications(Text& text, const Report& report)
{
    text.Line(L"Applications, in the library's order");
    if (report.applications.empty()) {
        text.Line(L"  (none: a boot program that finds this ends, and removes the auto-run entry if it "
                  L"may write to HKEY_LOCAL_MACHINE)",
                  Style::Bad);
    }
    for (std::size_t i = 0; i < report.applications.size(); ++i) {
        AddApplication(text, i + 1, report.applications[i]);
    }
    text.Line();
    if (!report.leftOut.empty()) {
        text.Line(L"Registered, but left out");
        for (const LeftOutApplication& left : report.leftOut) {
            text.Line(L"   - " + left.key.name.value_or(L"(no name)"), Style::Bad);
            text.Field(L"key", left.key.path);
            for (const Reason& reason : left.reasons) {
                text.Field(L"why", reason.text);
            }
            if (left.reasons.empty()) {
                text.Field(L"why", L"not known: everything that it needs is there");
            }
        }
        text.Line();
    }
}

std::wstring Starts(const std::optional<NextLaunch>& next)
{
    return next ? L"starts " + next->application + L" in mode " + next->mode
                : std::wstring(L"starts nothing");
}

void AddAutoRun(Text& text, const Report& report)
{
    if (!report.autoRun) {
        text.Line(L"Auto-run    (no entry: nothing starts at log-on)", Style::Bad);
        return;
    }
    text.Line(L"Auto-run    " + *report.autoRun);
    if (!report.autoRunExists) {
        text.Line(L"            a file that does not exist", Style::Bad);
    } else if (!report.autoRunApplication) {
        text.Line(L"            the proxy of no listed application", Style::Bad);
    } else {
        text.Line(L"            the proxy of " + *report.autoRunApplication);
    }
}

} // namespace

StyledText FormatReport(const Report& report)
{
    Text text;
    AddApplications(text, report);
    text.Line(L"Defaults    " + (report.defaults.empty() ? L"(none)" : Listed(report.defaults)));
    text.Line(L"An arrival  " + Starts(report.next));
    if (report.nextOfCard != report.next) {
        text.Line(L"A card      " + Starts(report.nextOfCard));
        text.Line(
            L"            (the machine's default holds until the user's own flag is made, which the "
            L"search of a card does)",
            Style::Faint);
    }
    AddAutoRun(text, report);
    text.Line(L"Organiser   " + (report.organiser
                                     ? report.organiser->Name + L", " + report.organiser->ProxyPath
                                     : std::wstring(L"(not installed)")));
    return text.parts;
}

} // namespace kestraboot::tools
