#pragma once

#include <cstdio>
#include <string>

// Progress display for long work. startWorking(text, numSteps) begins a task;
// step() advances it by one of its steps, setProgressValue sets the fraction
// done directly; stopWorking() ends it. Calls nest: only the outermost task is
// shown, inner ones leave the bar alone. On a terminal the bar is drawn on one
// line of stderr and redrawn only when the percentage changes; when the output
// is not a terminal nothing at all is printed, so logs and pipes stay clean.
class KxWorkArea {
public:
    // Draws on out if it is a terminal (checked once here).
    explicit KxWorkArea(FILE* out = stderr);
    // Draws on out when terminal is true, whatever out is (for tests).
    KxWorkArea(FILE* out, bool terminal);
    ~KxWorkArea();
    KxWorkArea(const KxWorkArea&) = delete;
    KxWorkArea& operator=(const KxWorkArea&) = delete;

    static KxWorkArea& instance();

    void startWorking(const char* text, int numSteps = 0);
    void step();
    // Fraction done, clamped to 0..1.
    void setProgressValue(float fraction);
    void stopWorking();

    bool isWorking() const { return depth_ > 0; }
    float getProgressValue() const { return fraction_; }
    bool drawsOnTerminal() const { return terminal_; }

private:
    void draw(bool force);
    void erase();

    FILE* out_;
    bool terminal_;
    int depth_ = 0;
    std::string text_;
    int numSteps_ = 0;
    int stepsDone_ = 0;
    float fraction_ = 0.0f;
    int shownPercent_ = -1;
};

#define theWorkArea (&KxWorkArea::instance())
