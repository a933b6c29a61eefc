#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <functional>

struct CopyResult {
    DWORD error = 0;           ///< of Windows; ERROR_REQUEST_ABORTED where `goOn` said so
    bool alreadyThere = false; ///< a file of this name, size and time: nothing was done
};

/// Copies a file into a folder, under its own name or, where that is taken, under "name (2)" and so on.
/// Nothing is overwritten. `goOn` is told how many bytes were copied since it was called last, and
/// answers whether to go on.
///
/// The file appears under its name when it is whole. Until then Windows itself is told to delete it when
/// it is closed: whatever ends the copying, the end of the process included, no half-written file is
/// left.
CopyResult CopyWhole(const std::filesystem::path& from, const std::filesystem::path& folder,
                     const std::function<bool(std::uint64_t)>& goOn);
