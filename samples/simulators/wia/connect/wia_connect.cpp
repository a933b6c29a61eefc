// wia_connect ID: makes the running wia_service.exe fire the connect event of a device. Fails if the
// service does not run. The service runs as long as a client that registered with it.
#include "../../common/configuration.h"
#include "../../common/version.h"
#include "../service_window.h"

#include <windows.h>

#include <cstdio>

int main(int argc, char** argv)
{
    using namespace kestraboot::simulators;
    if (AnsweredVersion("wia_connect", argc, argv)) {
        return 0;
    }
    if (argc != 2) {
        std::fputs("usage: wia_connect ID\n", stderr);
        return 2;
    }
    if (!TellServiceToFire(FromUtf8(argv[1]))) {
        std::fputs("wia_connect: the WIA service does not run\n", stderr);
        return 1;
    }
    return 0;
}
