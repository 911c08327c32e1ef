#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace dbn {

// One stored value of a row: Null, a whole number, a real or a text.
class FieldValue {
public:
    using Storage = std::variant<std::monostate, std::int64_t, double, std::string>;

    FieldValue() = default;
    explicit FieldValue(Storage value) : value_(std::move(value)) {}

    bool IsNull() const noexcept { return std::holds_alternative<std::monostate>(value_); }
    const Storage& Raw() const noexcept { return value_; }

    // Null reads as 0. A real is rounded; a text must hold a whole number.
    // Out of the 16-bit range: error 6 "Overflow"; a text that is no
    // number: error 13 "Type mismatch".
    std::int16_t ToInt16() const;
    // Same rules, 32-bit.
    std::int32_t ToInt32() const;
    // Same rules, 64-bit (a text or real beyond it: error 6).
    std::int64_t ToInt64() const;
    // Null reads as the empty text; numbers in their decimal form.
    std::string ToText() const;

private:
    Storage value_;
};

}  // namespace dbn
