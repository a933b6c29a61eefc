// The registry calls, and those on files and the own process, that loading the applications and keeping
// their order consist of. Nothing of what is read
// is kept.
#pragma once

namespace kestraboot::bench
{

/// The calls of LoadInformation. Answers the number of applications with both their files.
int LoadApplications();

/// Those of MaintainOrder where an application is installed.
void MaintainOrder(const wchar_t* proxyPath);

/// Those that find out the own executable's path.
void ReadOwnPath();

/// Reads a DWORD under HKEY_CURRENT_USER.
void ReadUserNumber(const wchar_t* keyPath, const wchar_t* valueName);

} // namespace kestraboot::bench
