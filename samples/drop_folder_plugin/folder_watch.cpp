#include "folder_watch.h"

#include "no_boxes.h"
#include "report.h"
#include "texts.h"
#include "trace.h"

#include <new>

namespace mox = kestraboot::mox;
using News = ChangeFeed::News;

FolderWatch::FolderWatch(const Settings& given, mox::ICallbackInterface* lent)
    : settings(given), callback(lent), ending(::CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    callback->AddReference();
}

FolderWatch::~FolderWatch()
{
    if (thread) {
        ::SetEvent(ending.Get());
        ::WaitForSingleObject(thread.Get(), INFINITE); // no call of the callback begins after this
    }
    callback->Release();
}

bool FolderWatch::Start()
{
    thread = Handle(ending ? ::CreateThread(nullptr, 0, Thread, this, 0, nullptr) : nullptr);
    return static_cast<bool>(thread);
}

DWORD WINAPI FolderWatch::Thread(LPVOID self)
{
    static_cast<FolderWatch*>(self)->Run();
    return 0;
}

void FolderWatch::Run()
{
    const NoBoxes noBoxes;
    do {
        try {
            WatchWhileThere();
        } catch (const std::bad_alloc&) {
            ::OutputDebugStringW(texts::kOutOfMemory); // without a folder: that would need memory
        }
    } while (::WaitForSingleObject(ending.Get(), settings.retry) == WAIT_TIMEOUT);
}

void FolderWatch::WatchWhileThere()
{
    ChangeFeed feed;
    if (!BeginWith(feed)) {
        return;
    }
    bool due = true; // for pictures that came while the folder was away
    ULONGLONG until = ::GetTickCount64() + settings.settle;
    for (;;) {
        const ULONGLONG now = ::GetTickCount64();
        const News news = feed.Await(ending.Get(), now < until ? DWORD(until - now) : 0);
        if (news == News::Ended) {
            return;
        }
        if (news == News::Lost || (news == News::None && !feed.StillThere())) {
            Trace(settings.folder, texts::kGone);
            return;
        }
        if (news == News::Unrelated) {
            continue; // what is due stays due at the same time
        }
        if (news == News::Overflow) {
            Trace(settings.folder, texts::kOverflow);
        }
        due = news == News::None ? due && !LookAndReport() : true;
        until = ::GetTickCount64() + (due ? settings.settle : settings.retry);
    }
}

/// Opens the folder, and makes `known` hold the pictures that are no arrival.
bool FolderWatch::BeginWith(ChangeFeed& feed)
{
    if (!feed.Open(settings.folder)) {
        if (::GetLastError() == ERROR_FILE_NOT_FOUND) {
            // The folder above it is there, so this is no server that is away: every arrival is new.
            known.clear();
            beginningSeen = true;
        }
        if (!absenceTold) {
            Trace(settings.folder, texts::kAbsent);
        }
        absenceTold = true;
        return false;
    }
    if (!beginningSeen) {
        Pictures present;
        if (!ListPictures(settings.folder, ending.Get(), present)) {
            return false;
        }
        known.swap(present);
        beginningSeen = true;
    }
    absenceTold = false;
    Trace(settings.folder, texts::kWatching);
    return true;
}

/// Returns whether nothing is left to report.
bool FolderWatch::LookAndReport()
{
    Pictures present;
    if (!ListPictures(settings.folder, ending.Get(), present)) {
        return false;
    }
    Pictures settled; // with those that were known and are still there
    std::size_t fresh = 0;
    for (const std::wstring& picture : present) {
        const bool isKnown = known.count(picture) != 0;
        const PictureState state = isKnown ? PictureState::Settled : StateOf(picture);
        if (state == PictureState::Busy) {
            TellBusy(picture);
            return false; // it and the others are one report
        }
        if (state == PictureState::Settled) {
            settled.insert(picture);
            fresh += isKnown ? 0 : 1;
        }
    }
    const std::wstring text = texts::kReported + std::to_wstring(fresh);
    if (fresh != 0 && !Report(*callback, settings.folder)) {
        Trace(settings.folder, texts::kNotReported);
        return false;
    }
    known.swap(settled); // nothing between the report and this throws: it would be reported again
    busyTold.clear();
    if (fresh != 0) {
        Trace(settings.folder, text);
    }
    return true;
}

void FolderWatch::TellBusy(const std::wstring& picture)
{
    if (busyTold != picture) {
        Trace(picture, texts::kBusy);
        busyTold = picture;
    }
}
