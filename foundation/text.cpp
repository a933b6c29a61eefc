#include "foundation/text.h"

namespace kestraboot
{

bool EqualIgnoringCase(const std::wstring& left, const std::wstring& right) noexcept
{
    return _wcsicmp(left.c_str(), right.c_str()) == 0;
}

std::vector<std::wstring> SplitAtBlanks(std::wstring_view text)
{
    std::vector<std::wstring> pieces;
    while (!text.empty()) {
        const std::wstring_view piece = text.substr(0, text.find(L' '));
        if (!piece.empty()) {
            pieces.emplace_back(piece);
        }
        text.remove_prefix(piece.size() < text.size() ? piece.size() + 1 : text.size());
    }
    return pieces;
}

std::wstring QuoteUnlessQuoted(const std::wstring& text)
{
    return text.starts_with(L'"') ? text : L'"' + text + L'"';
}

} // namespace kestraboot
