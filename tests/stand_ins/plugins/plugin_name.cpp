#include "tests/stand_ins/plugins/plugin_name.h"

const wchar_t* PluginName()
{
    return L"Players";
}
