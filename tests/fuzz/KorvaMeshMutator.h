#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

// Deterministic damage to a file's bytes, for driving the KorvaMesh reader
// over broken input without a coverage-guided fuzzer: bit flips, interesting
// byte values, digits changed in numbers, cut, duplicated and swapped chunks.
class KorvaMeshMutator {
public:
    explicit KorvaMeshMutator(uint32_t seed) : random_(seed) {}

    std::string mutate(const std::string& original) {
        std::string s = original;
        int rounds = 1 + pick(3);
        for (int r = 0; r < rounds && !s.empty(); ++r) {
            mutateOnce(s);
        }
        return s;
    }

private:
    size_t pick(size_t n) { return n == 0 ? 0 : std::uniform_int_distribution<size_t>(0, n - 1)(random_); }

    void mutateOnce(std::string& s) {
        static const unsigned char interesting[] = {0,   1,   0x7f, 0x80, 0xff, '0', '9',
                                                    '-', ' ', '\n', '"',  '{',  '}', '@'};
        size_t at = pick(s.size());
        switch (pick(7)) {
            case 0:
                s[at] = static_cast<char>(s[at] ^ (1 << pick(8)));
                break;
            case 1:
                s[at] = static_cast<char>(interesting[pick(sizeof(interesting))]);
                break;
            case 2: {
                // Change a digit, so that counts and sizes lie by a little or a lot.
                size_t digit = s.find_first_of("0123456789", at);
                if (digit != std::string::npos) {
                    s[digit] = static_cast<char>('0' + pick(10));
                    if (pick(4) == 0) {
                        s.insert(digit, 1, static_cast<char>('1' + pick(9)));
                    }
                }
                break;
            }
            case 3:
                s.resize(at);
                break;
            case 4:
                s.erase(at, 1 + pick(16));
                break;
            case 5:
                s.insert(at, s.substr(pick(s.size()), 1 + pick(16)));
                break;
            default: {
                size_t other = pick(s.size());
                size_t n = std::min({s.size() - at, s.size() - other, 1 + pick(8)});
                for (size_t k = 0; k < n; ++k) {
                    std::swap(s[at + k], s[other + k]);
                }
            }
        }
    }

    std::mt19937 random_;
};
