#pragma once

/// What player_plugin.cpp is called. Linked into the plugin, or in a DLL that it needs.
const wchar_t* PluginName();
