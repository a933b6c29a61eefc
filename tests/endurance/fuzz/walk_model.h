// The search of a volume for media, written a second time and as plainly as possible.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::fuzz
{

/// The content of one entry of a listing.
struct Entry {
    std::wstring name;
    unsigned long attributes = 0;
};

/// The entries of a folder, or nothing if it cannot be listed.
using Lister = std::function<std::optional<std::vector<Entry>>(const std::wstring& folder)>;

struct Walked {
    bool found = false;
    std::vector<std::wstring> trace;

    friend bool operator==(const Walked&, const Walked&) = default;
};

void PrintTo(const Walked& walked, std::ostream* out);

[[nodiscard]] Walked ModelOfWalk(const std::wstring& root, unsigned depth,
                                 const std::vector<std::wstring>& extensions, const Lister& list);

} // namespace kestraboot::fuzz
