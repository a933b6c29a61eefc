// The signal of a started application.
#pragma once

namespace kestraboot::bench
{

inline constexpr const wchar_t* kStartedEvent = L"KestrabootBenchStarted";
inline constexpr const wchar_t* kRunningMutex = L"KestrabootBenchRunning"; ///< until the program exits

} // namespace kestraboot::bench
