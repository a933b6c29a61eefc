#pragma once

#include <windows.h>
#include <set>
#include <string>

struct IgnoreCase {
    bool operator()(const std::wstring& left, const std::wstring& right) const noexcept;
};

/// Full paths. Windows takes two that differ in their case for one.
using Pictures = std::set<std::wstring, IgnoreCase>;

/// Whether the extension is one of a picture.
[[nodiscard]] bool IsPicture(const std::wstring& name);

/// Adds the pictures of a folder and of those below it. A folder below it that cannot be read is left
/// out.
///
/// @param ending an event that breaks the search off
/// @return false: the folder itself cannot be read, or the search was broken off
[[nodiscard]] bool ListPictures(const std::wstring& folder, HANDLE ending, Pictures& pictures);

/// The state of a new picture.
enum class PictureState {
    Settled, ///< it has contents, and nobody has it open for writing
    Busy,    ///< somebody writes it
    Unknown, ///< empty, gone, or not to be read: a change of it comes first
};

[[nodiscard]] PictureState StateOf(const std::wstring& picture);
