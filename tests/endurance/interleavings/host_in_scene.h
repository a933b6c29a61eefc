#pragma once

#include "tests/endurance/interleavings/machine.h"

#include <map>
#include <string>
#include <vector>

namespace kestraboot::interleavings
{

/// The host of a scene: two callbacks, A and B, and the reports to each. A is registered at the
/// beginning.
class HostInScene
{
public:
    HostInScene();
    HostInScene(const HostInScene&) = delete;
    HostInScene& operator=(const HostInScene&) = delete;
    ~HostInScene();

    /// Replaces A by B. `bIsRegistered` is set afterwards.
    void RegisterB();

    /// Reports through the dispatch, and checks that B got the report if B was registered before.
    void Report(const std::wstring& device);

    /// The host's error: a report that was lost, or made twice.
    [[nodiscard]] std::string Check(const std::vector<std::wstring>& reported) const;

    enum class Does { Nothing, Throws, RegistersB };
    Does aDoes = Does::Nothing;
    std::vector<std::pair<char, std::wstring>> told; ///< the callback, and the device

private:
    static void A(std::wstring& kind, std::wstring& deviceId);
    static void B(std::wstring& kind, std::wstring& deviceId);
    void Told(char callback, const std::wstring& device);

    bool inCallback = false;
    bool bIsRegistered = false;
};

} // namespace kestraboot::interleavings
