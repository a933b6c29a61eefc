#include "tests/endurance/fuzz/standard_output.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace kestraboot::fuzz
{

StandardOutput::StandardOutput()
    : caught(_wopen((folder.Path() / L"output.txt").c_str(), _O_CREAT | _O_RDWR | _O_TEXT,
                    _S_IREAD | _S_IWRITE)),
      real(_dup(1))
{
}

StandardOutput::~StandardOutput()
{
    _close(real);
    _close(caught);
}

void StandardOutput::During(const std::function<void()>& operation)
{
    struct Redirection {
        Redirection(int to, int& back) : before(back)
        {
            std::fflush(stdout);
            _dup2(to, 1);
        }
        Redirection(const Redirection&) = delete;
        Redirection& operator=(const Redirection&) = delete;
        ~Redirection()
        {
            std::fflush(stdout);
            _dup2(before, 1);
        }
        int& before;
    };
    const Redirection redirection(caught, real);
    operation();
}

std::string StandardOutput::Taken()
{
    const long length = _tell(caught);
    if (length == 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    _lseek(caught, 0, SEEK_SET);
    const int read = _read(caught, text.data(), static_cast<unsigned>(length));
    text.resize(read < 0 ? 0 : static_cast<std::size_t>(read));
    _lseek(caught, 0, SEEK_SET);
    std::erase(text, '\r');
    return text;
}

} // namespace kestraboot::fuzz
