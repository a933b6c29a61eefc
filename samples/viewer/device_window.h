#pragma once

#include "dialog.h"
#include "launch_request.h"

#include <optional>

/// Shows the device that arrived and its identifier: a camera, a scanner, a phone, or nothing if the
/// program was started by hand. The identifier can be copied.
class DeviceWindow final : public Dialog
{
public:
    explicit DeviceWindow(std::optional<LaunchRequest> asked) : request(std::move(asked)) {}

private:
    void OnInit() override;
    void OnCommand(unsigned id) override;

    std::optional<LaunchRequest> request;
};
