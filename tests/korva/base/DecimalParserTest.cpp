#include "korva/base/DecimalParser.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

// The parser must answer exactly what std::from_chars answers: the same
// bits, the same end and the same error.
void expectSameAsFromChars(const std::string& text) {
    SCOPED_TRACE("\"" + text + "\"");
    const char* first = text.data();
    const char* last = first + text.size();
    float expected = -12345.0f, actual = -12345.0f;
    std::from_chars_result want = std::from_chars(first, last, expected);
    std::from_chars_result got = DecimalParser::parse(first, last, actual);
    EXPECT_EQ(got.ec, want.ec);
    EXPECT_EQ(got.ptr - first, want.ptr - first);
    if (want.ec == std::errc()) {
        uint32_t a, b;
        std::memcpy(&a, &actual, sizeof(a));
        std::memcpy(&b, &expected, sizeof(b));
        EXPECT_EQ(a, b) << actual << " vs " << expected;
    }
}

}  // namespace

TEST(DecimalParserTest, AgreesWithFromCharsOnEdgeCases) {
    const char* const cases[] = {"0", "-0", "7", "-12.345", ".5", "-.5", "1.", ".", "-", "", "+1", "abc",
                                 "1e5", "1.5E-3", "2.5e", "00012.50", "0.45000002", "0.089999996",
                                 "3.4028235e38", "340282350000000000000000000000000000000", "1e-45",
                                 "0.000000000000000000001", "16777217", "16777219", "9007199254740993",
                                 "1234567890123456789", "12345678901234567890", "0.1 2", "5x", "inf", "nan",
                                 // a decimal exactly halfway between two floats, and just above it
                                 "16777217.0", "0.50000002980232238769531250", "0.5000000298023223877"};
    for (const char* text : cases) {
        expectSameAsFromChars(text);
    }
}

TEST(DecimalParserTest, AgreesWithFromCharsOnWrittenFloats) {
    std::mt19937 random(11);
    std::uniform_int_distribution<uint32_t> bits;
    std::uniform_int_distribution<int> digits(1, 9);
    char buffer[64];
    for (int i = 0; i < 100000; ++i) {
        uint32_t b = bits(random);
        float f;
        std::memcpy(&f, &b, sizeof(f));
        if (!std::isfinite(f)) {
            continue;
        }
        // Shortest form (what the writers produce) and a fixed number of decimals.
        char* end = std::to_chars(buffer, buffer + sizeof(buffer), f).ptr;
        expectSameAsFromChars(std::string(buffer, end));
        float small = static_cast<float>(b % 2000000) / 1000.0f - 1000.0f;
        end = std::to_chars(buffer, buffer + sizeof(buffer), small, std::chars_format::fixed, digits(random))
                  .ptr;
        expectSameAsFromChars(std::string(buffer, end));
        if (HasFailure()) {
            return;
        }
    }
}
