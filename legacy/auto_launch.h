// The organiser's own reaction to device arrival, switched by its device-connect program.
#pragma once

namespace kestraboot
{

/// Both start the program detached and do not wait. If the organiser is not installed, or its
/// program cannot be started, they do nothing and write no trace line.
void StartOrganiserAutoLaunch();
void StopOrganiserAutoLaunch();

} // namespace kestraboot
