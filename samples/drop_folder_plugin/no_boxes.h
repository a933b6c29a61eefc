#pragma once

#include <windows.h>

/// While it lives, Windows opens no box of its own ("There is no disk in the drive") for what this
/// thread does. The error mode of the whole process is the host's, and stays unchanged.
///
/// Windows 7 and later have an error mode for each thread. On Vista nothing is changed, and a folder in
/// an empty card reader opens a box.
class NoBoxes
{
public:
    NoBoxes() noexcept;
    NoBoxes(const NoBoxes&) = delete;
    NoBoxes& operator=(const NoBoxes&) = delete;
    ~NoBoxes();

private:
    DWORD before = 0;
};
