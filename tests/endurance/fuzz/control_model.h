// The rules of taking control, written a second time and as plainly as possible.
#pragma once

#include "tests/endurance/fuzz/launch_model.h"

#include <optional>

namespace kestraboot::fuzz
{

/// The state of the machine when control is taken.
struct Surroundings {
    bool claimCreated = true;
    bool claimExisted = false;
    std::wstring executable;
    bool folderExists = true;
    bool folderCanBeCurrent = true;
    std::optional<std::wstring>
        section;                     ///< of the OEM file, zeros between its lines; none without a file
    bool organiserInstalled = false; ///< in C:\Legacy
};

struct Control {
    bool taken = false;
    bool claimClosed = false;
    std::wstring folder; ///< made current
    Launched seen;

    friend bool operator==(const Control&, const Control&) = default;
};

void PrintTo(const Control& control, std::ostream* out);

[[nodiscard]] Control ModelOfControl(const Surroundings& surroundings);

/// Whether a line begins with the number one.
[[nodiscard]] bool IsOne(const std::wstring& line);

} // namespace kestraboot::fuzz
