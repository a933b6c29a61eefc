#include "phone_server.h"

#include <system_error>
#include <utility>

namespace
{

HANDLE MakePipe()
{
    const HANDLE pipe =
        ::CreateNamedPipeW(kPhonePipe, PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                           PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT,
                           PIPE_UNLIMITED_INSTANCES, sizeof(PhoneAnswer), sizeof(PhoneNews), 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) {
        throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), "pipe");
    }
    return pipe;
}

} // namespace

PhoneServer::PhoneServer(Take taken)
    : take(std::move(taken)), pipe(MakePipe()), ending(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      operationDone(::CreateEventW(nullptr, TRUE, FALSE, nullptr)), thread([this] {
          Serve();
      })
{
}

PhoneServer::~PhoneServer()
{
    ::SetEvent(ending);
    thread.join();
    for (const HANDLE handle : {pipe, ending, operationDone}) {
        ::CloseHandle(handle);
    }
}

/// The end of one overlapped operation. False: it failed, or the server is to end.
bool PhoneServer::Await(OVERLAPPED& operation, BOOL done, DWORD& transferred) const
{
    if (!done && ::GetLastError() == ERROR_PIPE_CONNECTED) {
        return true; // the client was quicker
    }
    if (!done && ::GetLastError() != ERROR_IO_PENDING) {
        return false;
    }
    const HANDLE awaited[] = {ending, operationDone};
    if (::WaitForMultipleObjects(2, awaited, FALSE, INFINITE) == WAIT_OBJECT_0) {
        ::CancelIoEx(pipe, &operation);
    }
    return ::GetOverlappedResult(pipe, &operation, &transferred, TRUE) != FALSE;
}

void PhoneServer::Serve() const
{
    while (::WaitForSingleObject(ending, 0) == WAIT_TIMEOUT) {
        OVERLAPPED operation = {};
        operation.hEvent = operationDone;
        DWORD transferred = 0;
        if (Await(operation, ::ConnectNamedPipe(pipe, &operation), transferred)) {
            ServeClient(operation);
        }
        ::DisconnectNamedPipe(pipe);
    }
}

void PhoneServer::ServeClient(OVERLAPPED& operation) const
{
    PhoneNews news = {};
    DWORD transferred = 0;
    if (!Await(operation, ::ReadFile(pipe, &news, sizeof news, nullptr, &operation), transferred) ||
        transferred != sizeof news) {
        return;
    }
    const PhoneAnswer answer = take(news);
    if (Await(operation, ::WriteFile(pipe, &answer, sizeof answer, nullptr, &operation), transferred)) {
        ::FlushFileBuffers(pipe); // until the answer was read
    }
}
