#include "tools/trace/recording/text_lines.h"

#include "tools/common/utf8.h"

#include <utility>

namespace kestraboot::tools
{
namespace
{

constexpr std::size_t kEnoughToRecognise = 4;

/// The number of bytes of a character that begins in this way; 0 if none does.
std::size_t LengthByLead(unsigned char lead) noexcept
{
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead < 0xE0) {
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        return 3;
    }
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool IsUtf8(std::string_view text) noexcept
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = LengthByLead(static_cast<unsigned char>(text[i]));
        if (length == 0 || i + length > text.size()) {
            return false;
        }
        for (std::size_t tail = 1; tail < length; ++tail) {
            if ((static_cast<unsigned char>(text[i + tail]) & 0xC0) != 0x80) {
                return false;
            }
        }
        i += length;
    }
    return true;
}

std::string_view WithoutReturn(std::string_view line) noexcept
{
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

} // namespace

void TextLines::Push(std::string_view bytes)
{
    if (encoding == Encoding::Unknown) {
        beginning += bytes;
        if (beginning.size() >= kEnoughToRecognise) {
            Recognise();
        }
    } else if (encoding == Encoding::Bytes) {
        PushBytes(bytes);
    } else {
        PushUnits(bytes);
    }
}

void TextLines::Recognise()
{
    const std::string all = std::exchange(beginning, {});
    std::string_view rest = all;
    const auto zeroAt = [&](std::size_t at) {
        return at < all.size() && all[at] == '\0';
    };
    encoding = Encoding::Bytes;
    if (rest.starts_with("\xEF\xBB\xBF")) {
        rest.remove_prefix(3);
    } else if (rest.starts_with("\xFF\xFE")) {
        encoding = Encoding::LittleEndian;
        rest.remove_prefix(2);
    } else if (rest.starts_with("\xFE\xFF")) {
        encoding = Encoding::BigEndian;
        rest.remove_prefix(2);
    } else if (zeroAt(1) && zeroAt(3)) {
        encoding = Encoding::LittleEndian;
    } else if (zeroAt(0) && zeroAt(2)) {
        encoding = Encoding::BigEndian;
    }
    Push(rest);
}

void TextLines::PushBytes(std::string_view bytes)
{
    for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        Append(bytes.substr(0, end));
        TakeLine();
        bytes.remove_prefix(end + 1);
    }
    Append(bytes);
}

void TextLines::Append(std::string_view part)
{
    line += part.substr(0, kLongestLine - line.size());
}

void TextLines::PushUnits(std::string_view bytes)
{
    for (const char byte : bytes) {
        if (beginning.empty()) {
            beginning = byte;
            continue;
        }
        const auto first = static_cast<unsigned char>(beginning.front());
        const auto second = static_cast<unsigned char>(byte);
        beginning.clear();
        const auto unit = static_cast<wchar_t>(encoding == Encoding::LittleEndian ? first | second << 8
                                                                                  : first << 8 | second);
        if (unit == L'\n') {
            TakeLine();
        } else if (units.size() < kLongestLine) {
            units += unit;
        }
    }
}

void TextLines::TakeLine()
{
    if (encoding == Encoding::Bytes) {
        const std::string_view whole = WithoutReturn(line);
        take(IsUtf8(whole) ? std::string(whole) : ansi(whole));
        line.clear();
    } else {
        take(WithoutReturn(tools::ToUtf8(units)));
        units.clear();
    }
}

bool TextLines::End()
{
    if (encoding == Encoding::Unknown) {
        Recognise();
    }
    if (line.empty() && units.empty()) {
        return false;
    }
    TakeLine();
    return true;
}

} // namespace kestraboot::tools
