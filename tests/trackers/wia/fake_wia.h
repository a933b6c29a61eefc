// A WIA service inside the test's own process: real COM objects, counted, whose answers a test sets.
#pragma once

#include "foundation/com_pointer.h"
#include "tests/support/import_patch.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>
#include <wia.h>

namespace kestraboot::tests
{

struct FakeWiaDevice {
    PROPVARIANT id = {}; ///< read as it stands; a BSTR is copied for each reader
    PROPVARIANT type = {};
    HRESULT read = S_OK; ///< what ReadMultiple answers; the values are there whatever it says
    bool isNull = false; ///< the enumerator hands out no storage
};

/// A device as a healthy service lists it. `stiType`: 1 scanner, 2 camera, 3 video.
[[nodiscard]] FakeWiaDevice WiaDevice(const wchar_t* id, unsigned stiType);

/// Takes the place of the device manager for the module under test while it lives. At its end no object
/// of it may be referenced any more (the test fails).
class FakeWiaService
{
public:
    FakeWiaService();
    FakeWiaService(const FakeWiaService&) = delete;
    FakeWiaService& operator=(const FakeWiaService&) = delete;
    ~FakeWiaService();

    std::vector<FakeWiaDevice> devices;
    HRESULT create = S_OK;    ///< what CoCreateInstance answers; no device manager unless S_OK
    HRESULT enumerate = S_OK; ///< what EnumDeviceInfo answers; no enumerator when it is a failure
    HRESULT registers = S_OK; ///< what RegisterEventCallbackInterface answers; the same
    HRESULT end = S_FALSE;    ///< what Next answers past the last device
    bool endless = false;     ///< Next starts over instead

    // What was asked.
    CLSID createdClass = {};
    IID createdInterface = {};
    DWORD createdContext = 0;
    bool createdAggregated = false;
    LONG enumeratedFlags = -1;
    int resets = 0;
    int nexts = 0;
    std::vector<PROPSPEC> askedProperties;
    LONG registeredFlags = -1;
    bool registeredForOneDevice = false;
    GUID registeredEvent = {};
    IWiaEventCallback* registeredCallback = nullptr; ///< one reference, as the real service holds it

    /// "manager", "registration", "apartment", "enumerator", "storage": in the order in which they
    /// went.
    std::vector<std::string> released;
    int liveObjects = 0;

private:
    FAKE_IMPORT(CoCreateInstance) creation;
    FAKE_IMPORT(CoUninitialize) apartmentEnd;
};

} // namespace kestraboot::tests
