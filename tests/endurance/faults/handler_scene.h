// Scenes of the two exported classes.
#pragma once

#include "kestraboot/command_handler.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/machine.h"
#include "tests/endurance/faults/sweep.h"

#include <functional>
#include <string>

namespace kestraboot::tests
{

/// Gives a scene access to the list.
class OpenHandler : public CKestraBootCommandHandler
{
public:
    using CKestraBootInformationHandler::applications;
};

using HandlerOperation = std::function<void(OpenHandler&)>;

/// One operation on a fresh object, or on one that has loaded the list.
[[nodiscard]] Scene HandlerScene(Machine& machine, const std::string& name,
                                 const HandlerOperation& operation, bool loaded = false);

/// Writes a result into the journal.
inline void ShowAnswer(bool answer)
{
    Journal::Add(L"answers", answer ? L"true" : L"false");
}

} // namespace kestraboot::tests
