#include "tests/system/debug_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

/// A waiting writer may keep a recent reader's objects open until its turn comes.
void AwaitChannel(tools::DebugChannel& channel)
{
    using Opening = tools::DebugChannel::Opening;
    const ULONGLONG end = ::GetTickCount64() + 30'000;
    for (Opening opening = channel.Open(); opening != Opening::Done; opening = channel.Open()) {
        if (opening == Opening::Failed || ::GetTickCount64() > end) {
            throw std::runtime_error("the section of the debug output cannot be created");
        }
    }
}

} // namespace

DebugReader::DebugReader() : stop(::CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    if (stop == nullptr) {
        throw std::runtime_error("the event that stops the reader cannot be created");
    }
    AwaitChannel(channel);
    reader = std::thread([this] {
        Read();
    });
}

DebugReader::~DebugReader()
{
    ::SetEvent(stop);
    reader.join();
    ::CloseHandle(stop);
}

void DebugReader::Read()
{
    for (tools::DebugChannel::Line line;
         channel.Next(stop, line) == tools::DebugChannel::Waiting::Line;) {
        const std::lock_guard lock(mutex);
        lines.push_back(line);
    }
}

void DebugReader::CatchUp() const
{
    // Writers take turns. Once a line of our own is here, all earlier lines are here too.
    static std::atomic<int> number = 0;
    const std::string marker = "caught up " + std::to_string(++number);
    for (int attempt = 0; attempt < 10; ++attempt) {
        ::OutputDebugStringA(marker.c_str()); // a writer drops its line if its turn does not come
        for (const ULONGLONG end = ::GetTickCount64() + 2'000; ::GetTickCount64() < end; ::Sleep(1)) {
            if (CountSoFar(marker) != 0) {
                return;
            }
        }
    }
    ADD_FAILURE() << "the debug output is not read: no line of this process arrives";
}

std::vector<std::string> DebugReader::LinesOf(DWORD processId) const
{
    CatchUp();
    const std::lock_guard lock(mutex);
    std::vector<std::string> found;
    for (const tools::DebugChannel::Line& line : lines) {
        if (line.processId == processId) {
            found.push_back(line.text);
        }
    }
    return found;
}

int DebugReader::Count(const std::string& line) const
{
    CatchUp();
    return CountSoFar(line);
}

int DebugReader::CountSoFar(const std::string& line) const
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(std::ranges::count(lines, line, &tools::DebugChannel::Line::text));
}

bool DebugReader::Await(const std::string& line, DWORD milliseconds) const
{
    for (const ULONGLONG end = ::GetTickCount64() + milliseconds; CountSoFar(line) == 0;) {
        if (::GetTickCount64() > end) {
            return false;
        }
        ::Sleep(5);
    }
    return true;
}

void DebugReader::Clear()
{
    const std::lock_guard lock(mutex);
    lines.clear();
}

} // namespace kestraboot::tests
