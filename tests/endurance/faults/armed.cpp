#include "tests/endurance/faults/armed.h"

#include "tests/endurance/faults/journal.h"

#include <objbase.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace kestraboot::tests
{
namespace
{

// Written in the middle of the product, so all of it exists before: nothing here takes memory.
struct Made {
    const FunctionFailures* function;
    unsigned applying; ///< a bit for each failure
};
constexpr int kMostCalls = 4096;
Made made[kMostCalls];
int calls = 0;
const char* unknown[16];
int unknowns = 0;

Plan plan;
bool happened = false;
bool anotherCall = false;
const FunctionFailures* secondFunction = nullptr;
const Failure* secondFailure = nullptr;
volatile DWORD armedThread = 0;
volatile long memoryBalance = 0;

using AnyFunction = std::uint64_t (*)(std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t);

int WindowsOfThread()
{
    int count = 0;
    ::EnumThreadWindows(
        ::GetCurrentThreadId(),
        [](HWND, LPARAM counted) -> BOOL {
            ++*reinterpret_cast<int*>(counted);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&count));
    return count;
}

bool IsInApartment()
{
    ULONG_PTR context = 0;
    return SUCCEEDED(::CoGetContextToken(&context));
}

void Fail(GatedCall& call, const FunctionFailures& function, const Failure& failure) noexcept
{
    call.result = failure.result;
    if (failure.work != Failure::Work::None) {
        const auto original = reinterpret_cast<AnyFunction>(call.original);
        const std::uint64_t result =
            original(call.first[0], call.first[1], call.first[2], call.first[3]);
        if (failure.work == Failure::Work::DoneWithItsResult) {
            call.result = result;
        }
        ::InterlockedExchangeAdd(&memoryBalance, function.balance);
    }
    if (failure.writes != nullptr) {
        failure.writes(call);
    }
    if (failure.lastError != ERROR_SUCCESS) {
        ::SetLastError(failure.lastError);
    }
}

void NoteUnknown(const char* function) noexcept
{
    for (int i = 0; i < unknowns; ++i) {
        if (std::strcmp(unknown[i], function) == 0) {
            return;
        }
    }
    if (unknowns < static_cast<int>(std::size(unknown))) {
        unknown[unknowns++] = function;
    }
}

unsigned Applying(const FunctionFailures& function, const GatedCall& call) noexcept
{
    unsigned bits = 0;
    for (std::size_t i = 0; i < function.failures.size(); ++i) {
        const Failure& failure = function.failures[i];
        bits |= failure.applies == nullptr || failure.applies(call) ? 1U << i : 0U;
    }
    return bits;
}

const Failure* Choose(const FunctionFailures& function, unsigned applying, unsigned choice) noexcept
{
    const auto count = static_cast<unsigned>(std::popcount(applying));
    for (unsigned bit = 0, left = count == 0 ? 0 : choice % count; count != 0; ++bit) {
        if ((applying >> bit & 1U) != 0 && left-- == 0) {
            return &function.failures[bit];
        }
    }
    return nullptr;
}

} // namespace

void BeginRun(const Plan& next)
{
    plan = next;
    calls = 0;
    unknowns = 0;
    happened = anotherCall = false;
    secondFunction = nullptr;
    secondFailure = nullptr;
}

std::vector<SweptCall> SweptCalls()
{
    std::vector<SweptCall> swept;
    for (int i = 0; i < calls; ++i) {
        const FunctionFailures& function = *made[i].function;
        SweptCall call = {function.function, 1, {}};
        call.occurrence += static_cast<int>(std::count_if(made, made + i, [&](const Made& before) {
            return before.function == made[i].function;
        }));
        for (std::size_t bit = 0; bit < function.failures.size(); ++bit) {
            if ((made[i].applying >> bit & 1U) != 0) {
                call.failures.push_back(&function.failures[bit]);
            }
        }
        swept.push_back(std::move(call));
    }
    return swept;
}

bool PlanHappened()
{
    return plan.allocations ? AllocationFailure::Happened() : happened;
}

std::string SecondFailure()
{
    return secondFailure == nullptr ? std::string()
                                    : std::string(secondFunction->function) + ": " + secondFailure->name;
}

std::vector<const char*> UnknownFunctions()
{
    return {unknown, unknown + unknowns};
}

bool PlanMetAnotherCall()
{
    return anotherCall;
}

long MemoryBalance()
{
    return memoryBalance;
}

bool LetCallGoOn(GatedCall& call) noexcept
{
    const FunctionFailures* const function = call.failures;
    if (function != nullptr && function->failures.empty()) {
        ::InterlockedExchangeAdd(&memoryBalance, function->balance);
        return true;
    }
    const DWORD error = ::GetLastError();
    if (::GetCurrentThreadId() != armedThread) {
        if (function != nullptr) {
            ::InterlockedExchangeAdd(&memoryBalance, function->balance);
        }
        ::SetLastError(error);
        return true;
    }
    if (function == nullptr) {
        NoteUnknown(call.function);
        return true;
    }
    const int number = calls;
    if (calls < kMostCalls) {
        made[calls++] = {function, Applying(*function, call)};
    }
    if (number == plan.call) {
        happened = true;
        anotherCall = std::strcmp(function->function, plan.function) != 0;
        Fail(call, *function, *plan.failure);
        return false;
    }
    if (happened && plan.secondAfter != 0 && number == plan.call + plan.secondAfter) {
        secondFailure = Choose(*function, Applying(*function, call), plan.secondChoice);
        if (secondFailure != nullptr) {
            secondFunction = function;
            Fail(call, *function, *secondFailure);
            return false;
        }
    }
    ::InterlockedExchangeAdd(&memoryBalance, function->balance);
    ::SetLastError(error);
    return true;
}

std::optional<std::uint64_t> FailureNow(const char* operation, CallArguments arguments) noexcept
{
    GatedCall call = {operation, FailuresOf(operation), nullptr, arguments.data(), nullptr, 0};
    return LetCallGoOn(call) ? std::nullopt : std::optional(call.result);
}

Armed::Armed() : windowsBefore(WindowsOfThread()), comBefore(IsInApartment())
{
    if (plan.allocations) {
        shortOfMemory.emplace(*plan.allocations, plan.shortage);
    }
    armedThread = ::GetCurrentThreadId();
}

Armed::~Armed()
{
    armedThread = 0;
    shortOfMemory.reset();
    if (const int left = WindowsOfThread() - windowsBefore) {
        Journal::AddNumber(L"LEFT BEHIND windows", left);
    }
    if (const bool after = IsInApartment(); after != comBefore) {
        Journal::Add(after ? L"LEFT BEHIND COM initialised" : L"LEFT BEHIND COM taken away");
    }
}

} // namespace kestraboot::tests
