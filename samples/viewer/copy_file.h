#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <functional>

struct CopyResult {
    DWORD error = 0;           ///< of Windows; ERROR_REQUEST_ABORTED if `goOn` returned false
    bool alreadyThere = false; ///< a file of this name, size and time: nothing was done
};

/// Copies a file into a folder, under its own name or, if that is taken, under "name (2)" and so on.
/// Overwrites nothing. `goOn` gets the number of bytes copied since its last call, and returns whether
/// to go on.
///
/// The file appears under its name when it is complete. Until then it is marked so that Windows deletes
/// it when it is closed. If the copying stops for any reason, the end of the process included, no
/// half-written file is left.
CopyResult CopyWhole(const std::filesystem::path& from, const std::filesystem::path& folder,
                     const std::function<bool(std::uint64_t)>& goOn);
