// The way from phone.exe to the phone manager: one message through a named pipe for each report,
// answered when the host has accepted or refused it.
#pragma once

#include <cstdint>

inline constexpr const wchar_t* kPhonePipe = L"\\\\.\\pipe\\kestraboot-phone";

struct PhoneNews {
    std::uint32_t mobileReady; ///< as the device record has it
    wchar_t deviceId[260];
};

/// The answer is the status of the callback.
using PhoneAnswer = std::uint32_t;
