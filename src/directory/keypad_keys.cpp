#include "directory/keypad_keys.h"

#include "core/component_error.h"

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace dbn::directory {
namespace {

// Decomposes, drops the marks, and maps what is left of Latin letters that
// have no plain decomposition (ß, Æ, Ø, Ł, ...) to their ASCII spelling.
constexpr const char* kToAsciiRules = "NFD; [:Nonspacing Mark:] Remove; NFC; Latin-ASCII";

constexpr long kErrTransliterator = 5101;

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

char KeypadDigit(char c) noexcept {
    // Index by the upper-case letter: ABC DEF GHI JKL MNO PQRS TUV WXYZ.
    static constexpr char kLetters[] = "22233344455566677778889999";
    if (c >= '0' && c <= '9') {
        return c;
    }
    if (c >= 'a' && c <= 'z') {
        c = static_cast<char>(c - 'a' + 'A');
    }
    if (c >= 'A' && c <= 'Z') {
        return kLetters[c - 'A'];
    }
    return '\0';
}

struct KeypadSpeller::Transliteration {
    std::unique_ptr<icu::Transliterator> rules;
};

KeypadSpeller::KeypadSpeller() = default;
KeypadSpeller::~KeypadSpeller() = default;

std::string KeypadSpeller::ToAscii(std::string_view name) {
    if (toAscii_ == nullptr) {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Transliterator> rules(
            icu::Transliterator::createInstance(kToAsciiRules, UTRANS_FORWARD, status));
        if (U_FAILURE(status) || rules == nullptr) {
            RaiseError(
                kErrTransliterator,
                std::string("The keypad transliteration is not available: ") + u_errorName(status));
        }
        toAscii_ = std::make_unique<Transliteration>(Transliteration{std::move(rules)});
    }
    icu::UnicodeString text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(name.data(), static_cast<std::int32_t>(name.size())));
    toAscii_->rules->transliterate(text);
    std::string ascii;
    text.toUTF8String(ascii);
    return ascii;
}

KeypadKey KeypadSpeller::NameKey(std::string_view name) {
    std::string converted;
    if (!IsAscii(name)) {
        converted = ToAscii(name);
        name = converted;
    }
    KeypadKey key;
    for (char c : name) {
        const char digit = KeypadDigit(c);
        if (digit != '\0') {
            key.letters += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
            key.digits += digit;
        }
    }
    return key;
}

KeypadKey ExtensionKey(std::string_view extension) {
    KeypadKey key;
    for (char c : extension) {
        if (c >= '0' && c <= '9') {
            key.letters += c;
            key.digits += c;
        }
    }
    return key;
}

}  // namespace dbn::directory
