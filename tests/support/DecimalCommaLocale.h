#pragma once

#include <clocale>
#include <locale>
#include <stdexcept>
#include <string>

// While it lives, the C and C++ global locales are one with a decimal comma,
// if such a locale is installed (active()); both are restored when it dies.
class DecimalCommaLocale {
public:
    DecimalCommaLocale() : previous_(std::setlocale(LC_ALL, nullptr)) {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8"}) {
            try {
                if (!active_ && std::setlocale(LC_ALL, name)) {
                    std::locale::global(std::locale(name));
                    active_ = true;
                }
            } catch (const std::runtime_error&) {
                std::setlocale(LC_ALL, previous_.c_str());
            }
        }
    }
    ~DecimalCommaLocale() {
        std::locale::global(previousGlobal_);
        std::setlocale(LC_ALL, previous_.c_str());
    }
    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;

    bool active() const { return active_; }

private:
    std::string previous_;
    std::locale previousGlobal_;
    bool active_ = false;
};
