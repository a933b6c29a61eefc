#include "drop_folder_source.h"

#include "folder_watch.h"
#include "texts.h"
#include "trace.h"

#include <new>

namespace mox = kestraboot::mox;

DropFolderSource::DropFolderSource() = default;
DropFolderSource::~DropFolderSource() = default;

bool DropFolderSource::Query(mox::InterfaceNumber number, void** object)
{
    *object = nullptr;
    if (number == mox::kSourceManagerNumber) {
        AddReference(); // every object that is handed out comes with a reference
        *object = static_cast<mox::ISourceManager*>(this);
    }
    return *object != nullptr;
}

mox::Status DropFolderSource::GetCategory(std::uint32_t* category)
{
    *category = mox::kDeviceSourceCategory;
    return mox::kSuccess;
}

mox::Status DropFolderSource::RegisterCallback(mox::ICallbackInterface* callback)
{
    if (callback == nullptr || watch != nullptr) {
        return mox::kBadArgument;
    }
    try {
        Settings settings;
        if (!ReadSettings(settings)) {
            return mox::kFailure;
        }
        auto started = std::make_unique<FolderWatch>(settings, callback);
        if (!started->Start()) {
            Trace(settings.folder, texts::kNoThread);
            return mox::kFailure;
        }
        watch = std::move(started);
    } catch (const std::bad_alloc&) {
        return mox::kOutOfMemory;
    }
    return mox::kSuccess;
}

mox::Status DropFolderSource::UnregisterCallback(mox::ICallbackInterface* callback)
{
    if (watch == nullptr || callback != watch->Callback()) {
        return mox::kBadArgument;
    }
    watch = nullptr;
    return mox::kSuccess;
}
