#include "device_window.h"

#include "resource.h"
#include "text.h"

void DeviceWindow::OnInit()
{
    if (!request) {
        SetText(IDC_ARRIVED, Text(IDS_BY_HAND));
    } else if (request->deviceId.empty()) {
        SetText(IDC_ARRIVED, Text(IDS_NO_DEVICE));
    } else {
        SetText(IDC_ARRIVED, ArrivalText(request->deviceType, request->deviceId));
        SetText(IDC_IDENTIFIER, request->deviceId);
    }
    const int shown = request && !request->deviceId.empty() ? SW_SHOW : SW_HIDE;
    ::ShowWindow(Item(IDC_IDENTIFIER_LABEL), shown);
    ::ShowWindow(Item(IDC_IDENTIFIER), shown);
    ::SetFocus(Item(IDOK));
}

void DeviceWindow::OnCommand(unsigned id)
{
    if (id == IDOK || id == IDCANCEL) {
        ::EndDialog(window, static_cast<INT_PTR>(id));
    }
}
