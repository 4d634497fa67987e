#include "korva/base/DecimalParser.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

constexpr int kMaxDigits = 19;  // any 19 digits fit a uint64_t
constexpr uint64_t kMaxExactInDouble = uint64_t(1) << 53;

// Powers of ten exact in a double.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads digits into w; the number of digits read.
int readDigits(const char*& p, const char* last, uint64_t& w) {
    const char* start = p;
    while (p < last && isDigit(*p) && p - start < kMaxDigits + 1) {
        w = w * 10 + static_cast<uint64_t>(*p - '0');
        ++p;
    }
    return static_cast<int>(p - start);
}

// A double rounds to the same float as the decimal it was rounded from unless
// it lies exactly halfway between two floats (its 29 bits below float
// precision are 1000...0), or it is outside the normal float range.
bool roundsOnceToFloat(double d) {
    if (d != 0 && (std::fabs(d) < FLT_MIN || std::fabs(d) > FLT_MAX)) {
        return false;
    }
    uint64_t bits;
    std::memcpy(&bits, &d, sizeof(bits));
    return (bits & 0x1FFFFFFFu) != 0x10000000u;
}

}  // namespace

std::from_chars_result DecimalParser::parse(const char* first, const char* last, float& value) {
    const char* p = first;
    const bool negative = p < last && *p == '-';
    p += negative ? 1 : 0;
    uint64_t w = 0;
    const int intDigits = readDigits(p, last, w);
    int fracDigits = 0;
    if (p < last && *p == '.') {
        ++p;
        fracDigits = readDigits(p, last, w);
    }
    const bool plain = intDigits + fracDigits > 0 && intDigits + fracDigits <= kMaxDigits &&
                       w <= kMaxExactInDouble && (p == last || (*p != 'e' && *p != 'E' && !isDigit(*p)));
    if (!plain) {
        return std::from_chars(first, last, value);
    }
    // Both operands are exact, so the quotient is the decimal rounded once.
    const double d = static_cast<double>(w) / kPowersOfTen[fracDigits];
    if (!roundsOnceToFloat(d)) {
        return std::from_chars(first, last, value);
    }
    value = static_cast<float>(negative ? -d : d);
    return {p, std::errc()};
}
