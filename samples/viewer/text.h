// The texts of the program. All of them are in viewer.rc.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

/// A text of the string table, with `values` in the place of %1, %2 and so on.
std::wstring Text(unsigned id, std::initializer_list<std::wstring_view> values = {});

/// A sentence about the device that arrived, by the words of the command line. `deviceType` may be any
/// word.
std::wstring ArrivalText(std::wstring_view deviceType, std::wstring_view deviceId);

/// "1.25 MB", as Windows writes it for this user.
std::wstring SizeText(std::uint64_t bytes);

/// The day, and the day with the time, of an EXIF date ("2026:11:21 13:26:59"), as this user writes
/// them; empty if it is none.
std::wstring DayText(std::string_view exif);
std::wstring DateText(std::string_view exif);

/// Windows' message about an error, on one line.
std::wstring ErrorText(unsigned long error);
