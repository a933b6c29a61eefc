// A heap in which a read or write out of bounds, or after a block is freed, faults at once.
#pragma once

namespace kestraboot::tests
{

/// If KESTRABOOT_GUARD is in the environment, gives each block of the C++ runtime, of this executable
/// and of the library pages of its own, with an inaccessible page on both sides, and makes them
/// inaccessible when the block is freed. With "end" a block ends at the end of its last page (except for
/// the alignment to 16 bytes, which is checked when it is freed); with "start" it starts at the start of
/// its first page. Any other word throws std::invalid_argument. Call it once, at the start of the
/// program; earlier blocks remain unchanged.
void GuardHeapIfAsked();

} // namespace kestraboot::tests
