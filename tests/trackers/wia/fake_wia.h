// A WIA service in the test's own process: real COM objects with counted references, whose answers a
// test sets.
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
    PROPVARIANT id = {}; ///< read unchanged; a BSTR is copied for each reader
    PROPVARIANT type = {};
    HRESULT read = S_OK; ///< the result of ReadMultiple, which writes the values in any case
    bool isNull = false; ///< the enumerator returns no storage
};

/// A device in the list of a working service. `stiType`: 1 scanner, 2 camera, 3 video.
[[nodiscard]] FakeWiaDevice WiaDevice(const wchar_t* id, unsigned stiType);

/// Replaces the device manager for the module under test while the object lives. The test fails if an
/// object of the service still has references at its end.
class FakeWiaService
{
public:
    FakeWiaService();
    FakeWiaService(const FakeWiaService&) = delete;
    FakeWiaService& operator=(const FakeWiaService&) = delete;
    ~FakeWiaService();

    std::vector<FakeWiaDevice> devices;
    HRESULT create = S_OK;    ///< the result of CoCreateInstance; no device manager unless S_OK
    HRESULT enumerate = S_OK; ///< the result of EnumDeviceInfo; a failure returns no enumerator
    HRESULT registers = S_OK; ///< the result of RegisterEventCallbackInterface; likewise
    HRESULT end = S_FALSE;    ///< the result of Next past the last device
    bool endless = false;     ///< Next starts again instead

    // The queries that arrived.
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
    IWiaEventCallback* registeredCallback = nullptr; ///< one reference, like the real service

    /// "manager", "registration", "apartment", "enumerator", "storage": in the order of their release.
    std::vector<std::string> released;
    int liveObjects = 0;

private:
    FAKE_IMPORT(CoCreateInstance) creation;
    FAKE_IMPORT(CoUninitialize) apartmentEnd;
};

} // namespace kestraboot::tests
