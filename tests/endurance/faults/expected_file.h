#pragma once

#include "tests/endurance/faults/armed.h"

#include <map>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// The outcome of every failure of a scene, for a reader: each outcome once, with all failures that lead
/// to it. The outcomes after the first one are shown by the lines in which they differ from it.
class Outcomes
{
public:
    /// The outcome without a failure, and its number of allocations.
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

/// Fails the test if the scene's file of expected outcomes differs in a failure's outcome or in the
/// memory that the scene takes, and if the failures in the file are not exactly those of `calls`, swept
/// or not. Writes the file instead if KESTRABOOT_REWRITE_EXPECTED is set.
void CheckExpectedFile(const std::string& scene, const Outcomes& outcomes,
                       const std::vector<SweptCall>& calls);

/// Fails the test if the scene's number of allocations differs from the one in its file, which is that
/// of GCC 12's library and of the build's folder. GCC 14's library takes up to a fifth less, and the
/// longer paths of the archive of tests take more.
void CheckAllocations(const std::string& scene, int actual);

/// The names of all scenes that have a file.
[[nodiscard]] std::vector<std::string> ScenesWithAFile();

/// Whether the file of some scene contains failures of that function.
[[nodiscard]] bool SomeSceneSweeps(const std::string& function);

} // namespace kestraboot::tests
