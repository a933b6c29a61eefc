#pragma once

#include "tests/endurance/faults/armed.h"

#include <map>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// What became of every failure of a scene, for a reader: each outcome once, with all that leads to it.
/// The outcomes after the first one are shown by the lines in which they differ from it.
class Outcomes
{
public:
    /// What becomes of it when nothing fails.
    void Begin(const std::string& outcome) { At(outcome); }

    void Add(const SweptCall& call, const Failure& failure, const std::string& outcome);

    [[nodiscard]] std::string Text() const;

private:
    /// The failures of one function that lead to one outcome: the occurrences, with the failures' names.
    using Occurrences = std::map<int, std::vector<std::string>>;
    struct Outcome {
        std::string text;
        std::vector<std::pair<std::string, Occurrences>> functions;
    };

    Outcome& At(const std::string& text);

    std::vector<Outcome> outcomes; ///< in the order in which they were met
};

/// Fails the test where the scene's file of expected outcomes says otherwise of a failure, or nothing;
/// and, where all of them were swept, where it says something of a failure that there is not. Writes the
/// file instead where the environment variable KESTRABOOT_REWRITE_EXPECTED is set.
void CheckExpectedFile(const std::string& scene, const Outcomes& outcomes, bool all);

/// Whether the file of some scene tells of failures of that function.
[[nodiscard]] bool SomeSceneSweeps(const std::string& function);

} // namespace kestraboot::tests
