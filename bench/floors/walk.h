// The unavoidable part of a card's search: the listing of each folder, breadth first, and the trace
// lines.
#pragma once

#include <cstddef>
#include <string>

namespace kestraboot::bench
{

/// Lists the folders down to `depth` without any other work. Returns the number of entries.
std::size_t BareWalk(const std::wstring& root, unsigned depth);

/// The same with a trace line for each entry.
std::size_t TracedWalk(const std::wstring& root, unsigned depth);

/// The same up to the first file with that extension. Returns whether there is one.
bool TracedSearch(const std::wstring& root, unsigned depth, const wchar_t* extension);

} // namespace kestraboot::bench
