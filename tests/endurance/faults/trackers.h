// The trackers' threads of the shipped library; a scene runs them where and when it needs them.
#pragma once

#include "tests/support/import_patch.h"

#include <windows.h>

namespace kestraboot::tests
{

enum class Tracker { Volume, Wia, StillImage, Plugins };

/// Starts the service, on a Windows that has all four, without their threads.
class Trackers
{
public:
    Trackers();
    Trackers(const Trackers&) = delete;
    Trackers& operator=(const Trackers&) = delete;
    ~Trackers();

    /// Runs one until its message loop ends. Threads that it creates run at once, inside it.
    static void Run(Tracker tracker);

private:
    ImportPatch create;
};

/// Starts the service again; the journal names the threads that it created.
void StartService();

} // namespace kestraboot::tests
