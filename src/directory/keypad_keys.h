#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace dbn::directory {

// A text as a caller spells it on the keypad: the letters and digits that
// count (upper-case ASCII, in order) and the keypad digit of each.
struct KeypadKey {
    std::string letters;
    std::string digits;
};

// Turns names into keypad keys by the telephone keypad letters (ABC 2, DEF 3,
// GHI 4, JKL 5, MNO 6, PQRS 7, TUV 8, WXYZ 9). Letters with accents or other
// marks count as their base letter; characters that are neither a letter nor
// a digit are skipped; digits count as themselves. Plain ASCII text is
// converted directly; other text goes through an ICU transliterator first,
// made on first need and kept, so one speller serves a whole directory.
class KeypadSpeller {
public:
    KeypadSpeller();
    ~KeypadSpeller();
    KeypadSpeller(const KeypadSpeller&) = delete;
    KeypadSpeller& operator=(const KeypadSpeller&) = delete;

    // The key of a name (UTF-8).
    KeypadKey NameKey(std::string_view name);

private:
    std::string ToAscii(std::string_view name);

    struct Transliteration;  // the ICU transliterator, made on first need
    std::unique_ptr<Transliteration> toAscii_;
};

// The keypad digit of an ASCII letter or digit, or '\0' for anything else.
char KeypadDigit(char c) noexcept;

// The key of an extension: its digits, in order; everything else is skipped.
KeypadKey ExtensionKey(std::string_view extension);

}  // namespace dbn::directory
