#pragma once

#include "tests/support/import_patch.h"
#include "tools/trace/channel/debug_channel.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace kestraboot::tools
{

/// The objects of the channel have no name here; the first `held` openings find another reader.
class OwnChannel : public testing::Test
{
protected:
    /// As a writer does; false if there is none.
    [[nodiscard]] bool TakeTurn() const
    {
        return ::WaitForSingleObject(events.at(0), 0) == WAIT_OBJECT_0;
    }

    int held = 0;
    int denied = 0; ///< the same of a reader with more privileges
    int pauses = 0;
    std::vector<HANDLE> events; ///< not owned
    HANDLE section = nullptr;   ///< not owned
    HANDLE mutex = nullptr;     ///< not owned

    const FAKE_IMPORT(CreateEventW) createEvent{
        [this](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const wchar_t* name) {
            if (std::wcscmp(name, L"DBWIN_BUFFER_READY") == 0 && denied-- > 0) {
                ::SetLastError(ERROR_ACCESS_DENIED);
                return HANDLE{};
            }
            events.push_back(createEvent.CallOriginal(security, manual, set, nullptr));
            const bool another = std::wcscmp(name, L"DBWIN_BUFFER_READY") == 0 && held-- > 0;
            ::SetLastError(another ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
            return events.back();
        }};
    const FAKE_IMPORT(CreateFileMappingW) createSection{
        [this](HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protection, DWORD high, DWORD low,
               const wchar_t*) {
            section = createSection.CallOriginal(file, security, protection, high, low, nullptr);
            return section;
        }};
    const FAKE_IMPORT(CreateMutexExW) createMutex{
        [this](SECURITY_ATTRIBUTES* security, const wchar_t*, DWORD flags, DWORD) {
            mutex = createMutex.CallOriginal(security, nullptr, flags, MUTEX_ALL_ACCESS);
            return mutex;
        }};
    const FAKE_IMPORT(Sleep) sleep{[this](DWORD) {
        ++pauses;
    }};
};

} // namespace kestraboot::tools
