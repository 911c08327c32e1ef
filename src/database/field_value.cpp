#include "database/field_value.h"

#include "core/component_error.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace dbn {
namespace {

constexpr long kErrOverflow = 6;
constexpr long kErrTypeMismatch = 13;

// Parses a whole number, allowing blanks around it and a leading sign.
std::int64_t ParseWholeNumber(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    const auto last = text.find_last_not_of(' ');
    if (first == std::string_view::npos) {
        RaiseError(kErrTypeMismatch, "Type mismatch");
    }
    text = text.substr(first, last - first + 1);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        RaiseError(kErrOverflow, "Overflow");
    }
    if (error != std::errc() || end != text.data() + text.size()) {
        RaiseError(kErrTypeMismatch, "Type mismatch");
    }
    return value;
}

// The value as a whole number before the range check; reals round half to
// even, the rounding of the platform's default mode.
std::int64_t WholeNumberOf(const FieldValue::Storage& value) {
    if (std::holds_alternative<std::monostate>(value)) {
        return 0;
    }
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return *number;
    }
    if (const auto* real = std::get_if<double>(&value)) {
        const double rounded = std::nearbyint(*real);
        if (!std::isfinite(rounded) || rounded < -9.2e18 || rounded > 9.2e18) {
            RaiseError(kErrOverflow, "Overflow");
        }
        return static_cast<std::int64_t>(rounded);
    }
    return ParseWholeNumber(std::get<std::string>(value));
}

template <class Int>
Int Narrow(std::int64_t number) {
    if (number < std::numeric_limits<Int>::min() || number > std::numeric_limits<Int>::max()) {
        RaiseError(kErrOverflow, "Overflow");
    }
    return static_cast<Int>(number);
}

}  // namespace

std::int16_t FieldValue::ToInt16() const {
    return Narrow<std::int16_t>(WholeNumberOf(value_));
}

std::int64_t FieldValue::ToInt64() const {
    return WholeNumberOf(value_);
}

std::int32_t FieldValue::ToInt32() const {
    return Narrow<std::int32_t>(WholeNumberOf(value_));
}

std::string FieldValue::ToText() const {
    if (const auto* number = std::get_if<std::int64_t>(&value_)) {
        return std::to_string(*number);
    }
    if (const auto* real = std::get_if<double>(&value_)) {
        char buffer[32];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, *real);
        return std::string(buffer, result.ptr);
    }
    if (const auto* text = std::get_if<std::string>(&value_)) {
        return *text;
    }
    return {};
}

}  // namespace dbn
