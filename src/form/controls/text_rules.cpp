#include "form/controls/text_rules.h"

#include <algorithm>

namespace dbn::form {

namespace {

char LowerAscii(char c) noexcept {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsContinuationByte(char c) noexcept {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

}  // namespace

bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
}

int CharacterCount(std::string_view text) noexcept {
    return static_cast<int>(
        std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuationByte(c); }));
}

std::string FirstCharacters(std::string_view text, int count) {
    if (count <= 0) {
        return {};
    }
    int seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!IsContinuationByte(text[i]) && seen++ == count) {
            return std::string(text.substr(0, i));
        }
    }
    return std::string(text);
}

}  // namespace dbn::form
