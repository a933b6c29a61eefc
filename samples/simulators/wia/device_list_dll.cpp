// wia_device_list.dll: the handler that makes copies of the service's device lists in the client's
// process. wia_service.exe registers it.
#include "class_factory.h"
#include "device_list.h"

using namespace kestraboot::simulators;

HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object)
{
    static ClassFactory factory(MakeUnmarshaler);
    *object = nullptr;
    return classId == kDeviceListClass ? factory.QueryInterface(interfaceId, object)
                                       : CLASS_E_CLASSNOTAVAILABLE;
}

// Stays: its code may be needed again at the next event.
HRESULT WINAPI DllCanUnloadNow()
{
    return S_FALSE;
}

extern "C" long SimulatorLiveObjects();

// How many of its objects this process holds, for tests.
long SimulatorLiveObjects()
{
    return LiveListObjects();
}
