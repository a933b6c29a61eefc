#pragma once

#include "bench/floors/road.h"
#include "tests/support/registry_sandbox.h"

namespace kestraboot::bench
{

/// A registry of this process's own with applications as their installers leave them, in its steady
/// state: the user's preference keys exist. The first application is a default one, started from
/// `commandPath`, with this program as its proxy.
class Scene
{
public:
    /// Adds `otherKeys` keys below the same root that belong to no application.
    Scene(int applications, int otherKeys, const std::wstring& commandPath);

    [[nodiscard]] const std::wstring& FirstKey() const noexcept { return firstKey; }
    [[nodiscard]] const std::wstring& ProxyPath() const noexcept { return proxyPath; }

private:
    tests::RegistrySandbox sandbox;
    std::wstring firstKey;
    std::wstring proxyPath;
};

/// The path of a program beside this one.
[[nodiscard]] std::wstring BesideThisProgram(const wchar_t* name);

} // namespace kestraboot::bench
