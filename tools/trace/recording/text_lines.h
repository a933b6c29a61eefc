// Splits the bytes of a log into lines of UTF-8.
//
// The log may be UTF-8, with or without its mark, UTF-16 of either byte order, or text in the ANSI
// code page. The first bytes identify UTF-16; any other line that is not valid UTF-8 counts as
// ANSI. However long the log is, the object holds one line of it at a time.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace kestraboot::tools
{

class TextLines
{
public:
    /// Longer lines are cut: this is four times the longest debug line in JSON.
    static constexpr std::size_t kLongestLine = 262'144;

    using Take = std::function<void(std::string_view line)>;
    using ToUtf8 = std::string (*)(std::string_view ansi);

    /// Passes the lines to `taker`, without their ends.
    TextLines(Take taker, ToUtf8 fromAnsi) : take(std::move(taker)), ansi(fromAnsi) {}

    void Push(std::string_view bytes);

    /// No more bytes will come. Returns whether the last line lacked its end; it is passed on all
    /// the same.
    bool End();

private:
    enum class Encoding { Unknown, Bytes, LittleEndian, BigEndian };

    void Recognise();
    void PushBytes(std::string_view bytes);
    void PushUnits(std::string_view bytes);
    void Append(std::string_view part);
    void TakeLine();

    const Take take;
    const ToUtf8 ansi;
    Encoding encoding = Encoding::Unknown;
    std::string beginning; ///< until the encoding is known; later half a UTF-16 unit
    std::string line;
    std::wstring units; ///< the line, if it is UTF-16
};

} // namespace kestraboot::tools
