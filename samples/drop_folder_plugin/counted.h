#pragma once

#include "kestraboot/mox_plugin.h"

#include <atomic>

/// The counting that every object of a plugin has. It begins with its creator's reference.
template <typename Interface>
class Counted : public Interface
{
public:
    std::uint32_t AddReference() final { return ++references; }

    std::uint32_t Release() final
    {
        const std::uint32_t remaining = --references;
        if (remaining == 0) {
            delete this;
        }
        return remaining;
    }

protected:
    virtual ~Counted() = default;

private:
    std::atomic<std::uint32_t> references{1};
};
