// What the programs of this room answer to whoever started them.
#pragma once

namespace kestraboot::tools
{

enum class ExitCode : int {
    Done = 0,          ///< showed what there was to show
    Failed = 1,        ///< something that the program needs could not be had; standard error says what
    Usage = 2,         ///< arguments that it does not understand
    AnotherViewer = 3, ///< kestratrace: another program reads the debug output of this session
    Broken = 4,        ///< kestractl --check: something is broken
};

} // namespace kestraboot::tools
