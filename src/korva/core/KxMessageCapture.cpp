#include "korva/core/KxMessageCapture.h"

#include <algorithm>

KxMessageCapture::KxMessageCapture() {
    previous_ = theMsg->setSink([this](const std::string& line) { lines_.push_back(line); });
}

KxMessageCapture::~KxMessageCapture() {
    theMsg->setSink(std::move(previous_));
}

std::string KxMessageCapture::text() const {
    std::string all;
    for (const std::string& line : lines_) {
        all += line;
        all += '\n';
    }
    return all;
}

bool KxMessageCapture::contains(const std::string& line) const {
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
}

int KxMessageCapture::numErrors() const {
    return static_cast<int>(std::count_if(
        lines_.begin(), lines_.end(), [](const std::string& l) { return l.compare(0, 7, "Error: ") == 0; }));
}
