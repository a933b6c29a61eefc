// A heap in which a read or write out of bounds, and one after the end of a block's life, faults at
// once.
#pragma once

namespace kestraboot::tests
{

/// Where KESTRABOOT_GUARD is in the environment: gives each block of the C++ runtime, of this executable
/// and of the library pages of its own, with an inaccessible page on either side, and makes them
/// inaccessible when the block is freed. With "end" a block ends where its last page does (but for the
/// alignment to 16 bytes, which is checked when it is freed), with "start" it starts where its first
/// page does. Any other word is a std::invalid_argument. Call it once, at the start of the program;
/// blocks of before stay what they are.
void GuardHeapIfAsked();

} // namespace kestraboot::tests
