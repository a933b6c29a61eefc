// The reported imaging devices and their reports, written a second time and as plainly as possible.
#pragma once

#include "tests/endurance/fuzz/hive.h"
#include "tests/trackers/wia/fake_wia.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::fuzz
{

/// The events of the host and the lines of the trace.
struct Reported {
    std::vector<std::pair<std::wstring, std::wstring>> events;
    std::vector<std::wstring> trace;

    friend bool operator==(const Reported&, const Reported&) = default;
};

void PrintTo(const Reported& reported, std::ostream* out);

/// The WIA service's devices, and how it answers.
struct WiaWorld {
    bool available = true;
    HRESULT enumerate = S_OK;
    HRESULT end = S_FALSE;
    std::vector<tests::FakeWiaDevice> devices;
};

/// 2 a camera, 1 a scanner, 0 anything else or nothing.
[[nodiscard]] int ModelOfWiaType(const WiaWorld& wia, const std::wstring& id);

/// The result of a connect event of that device.
[[nodiscard]] Reported ModelOfWiaConnect(const WiaWorld& wia, const std::optional<std::wstring>& id);

/// One device of still imaging's list.
struct StillDevice {
    std::uint32_t type = 0;
    std::wstring name;              ///< at most 128 characters; as many need no terminator
    std::uint32_t capabilities = 0; ///< the bytes behind the name
};

/// An answer of still imaging to the question for its devices.
struct StillListing {
    HRESULT result = S_OK;
    std::vector<StillDevice> devices;
    std::uint32_t tooMany = 0; ///< the number of devices that it claims beyond the existing ones
    bool noBuffer = false;
};

/// The TWAIN source manager.
struct TwainWorld {
    bool installed = true;
    bool hasEntry = true;
    unsigned short open = 0;
    unsigned short end = 7;
    std::vector<std::string> sources; ///< product names of at most 34 bytes; as many need no terminator
};

/// Still imaging from one tracker thread's view.
struct StillWorld {
    bool loads = true;
    bool entry = true;
    HRESULT create = S_OK;
    bool createsNothing = false;
    HRESULT initialize = S_OK;
    bool onXp = false;
    Hive machine; ///< with the class keys of the devices
    TwainWorld twain;
    WiaWorld wia;
};

class StillModel
{
public:
    explicit StillModel(StillWorld& given) : world(given) {}

    [[nodiscard]] bool Open(const StillListing& listing);

    /// A change of the devices; afterwards they are as listed.
    void Change(const StillListing& listing);

    Reported reported;

private:
    struct Known {
        std::wstring name;
        std::wstring tag;
    };

    [[nodiscard]] std::optional<std::vector<Known>> List(const StillListing& listing);
    [[nodiscard]] std::wstring Tag(const StillDevice& device, const std::wstring& name);
    [[nodiscard]] bool Listed(const std::wstring& source) const;
    void Report(const Known& device);

    StillWorld& world;
    bool usable = false;
    std::vector<Known> known;
};

} // namespace kestraboot::fuzz
