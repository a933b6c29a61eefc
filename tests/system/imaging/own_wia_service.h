#pragma once

#include "tests/support/stand_in_folder.h"

namespace kestraboot::tests
{

/// The stand-ins' folder of the whole run: the WIA service uses the folder of the process that started
/// it.
[[nodiscard]] const StandInFolder& WiaStandIns();

} // namespace kestraboot::tests
