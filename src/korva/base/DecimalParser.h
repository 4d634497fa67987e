#pragma once

#include <charconv>

// std::from_chars for floats, with a fast path for the plain decimals that
// writers produce ("-12.345", "7", ".5"): up to 19 digits, no exponent. Those
// are converted exactly to double and rounded once to float; every other text
// (exponents, long mantissas, "inf", a float rounding tie, subnormals, bad
// input) goes to std::from_chars, so results, end pointers and errors are
// always those of std::from_chars. Independent of the locale.
class DecimalParser {
public:
    static std::from_chars_result parse(const char* first, const char* last, float& value);
};
