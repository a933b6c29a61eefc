// The exit codes of the programs of this room.
#pragma once

namespace kestraboot::tools
{

enum class ExitCode : int {
    Done = 0,          ///< showed everything
    Failed = 1,        ///< a resource that the program needs is not available; standard error names it
    Usage = 2,         ///< arguments that it does not accept
    AnotherViewer = 3, ///< kestratrace: another program reads the debug output of this session
    Broken = 4,        ///< kestractl --check: something is broken
};

} // namespace kestraboot::tools
