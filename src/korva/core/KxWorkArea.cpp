#include "korva/core/KxWorkArea.h"

#include <unistd.h>

#include <algorithm>

namespace {
constexpr int kBarWidth = 30;
}

KxWorkArea::KxWorkArea(FILE* out) : out_(out), terminal_(out && isatty(fileno(out))) {}

KxWorkArea::KxWorkArea(FILE* out, bool terminal) : out_(out), terminal_(out && terminal) {}

KxWorkArea::~KxWorkArea() {
    if (depth_ > 0) {
        erase();
    }
}

KxWorkArea& KxWorkArea::instance() {
    static KxWorkArea workArea;
    return workArea;
}

void KxWorkArea::startWorking(const char* text, int numSteps) {
    if (depth_++ > 0) {
        return;
    }
    text_ = text ? text : "";
    numSteps_ = std::max(numSteps, 0);
    stepsDone_ = 0;
    fraction_ = 0.0f;
    shownPercent_ = -1;
    draw(true);
}

void KxWorkArea::step() {
    if (depth_ != 1 || numSteps_ == 0) {
        return;
    }
    stepsDone_ = std::min(stepsDone_ + 1, numSteps_);
    fraction_ = static_cast<float>(stepsDone_) / static_cast<float>(numSteps_);
    draw(false);
}

void KxWorkArea::setProgressValue(float fraction) {
    if (depth_ != 1) {
        return;
    }
    fraction_ = std::clamp(fraction, 0.0f, 1.0f);
    draw(false);
}

void KxWorkArea::stopWorking() {
    if (depth_ == 0) {
        return;
    }
    if (--depth_ == 0) {
        erase();
    }
}

void KxWorkArea::draw(bool force) {
    if (!terminal_) {
        return;
    }
    int percent = static_cast<int>(fraction_ * 100.0f);
    if (!force && percent == shownPercent_) {
        return;
    }
    shownPercent_ = percent;
    int filled = percent * kBarWidth / 100;
    std::string bar(static_cast<size_t>(filled), '#');
    bar.append(static_cast<size_t>(kBarWidth - filled), '.');
    std::fprintf(out_, "\r%s [%s] %3d%%", text_.c_str(), bar.c_str(), percent);
    std::fflush(out_);
}

void KxWorkArea::erase() {
    if (!terminal_) {
        return;
    }
    // Clear the line so that the next output starts on a clean line.
    std::fprintf(out_, "\r\033[K");
    std::fflush(out_);
}
