#pragma once

#include <string>

namespace kestraboot::tests
{

/// Names the current run of the process if it crashes, hangs or is terminated while this lives.
class RunGuard
{
public:
    explicit RunGuard(const std::string& what);
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;
    ~RunGuard();
};

} // namespace kestraboot::tests
