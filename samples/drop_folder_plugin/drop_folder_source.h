#pragma once

#include "counted.h"

#include <memory>

class FolderWatch;

/// The source manager, interface 13: a device source whose one device is the folder.
///
/// It is made with `new` and freed with its last reference. At the end of the process the host never
/// gives that back, so no destructor waits for a thread that Windows has stopped already.
class DropFolderSource final : public Counted<kestraboot::mox::ISourceManager>
{
public:
    DropFolderSource();
    ~DropFolderSource() override;

    bool Query(kestraboot::mox::InterfaceNumber number, void** object) override;
    kestraboot::mox::Status GetCategory(std::uint32_t* category) override;
    kestraboot::mox::Status RegisterCallback(kestraboot::mox::ICallbackInterface* callback) override;
    kestraboot::mox::Status UnregisterCallback(kestraboot::mox::ICallbackInterface* callback) override;

private:
    std::unique_ptr<FolderWatch> watch;
};
