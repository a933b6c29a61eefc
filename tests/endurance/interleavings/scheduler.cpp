#include "tests/endurance/interleavings/scheduler.h"

#include "tests/support/watchdog.h"

#include <windows.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <stdexcept>

namespace kestraboot::interleavings
{
namespace
{

constexpr int kHome = -1;
constexpr int kMostOperations = 20'000; // of one schedule; more means a thread that never progresses

Scheduler* current = nullptr;

void SwapExceptions(void* (&kept)[2])
{
    // The room of two pointers: the head of a list, and a number. Each thread has its own, fibers share
    // one.
    void* now[2] = {};
    std::memcpy(now, abi::__cxa_get_globals(), sizeof now);
    std::memcpy(abi::__cxa_get_globals(), kept, sizeof now);
    std::memcpy(kept, now, sizeof now);
}

} // namespace

Scheduler::Scheduler(int most)
    : preemptions(most), realThread(::GetCurrentThreadId()), home(::ConvertThreadToFiber(nullptr))
{
    if (home == nullptr || current != nullptr) {
        throw std::runtime_error("the scheduler cannot be created");
    }
    current = this;
}

Scheduler::~Scheduler()
{
    for (void* const fiber : idleFibers) {
        ::DeleteFiber(fiber);
    }
    ::ConvertFiberToThread();
    current = nullptr;
}

Scheduler* Scheduler::Running() noexcept
{
    const bool inScene =
        current != nullptr && current->running != kHome && ::GetCurrentThreadId() == current->realThread;
    return inScene ? current : nullptr;
}

Scheduler& Scheduler::Current() noexcept
{
    return *current;
}

Outcome Scheduler::ExploreAll(const std::function<std::unique_ptr<Scene>()>& make)
{
    Outcome outcome;
    choices.clear();
    do {
        threads.clear();
        done.clear();
        failure.clear();
        operations = 0;
        choicesMade = 0;
        preemptionsLeft = preemptions;
        std::unique_ptr<Scene> scene = make();
        RunOnce();
        ++outcome.schedules;
        if (outcome.schedules % 1'000 == 0) {
            tests::RestartWatchdog();
        }
        if (!failure.empty()) {
            static_cast<void>(scene.release()); // threads that did not end are in the middle of it
        } else {
            failure = scene->Check();
        }
    } while (failure.empty() && NextSchedule());
    outcome.failure = failure;
    for (const auto& [thread, operation] : done) {
        outcome.schedule +=
            "    " + threads[static_cast<std::size_t>(thread)]->name + ": " + operation + '\n';
    }
    return outcome;
}

int Scheduler::Start(const std::string& name, std::function<void()> body)
{
    auto thread = std::make_unique<Thread>();
    thread->name = name;
    thread->body = std::move(body);
    thread->operation = "begins";
    if (idleFibers.empty()) {
        thread->fiber = ::CreateFiber(0, FiberMain, nullptr);
    } else {
        thread->fiber = idleFibers.back();
        idleFibers.pop_back();
    }
    if (thread->fiber == nullptr) {
        throw std::runtime_error("a fiber cannot be created");
    }
    threads.push_back(std::move(thread));
    return static_cast<int>(threads.size()) - 1;
}

void Scheduler::RunOnce()
{
    const int first = ChooseNext();
    if (first != kHome) {
        SwitchTo(first);
    }
    for (const auto& thread : threads) {
        if (thread->ended) {
            idleFibers.push_back(thread->fiber);
        }
    }
}

void Scheduler::SwitchTo(int thread)
{
    const int from = running;
    running = thread;
    if (from != kHome) {
        SwapExceptions(threads[static_cast<std::size_t>(from)]->exceptions);
    }
    if (thread != kHome) {
        SwapExceptions(threads[static_cast<std::size_t>(thread)]->exceptions);
    }
    ::SwitchToFiber(thread == kHome ? home : threads[static_cast<std::size_t>(thread)]->fiber);
}

void __stdcall Scheduler::FiberMain(void*)
{
    for (;;) {
        Scheduler& scheduler = *current;
        Thread& self = *scheduler.threads[static_cast<std::size_t>(scheduler.running)];
        scheduler.done.emplace_back(scheduler.running, self.operation);
        try {
            self.body();
        } catch (...) {
            scheduler.Fail("an exception left the thread " + self.name);
        }
        scheduler.EndOfThread();
    }
}

void Scheduler::EndOfThread()
{
    threads[static_cast<std::size_t>(running)]->ended = true;
    SwitchTo(ChooseNext());
}

void Scheduler::Point(const std::string& operation)
{
    Await(operation, {});
}

void Scheduler::Await(const std::string& operation, std::function<bool()> possible)
{
    const int self = running;
    Thread& thread = *threads[static_cast<std::size_t>(self)];
    thread.operation = operation;
    thread.possible = std::move(possible);
    if (++operations > kMostOperations) {
        Fail("the threads never end");
    }
    const int next = ChooseNext();
    if (next != self) {
        SwitchTo(next);
    }
    done.emplace_back(self, thread.operation);
}

void Scheduler::Fail(const std::string& what)
{
    failure = what;
    SwitchTo(kHome);
    std::abort(); // no fiber switches back
}

int Scheduler::ChooseNext()
{
    std::vector<int> others;
    bool selfCan = false;
    bool allEnded = true;
    for (std::size_t i = 0; i < threads.size(); ++i) {
        const Thread& thread = *threads[i];
        allEnded = allEnded && thread.ended;
        if (thread.ended || (thread.possible && !thread.possible())) {
            continue;
        }
        if (static_cast<int>(i) == running) {
            selfCan = true;
        } else {
            others.push_back(static_cast<int>(i));
        }
    }
    if (selfCan) {
        const std::size_t chosen = preemptionsLeft > 0 ? Choose(1 + others.size()) : 0;
        if (chosen == 0) {
            return running;
        }
        --preemptionsLeft;
        return others[chosen - 1];
    }
    if (!others.empty()) {
        return others[Choose(others.size())];
    }
    if (!allEnded) {
        failure = "nobody can go on: " + Waiting();
    }
    return kHome;
}

std::size_t Scheduler::Choose(std::size_t options)
{
    if (options == 1) {
        return 0;
    }
    if (choicesMade == choices.size()) {
        choices.push_back({options, 0});
    }
    const Choice& choice = choices[choicesMade++];
    if (choice.options != options) {
        // The same choices led to another place: the scene is not the same each time.
        failure = "the scene is not repeatable";
        return 0;
    }
    return choice.chosen;
}

bool Scheduler::NextSchedule()
{
    while (!choices.empty() && choices.back().chosen + 1 == choices.back().options) {
        choices.pop_back();
    }
    if (choices.empty()) {
        return false;
    }
    ++choices.back().chosen;
    return true;
}

std::string Scheduler::Waiting() const
{
    std::string text;
    for (const auto& thread : threads) {
        if (!thread->ended) {
            text += (text.empty() ? "" : ", ") + thread->name + " " + thread->operation;
        }
    }
    return text;
}

int PreemptionsAskedFor()
{
    constexpr int kOfTheTestCommand = 2;
    const char* const asked = std::getenv("KESTRABOOT_PREEMPTIONS");
    return asked != nullptr ? std::atoi(asked) : kOfTheTestCommand;
}

} // namespace kestraboot::interleavings
