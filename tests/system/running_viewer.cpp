#include "tests/system/running_viewer.h"

#include "tests/support/source_file.h"
#include "tests/system/installation.h"
#include "tests/tools/json_schema.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kestraboot::tests
{

RunningViewer::RunningViewer(const std::wstring& arguments)
    : process(BuiltPrograms() / "kestratrace.exe", arguments),
      json(arguments.find(L"--json") != std::wstring::npos)
{
    EXPECT_TRUE(AwaitReader());
}

RunningViewer::~RunningViewer()
{
    if (!json) {
        return;
    }
    const nlohmann::json schema = ReadSchema(SourceFile("docs/kestratrace.schema.json"));
    for (const std::string& line : Lines()) {
        if (line.starts_with("{")) {
            EXPECT_EQ(AgainstSchema(schema, nlohmann::json::parse(line)), "") << line;
        }
    }
}

std::vector<std::string> RunningViewer::Lines()
{
    std::vector<std::string> lines;
    std::istringstream output(process.Output());
    for (std::string line; std::getline(output, line);) {
        if (!output.eof()) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::string RunningViewer::Await(const std::string& text)
{
    for (const ULONGLONG end = ::GetTickCount64() + 30'000; ::GetTickCount64() < end; ::Sleep(10)) {
        for (const std::string& line : Lines()) {
            if (line.find(text) != std::string::npos) {
                return line;
            }
        }
    }
    return {};
}

bool AwaitReader()
{
    for (const ULONGLONG end = ::GetTickCount64() + 30'000; ::GetTickCount64() < end; ::Sleep(10)) {
        // A reader creates the section last. The section of a reader that has just exited may still
        // exist without its events.
        const HANDLE dataReady = ::OpenEventW(SYNCHRONIZE, FALSE, L"DBWIN_DATA_READY");
        const HANDLE section = ::OpenFileMappingW(FILE_MAP_READ, FALSE, L"DBWIN_BUFFER");
        const bool reads = dataReady != nullptr && section != nullptr;
        for (const HANDLE opened : {dataReady, section}) {
            if (opened != nullptr) {
                ::CloseHandle(opened);
            }
        }
        if (reads) {
            return true;
        }
    }
    return false;
}

} // namespace kestraboot::tests
