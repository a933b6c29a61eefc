// Names of keys that more than one file of this room uses.
#pragma once

namespace kestraboot
{

/// The root of everything that compatible applications register, in both hives.
inline constexpr const wchar_t* kCorvaneRoot = L"SOFTWARE\\Corvane";

/// The name, case included, of a compatible application's own key, at any depth below the root.
inline constexpr const wchar_t* kApplicationKeyName = L"Corvane Kestrafetch";

} // namespace kestraboot
