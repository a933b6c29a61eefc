// Runs a scene of several threads again and again, each time in another order, until it has seen every
// order within the limit of preemptions.
//
// Only one thread runs at a time, and it runs until it comes to an operation that others may see: a
// lock, a wait, a call of Windows that the scene watches. There the scheduler chooses who goes on. To
// choose another thread while the running one could go on is a preemption. Where it cannot go on, the
// choice costs nothing. A schedule is the list of these choices: the next one repeats all but the last
// choice that has an alternative left (a walk through the tree of schedules, in depth first).
//
// The threads are fibers of one real thread. So an order of events comes about again exactly, a switch
// takes less than a microsecond, and a lock that is taken is known, not waited for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::interleavings
{

/// A scene: its constructor makes everything anew and starts the threads.
class Scene
{
public:
    Scene() = default;
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    virtual ~Scene() = default;

    /// Called after all threads have exited. The error, or an empty text.
    [[nodiscard]] virtual std::string Check() = 0;
};

/// The result of all schedules.
struct Outcome {
    long schedules = 0;
    std::string failure;  ///< of the last schedule, empty after a success
    std::string schedule; ///< the operations until then, a line each with its thread

    [[nodiscard]] bool Holds(const std::string& text) const
    {
        return failure.find(text) != std::string::npos;
    }
};

class Scheduler
{
public:
    explicit Scheduler(int preemptions);
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    ~Scheduler();

    /// Every schedule of a scene, until one fails.
    template <typename SceneType>
    [[nodiscard]] Outcome Explore()
    {
        return ExploreAll([] {
            return std::make_unique<SceneType>();
        });
    }

    /// The scheduler whose scene runs the calling code as one of its threads; else null.
    [[nodiscard]] static Scheduler* Running() noexcept;

    /// The scheduler that makes a scene now, or runs it.
    [[nodiscard]] static Scheduler& Current() noexcept;

    /// Adds a thread of the scene. Another thread may start it. Returns its number.
    int Start(const std::string& name, std::function<void()> body);
    [[nodiscard]] bool Ended(int thread) const
    {
        return threads[static_cast<std::size_t>(thread)]->ended;
    }

    /// The number of the running thread.
    [[nodiscard]] int Self() const noexcept { return running; }

    /// The running thread is about to do that. Returns when it is its turn, and `possible` returns that
    /// it can.
    void Await(const std::string& operation, std::function<bool()> possible);
    void Point(const std::string& operation);

    /// Ends the schedule as a failure.
    [[noreturn]] void Fail(const std::string& what);

private:
    struct Thread {
        std::string name;
        std::function<void()> body;
        std::function<bool()> possible; ///< empty: always
        std::string operation;
        bool ended = false;
        void* fiber = nullptr;
        void* exceptions[2] =
            {}; ///< the C++ runtime's list of caught ones, and its count of flying ones
    };
    struct Choice {
        std::size_t options;
        std::size_t chosen;
    };

    Outcome ExploreAll(const std::function<std::unique_ptr<Scene>()>& make);
    void RunOnce();
    [[nodiscard]] bool NextSchedule();
    [[nodiscard]] int ChooseNext();
    [[nodiscard]] std::size_t Choose(std::size_t options);
    void SwitchTo(int thread);
    void EndOfThread(); ///< returns when its fiber gets another thread to run
    static void __stdcall FiberMain(void* thread);
    [[nodiscard]] std::string Waiting() const;

    const int preemptions;
    const unsigned long realThread;
    void* home = nullptr;
    std::vector<std::unique_ptr<Thread>> threads;
    std::vector<void*> idleFibers;
    std::vector<Choice> choices;
    std::size_t choicesMade = 0;
    int preemptionsLeft = 0;
    int running = -1;
    int operations = 0;
    std::string failure;
    std::vector<std::pair<int, std::string>> done;
};

/// The preemptions of the test command, or the number in KESTRABOOT_PREEMPTIONS.
[[nodiscard]] int PreemptionsAskedFor();

} // namespace kestraboot::interleavings
