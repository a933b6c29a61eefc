#pragma once

#include <string>

namespace kestraboot::tests
{

/// Names the run that the process is in, should it crash, hang or be ended while this lives.
class RunGuard
{
public:
    explicit RunGuard(const std::string& what);
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;
    ~RunGuard();
};

} // namespace kestraboot::tests
