#pragma once

namespace kestraboot::bench
{

/// The calls of one scan of the drives: of the volume tracker's poll while nothing changes.
void LookAtDrives();

} // namespace kestraboot::bench
