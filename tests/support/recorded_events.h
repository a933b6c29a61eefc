#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tests
{

/// The reports to the host: during its lifetime this object is the registered callback. One at a time;
/// every reporting thread must have stopped before it is destroyed.
class RecordedEvents
{
public:
    using Event = std::pair<std::wstring, std::wstring>; ///< kind and identifier

    RecordedEvents();
    RecordedEvents(const RecordedEvents&) = delete;
    RecordedEvents& operator=(const RecordedEvents&) = delete;
    ~RecordedEvents();

    [[nodiscard]] const std::vector<Event>& All() const noexcept { return events; }

    void Clear() noexcept { events.clear(); }

private:
    static void Record(std::wstring& kind, std::wstring& deviceId);
    static inline RecordedEvents* active = nullptr;
    std::vector<Event> events;
};

} // namespace kestraboot::tests
