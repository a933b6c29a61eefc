// The turns of the writers of debug lines: writers of the test's own, and silences at the points that
// the test chooses.
#include "tests/tools/own_channel.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace kestraboot::tools
{
namespace
{

/// A thread that follows instructions, because a mutex belongs to a thread. The mutexes that it holds at
/// its end are abandoned, as by a terminated process.
class Writer
{
public:
    ~Writer()
    {
        Do({});
        thread.join();
    }

    /// Returns when it is done.
    void Do(std::function<void()> step)
    {
        std::unique_lock lock(mutex);
        next = std::move(step);
        told = true;
        changed.notify_all();
        changed.wait(lock, [&] {
            return !told;
        });
    }

private:
    void Run()
    {
        for (bool ended = false; !ended;) {
            std::unique_lock lock(mutex);
            changed.wait(lock, [&] {
                return told;
            });
            if (next) {
                next();
            }
            ended = !next;
            told = false;
            changed.notify_all();
        }
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::function<void()> next;
    bool told = false;
    std::thread thread{[this] {
        Run();
    }};
};

class Turns : public OwnChannel
{
protected:
    Turns()
    {
        EXPECT_EQ(channel.Open(), DebugChannel::Opening::Done);
        record = static_cast<char*>(::MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, 0));
        stop = createEvent.CallOriginal(nullptr, TRUE, FALSE, nullptr);
    }
    ~Turns() override
    {
        ::UnmapViewOfFile(record);
        ::CloseHandle(stop);
    }

    void TakeMutex() const { EXPECT_EQ(::WaitForSingleObject(mutex, 30'000), WAIT_OBJECT_0); }

    /// The first half of a writer's work.
    void BeginTurn() const
    {
        TakeMutex();
        EXPECT_TRUE(TakeTurn());
    }

    /// The second half, except for the mutex.
    void Write(const std::string& text) const
    {
        const DWORD process = 42;
        std::memcpy(record, &process, sizeof process);
        std::memcpy(record + sizeof process, text.c_str(), text.size() + 1);
        ::SetEvent(events.at(1));
    }

    /// The state of the next line after this number of silences: each does something and is over.
    std::string NextAfter(const std::vector<std::function<void()>>& silences)
    {
        std::size_t silent = 0;
        const FAKE_IMPORT(WaitForMultipleObjects)
            wait([&](DWORD count, const HANDLE* objects, BOOL all, DWORD longest) -> DWORD {
                if (silent < silences.size()) {
                    silences[silent++]();
                    return WAIT_TIMEOUT;
                }
                return wait.CallOriginal(count, objects, all, longest);
            });
        DebugChannel::Line line;
        return channel.Next(stop, line) == DebugChannel::Waiting::Line ? line.text : "(none)";
    }

    DebugChannel channel;
    char* record = nullptr;
    HANDLE stop = nullptr;
};

TEST_F(Turns, AreGivenOnceALineIsRead)
{
    ASSERT_TRUE(TakeTurn());
    const std::string whole(4092, 'x'); // no terminator at all
    std::memcpy(record + sizeof(DWORD), whole.data(), whole.size());
    ::SetEvent(events.at(1));
    ::SetEvent(stop);
    EXPECT_EQ(NextAfter({}), whole) << "before the stop";
    EXPECT_TRUE(TakeTurn());
    DebugChannel::Line line;
    EXPECT_EQ(channel.Next(stop, line), DebugChannel::Waiting::Stopped);
}

TEST_F(Turns, AreNotGivenBesideAWriterInItsOwn)
{
    Writer writer;
    const auto begin = [&] {
        writer.Do([&] {
            BeginTurn();
        });
    };
    const auto end = [&] {
        EXPECT_FALSE(TakeTurn()) << "a second writer would overwrite the line";
        writer.Do([&] {
            Write("<the first of a burst>");
            ::ReleaseMutex(mutex);
        });
    };
    EXPECT_EQ(NextAfter({begin, end}), "<the first of a burst>");
    EXPECT_TRUE(TakeTurn());
}

TEST_F(Turns, AreNotGivenWhileALineWaits)
{
    Writer writer;
    const auto write = [&] {
        writer.Do([&] {
            BeginTurn();
            Write("<came as the silence ended>");
            ::ReleaseMutex(mutex);
        });
    };
    const auto look = [&] {
        EXPECT_FALSE(TakeTurn());
    };
    EXPECT_EQ(NextAfter({write, look}), "<came as the silence ended>");
    ::SetEvent(stop);
    EXPECT_EQ(NextAfter({}), "(none)") << "once";
}

TEST_F(Turns, ComeBackFromAWriterThatWasTerminated)
{
    const auto endAWriter = [&] {
        Writer().Do([&] {
            BeginTurn();
        });
    };
    Writer next;
    const auto writeAnother = [&] {
        next.Do([&] {
            BeginTurn(); // the reader has released the mutex
            Write("<after it>");
            ::ReleaseMutex(mutex);
        });
    };
    EXPECT_EQ(NextAfter({endAWriter, writeAnother}), "<after it>");
}

TEST_F(Turns, ComeBackIfAWriterWaitsForALostOne)
{
    ASSERT_TRUE(TakeTurn()); // lost
    Writer writer;
    writer.Do([&] {
        TakeMutex();
    });
    const auto nothing = [&] {
        EXPECT_FALSE(TakeTurn());
    };
    const auto write = [&] {
        EXPECT_TRUE(TakeTurn()) << "after one more wait";
        Write("<waited for>");
    };
    EXPECT_EQ(NextAfter({nothing, nothing, write}), "<waited for>");
    EXPECT_TRUE(TakeTurn());
    // A writer that comes after it has its own period.
    const auto writeNext = [&] {
        EXPECT_FALSE(TakeTurn());
        Write("<next>");
    };
    EXPECT_EQ(NextAfter({nothing, writeNext}), "<next>");
}

TEST_F(Turns, AreWithdrawnIfAWriterWasOnlySlow)
{
    std::vector<HANDLE> withdrawn;
    const FAKE_IMPORT(ResetEvent) reset([&](HANDLE event) {
        withdrawn.push_back(event);
        return reset.CallOriginal(event);
    });
    Writer writer;
    writer.Do([&] {
        BeginTurn();
    });
    const auto nothing = [] {};
    const auto goOn = [&] {
        writer.Do([&] {
            Write("<slow>");
            ::ReleaseMutex(mutex);
        });
    };
    EXPECT_EQ(NextAfter({nothing, nothing, goOn}), "<slow>");
    EXPECT_EQ(withdrawn, std::vector<HANDLE>{events.at(0)}) << "before the line is copied";
    Write("<another>");
    EXPECT_EQ(NextAfter({}), "<another>");
    EXPECT_EQ(withdrawn.size(), 1U) << "only a turn that was given";
}

} // namespace
} // namespace kestraboot::tools
