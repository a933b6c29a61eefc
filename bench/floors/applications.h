// The calls on the registry, on files and on the own process that make up the loading and ordering of
// applications. Nothing of the data is kept.
#pragma once

namespace kestraboot::bench
{

/// The calls of LoadInformation. Returns the number of applications whose two files exist.
int LoadApplications();

/// The calls of MaintainOrder if an application is installed.
void MaintainOrder(const wchar_t* proxyPath);

/// The calls that determine the own executable's path.
void ReadOwnPath();

/// Reads a DWORD under HKEY_CURRENT_USER.
void ReadUserNumber(const wchar_t* keyPath, const wchar_t* valueName);

} // namespace kestraboot::bench
