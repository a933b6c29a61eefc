#pragma once

#include <string>

namespace kestraboot::bench
{

/// A folder of the host system, mounted as a drive of this prefix (a card in a reader) while this lives.
class Card
{
public:
    Card(wchar_t letter, const std::string& unixFolder);
    Card(const Card&) = delete;
    Card& operator=(const Card&) = delete;
    ~Card();

    void Insert() const;
    void TakeOut() const;

    [[nodiscard]] std::wstring Drive() const { return {letter, L':'}; }

private:
    wchar_t letter;
    std::string folder;
};

} // namespace kestraboot::bench
