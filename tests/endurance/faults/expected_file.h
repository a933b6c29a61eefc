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
    /// What becomes of it when nothing fails, and how often it asks for memory then.
    void Begin(const std::string& outcome, int allocations);

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
    int allocationsOfUsual = 0;
};

/// Fails the test where the scene's file of expected outcomes says otherwise of a failure, or of the
/// memory that the scene takes; and where the failures that it tells of are not exactly those of
/// `calls`, swept or not. Writes the file instead where KESTRABOOT_REWRITE_EXPECTED is set.
void CheckExpectedFile(const std::string& scene, const Outcomes& outcomes,
                       const std::vector<SweptCall>& calls);

/// The number of allocations that stands in the scene's file; -1 where there is none.
[[nodiscard]] int StatedAllocations(const std::string& scene);

/// The names of all scenes that have a file.
[[nodiscard]] std::vector<std::string> ScenesWithAFile();

/// Whether the file of some scene tells of failures of that function.
[[nodiscard]] bool SomeSceneSweeps(const std::string& function);

} // namespace kestraboot::tests
