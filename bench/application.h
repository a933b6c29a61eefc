// How a started application tells that it runs.
#pragma once

namespace kestraboot::bench
{

inline constexpr const wchar_t* kStartedEvent = L"KestrabootBenchStarted";
inline constexpr const wchar_t* kRunningMutex = L"KestrabootBenchRunning"; ///< gone when the program is

} // namespace kestraboot::bench
