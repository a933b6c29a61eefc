// device_change.exe: notifies every top-level window that the tree of devices changed, as Windows does
// when one is plugged in or out (Wine notifies nobody). No arguments.
#include "../common/version.h"

#include <windows.h>

#include <dbt.h>

int main(int argc, char** argv)
{
    if (kestraboot::simulators::AnsweredVersion("device_change", argc, argv)) {
        return 0;
    }
    return ::PostMessageW(HWND_BROADCAST, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0) ? 0 : 1;
}
