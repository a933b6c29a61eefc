#include "report.h"

namespace mox = kestraboot::mox;

bool Report(mox::ICallbackInterface& callback, const std::wstring& folder)
{
    mox::DeviceRecord device = {}; // cleared: what is not filled must be zero
    device.eventCode = mox::kDeviceArrived;
    device.size = mox::kDeviceRecordSize;
    device.deviceKind = mox::kKindArchive;
    folder.copy(device.deviceId, mox::kFieldLength - 1);
    return callback.Notify(0, &device) == mox::kSuccess;
}
