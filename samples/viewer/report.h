// The request, and the pictures that the program found, for a person or a test to read:
// %LOCALAPPDATA%\Corvane Sample Viewer\<program>.txt, in UTF-8.
#pragma once

#include "launch_request.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The beginning: the command line, and the request if it is one.
std::wstring DescribeStart(const std::wstring& commandLine, const std::optional<LaunchRequest>& request);

/// The rest, for a volume.
std::wstring DescribePictures(const std::vector<std::filesystem::path>& pictures);

/// Appends a whole entry. False if it cannot be written.
bool AppendToReport(const std::wstring& entry);
