#include "tests/support/console_recorder.h"

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <io.h>
#include <iterator>
#include <sys/stat.h>

namespace kestraboot::tests
{

ConsoleRecorder::ConsoleRecorder() : file(folder.Path() / "output.txt")
{
    std::fflush(stdout);
    before = _dup(1);
    // As on a console: wide text becomes narrow, and a line feed becomes two characters.
    const int out = _wopen(file.c_str(), _O_CREAT | _O_WRONLY | _O_TEXT, _S_IREAD | _S_IWRITE);
    _dup2(out, 1);
    _close(out);
}

ConsoleRecorder::~ConsoleRecorder()
{
    Restore();
}

std::string ConsoleRecorder::Text()
{
    // Read before the flush below, so that text that the product leaves in the buffer is not included.
    std::ifstream in(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    std::erase(text, '\r');
    Restore();
    return text;
}

void ConsoleRecorder::Restore()
{
    if (before >= 0) {
        std::fflush(stdout);
        _dup2(before, 1);
        _close(before);
        before = -1;
    }
}

} // namespace kestraboot::tests
