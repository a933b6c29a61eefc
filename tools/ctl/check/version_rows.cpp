// The installed version of each program.
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

namespace kestraboot::tools
{
namespace
{

constexpr const char* kVersion = "version";

Row ToolRow(const Facts& facts)
{
    const std::wstring reason = L"kestractl.exe, " + VersionText(facts.toolVersion) +
                                L"; the kestraboot.dll that it asks, " +
                                VersionText(facts.libraryVersion);
    if (!facts.toolVersion || !facts.libraryVersion || facts.toolVersion != facts.libraryVersion) {
        return Suspicious(kVersion, {}, reason + L": they are not of one version",
                          L"put kestractl.exe beside the kestraboot.dll that it came with");
    }
    return Fine(kVersion, {}, reason);
}

Row BootRow(const Facts& facts, const BootFolder& boot)
{
    const std::wstring program = L"the boot program, " + VersionText(boot.programVersion);
    if (!boot.libraryExists) {
        return Suspicious(kVersion, boot.program, program + L"; there is no kestraboot.dll beside it",
                          L"install its application again, unless its library is on the PATH");
    }
    const std::wstring reason =
        program + L"; the kestraboot.dll beside it, " + VersionText(boot.libraryVersion);
    if (!boot.libraryVersion) {
        return Suspicious(kVersion, boot.program, reason + L": it is not one that was shipped",
                          L"install its application again");
    }
    if (boot.libraryVersion != facts.libraryVersion) {
        return Suspicious(kVersion, boot.program,
                          reason + L"; this page shows what " + VersionText(facts.libraryVersion) +
                              L" makes of the registry",
                          L"run the kestractl.exe of the same version");
    }
    return Fine(kVersion, boot.program, reason);
}

} // namespace

Rows VersionRows(const Facts& facts)
{
    Rows rows = {ToolRow(facts)};
    if (facts.boot) {
        rows.push_back(BootRow(facts, *facts.boot));
    }
    return rows;
}

} // namespace kestraboot::tools
