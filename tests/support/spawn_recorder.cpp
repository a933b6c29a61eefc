#include "tests/support/spawn_recorder.h"

#include <cstdarg>
#include <filesystem>
#include <ostream>

namespace kestraboot::tests
{

SpawnRecorder::SpawnRecorder() : patch("_wspawnlp", Record)
{
    current = this;
}

SpawnRecorder::~SpawnRecorder()
{
    current = nullptr;
}

std::intptr_t SpawnRecorder::Record(int mode, const wchar_t* file, const wchar_t* first, ...)
{
    SpawnCall call = {mode, file, {}};
    std::va_list rest;
    va_start(rest, first);
    for (const wchar_t* argument = first; argument != nullptr; argument = va_arg(rest, const wchar_t*)) {
        call.arguments.emplace_back(argument);
    }
    va_end(rest);
    if (current->onSpawn) {
        current->onSpawn(call);
    }
    current->calls.push_back(std::move(call));
    return current->answer;
}

void PrintTo(const SpawnCall& call, std::ostream* out)
{
    *out << "mode " << call.mode << ", " << std::filesystem::path(call.file);
    for (const std::wstring& argument : call.arguments) {
        *out << " [" << std::filesystem::path(argument).string() << ']';
    }
}

} // namespace kestraboot::tests
