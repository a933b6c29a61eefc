#pragma once

#include "kestraboot/information_handler.h"

namespace kestraboot
{

/// A handler whose list a test can read and fill.
struct OpenHandler : CKestraBootInformationHandler {
    using CKestraBootInformationHandler::applications;

    [[nodiscard]] std::vector<std::wstring> Names() const
    {
        std::vector<std::wstring> names;
        for (const appInfo_tag& application : applications) {
            names.push_back(application.Name);
        }
        return names;
    }
};

using Names = std::vector<std::wstring>;

} // namespace kestraboot
