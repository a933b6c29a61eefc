// The organiser's own reaction to device arrival, switched by its device-connect program.
#pragma once

namespace kestraboot
{

/// Both start the program detached and do not wait. Nothing happens, and nothing is traced, when the
/// organiser is not installed or its program cannot be started.
void StartOrganiserAutoLaunch();
void StopOrganiserAutoLaunch();

} // namespace kestraboot
