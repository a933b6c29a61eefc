#pragma once

/// The name of player_plugin.cpp. It is linked into the plugin, or is in a DLL that the plugin needs.
const wchar_t* PluginName();
