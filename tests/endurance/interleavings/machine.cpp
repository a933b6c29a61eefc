#include "tests/endurance/interleavings/machine.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace kestraboot::interleavings
{
namespace
{

Machine* current = nullptr;

std::string Hex(UINT number)
{
    char text[16] = {};
    std::snprintf(text, sizeof text, "0x%X", number);
    return text;
}

Scheduler& InScene()
{
    return *Scheduler::Running();
}

} // namespace

std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t character : text) {
        narrow += character < 128 ? static_cast<char>(character) : '?';
    }
    return narrow;
}

Machine::Machine()
{
    current = this;
}

Machine::~Machine()
{
    current =
        current == this ? nullptr : current; // a scene that failed is kept, and another one is created
}

Machine& Machine::Current() noexcept
{
    return *current;
}

Machine::Lock& Machine::Of(const void* lock)
{
    const auto [found, isNew] = locks.try_emplace(lock);
    if (isNew) {
        found->second.number = static_cast<int>(locks.size());
    }
    return found->second;
}

void Machine::Take(const void* address, bool recursive)
{
    Scheduler& scheduler = InScene();
    Lock& lock = Of(address);
    const std::string name = "lock " + std::to_string(lock.number);
    const int self = scheduler.Self();
    scheduler.Await("takes " + name, [&lock, self, recursive] {
        return lock.owner == -1 || (recursive && lock.owner == self);
    });
    if (lock.deleted) {
        scheduler.Fail(name + " is taken after it was deleted");
    }
    lock.owner = self;
    ++lock.count;
    // What is shared without a lock, and no call of Windows, may change here.
    scheduler.Point("has " + name);
}

void Machine::Give(const void* address)
{
    Lock& lock = Of(address);
    InScene().Point("gives back lock " + std::to_string(lock.number));
    if (lock.owner != InScene().Self()) {
        InScene().Fail("a thread releases a lock that it does not hold");
    }
    if (--lock.count == 0) {
        lock.owner = -1;
    }
}

void Machine::Made(const void* address)
{
    Of(address).deleted = false;
}

void Machine::Deleted(const void* address)
{
    Lock& lock = Of(address);
    InScene().Point("deletes lock " + std::to_string(lock.number));
    if (lock.owner != -1 || lock.deleted) {
        InScene().Fail("a lock is deleted that is held, or was deleted before");
    }
    lock.deleted = true;
}

UINT Machine::SetErrorMode(UINT mode)
{
    InScene().Point("sets the error mode to " + Hex(mode));
    return std::exchange(errorMode, mode);
}

void Machine::NeedsNoBoxes(const std::string& operation, UINT flags)
{
    InScene().Point(operation);
    if ((errorMode & flags) != flags) {
        InScene().Fail(operation + " with the error mode " + Hex(errorMode) + ", which lacks flags of " +
                       Hex(flags));
    }
}

bool Machine::Has(HMODULE module) const
{
    return std::ranges::any_of(libraries, [module](const auto& library) {
        return reinterpret_cast<HMODULE>(const_cast<Library*>(&library.second)) == module;
    });
}

HMODULE Machine::Load(const std::string& operation, const wchar_t* path)
{
    NeedsNoBoxes(operation + " " + Narrow(path), SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    Library& library = libraries.at(path);
    ++library.loads;
    return reinterpret_cast<HMODULE>(&library);
}

void Machine::Free(HMODULE module)
{
    InScene().Point("FreeLibrary");
    if (--reinterpret_cast<Library*>(module)->loads < 0) {
        InScene().Fail("a library is freed more often than it was loaded");
    }
}

int Machine::LocksDeleted() const
{
    return static_cast<int>(std::ranges::count_if(locks, [](const auto& lock) {
        return lock.second.deleted;
    }));
}

std::string Machine::Check() const
{
    if (errorMode != kModeOfTheHost) {
        return "the error mode stays " + Hex(errorMode) + ", and was " + Hex(kModeOfTheHost);
    }
    for (const auto& [address, lock] : locks) {
        if (lock.owner != -1) {
            return "lock " + std::to_string(lock.number) + " was not given back";
        }
    }
    return {};
}

} // namespace kestraboot::interleavings
