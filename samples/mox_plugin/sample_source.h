#pragma once

#include "kestraboot/mox_plugin.h"

#include <windows.h>

// The source manager: interface 13.
class SampleSource final : public kestraboot::mox::ISourceManager
{
public:
    bool Query(kestraboot::mox::InterfaceNumber number, void** object) override;
    std::uint32_t AddReference() override;
    std::uint32_t Release() override;
    kestraboot::mox::Status GetCategory(std::uint32_t* category) override;
    kestraboot::mox::Status RegisterCallback(kestraboot::mox::ICallbackInterface* given) override;
    kestraboot::mox::Status UnregisterCallback(kestraboot::mox::ICallbackInterface* given) override;

private:
    ~SampleSource();

    static DWORD WINAPI WatchThread(LPVOID self);
    void Watch();
    void StopWatching();

    volatile LONG references = 1; // its creator's
    kestraboot::mox::ICallbackInterface* callback = nullptr;
    HANDLE deviceArrived = nullptr;
    HANDLE ending = nullptr;
    HANDLE thread = nullptr;
};
