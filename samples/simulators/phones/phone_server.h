#pragma once

#include "phone_pipe.h"

#include <windows.h>
#include <functional>
#include <thread>

/// Serves the phone pipe on a thread of its own while it lives: passes each report on, and answers with
/// the result.
class PhoneServer
{
public:
    using Take = std::function<PhoneAnswer(const PhoneNews&)>;

    /// Throws std::system_error if the pipe or the thread cannot be created.
    explicit PhoneServer(Take take);
    PhoneServer(const PhoneServer&) = delete;
    PhoneServer& operator=(const PhoneServer&) = delete;
    /// Returns when no call of `take` runs any more.
    ~PhoneServer();

private:
    void Serve() const;
    void ServeClient(OVERLAPPED& operation) const;
    bool Await(OVERLAPPED& operation, BOOL done, DWORD& transferred) const;

    Take take;
    HANDLE pipe;
    HANDLE ending;
    HANDLE operationDone;
    std::thread thread;
};
