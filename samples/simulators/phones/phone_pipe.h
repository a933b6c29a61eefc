// How phone.exe reaches the phone manager: one message through a named pipe for each piece of news,
// answered when the host has been told.
#pragma once

#include <cstdint>

inline constexpr const wchar_t* kPhonePipe = L"\\\\.\\pipe\\kestraboot-phone";

struct PhoneNews {
    std::uint32_t mobileReady; ///< as the device record has it
    wchar_t deviceId[260];
};

/// The answer is the status of the callback.
using PhoneAnswer = std::uint32_t;
