#include <kestraboot/kestraboot.h>

int main()
{
    StartDeviceConnectService();
}
