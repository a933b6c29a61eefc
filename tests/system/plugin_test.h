#pragma once

#include "tests/system/system_test.h"

#include <memory>
#include <string>

namespace kestraboot::tests
{

inline const std::string kNoPhoneManager = "<***DeviceConnect***><NOKIA Devices will not be detected.>";

/// An installed boot program, and plugins of this build beside it.
class PluginTest : public SystemTest
{
protected:
    /// Copies a file of this build to a path below the boot program's folder.
    void Install(const wchar_t* built, const std::filesystem::path& where) const
    {
        const std::filesystem::path to = app.folder.Path() / where;
        std::filesystem::create_directories(to.parent_path());
        std::filesystem::copy_file(BuiltPrograms() / built, to);
    }

    /// Starts the boot program with that plugin in the place of the phone manager, until it is tracked.
    void StartWith(const wchar_t* plugin, const std::string& name)
    {
        Install(plugin, kPhoneManager);
        Start();
        ASSERT_TRUE(trace.Await(Detecting(name)));
    }

    void Start()
    {
        boot = std::make_unique<ChildProcess>(app.Proxy());
        ASSERT_NE(AwaitWindow(boot->Id(), kBootTitle), nullptr);
    }

    static std::string Detecting(const std::string& name)
    {
        return "<***DeviceConnect***><" + name + "><Devices will be detected.>";
    }

    static constexpr const wchar_t* kPhoneManager = L"moxplugins/nokiamanager.mox";

    Installation app{L"App"};
    std::unique_ptr<ChildProcess> boot;
};

} // namespace kestraboot::tests
