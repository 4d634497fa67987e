#pragma once

#include <cstdint>

#include <Inventor/fields/SoMField.h>
#include <Inventor/fields/SoSubField.h>

// A multiple-value field of on/off flags, one per element (tube, sphere, ...),
// read and written as 0 and 1. As with every Inventor multiple field, fewer
// values than elements repeat the last one: a single value 1 means "all on".
class SoMFBit : public SoMField {
    typedef SoMField inherited;
    SO_MFIELD_HEADER(SoMFBit, uint8_t, uint8_t);

public:
    static void initClass();

    // Flag of element i: the last value repeats past the end; no value is off.
    bool test(int i) const;
    // Makes n values, all on or all off.
    void setAll(int n, bool on);
    // Sets count flags from start, growing the field when needed.
    void setRange(int start, int count, bool on);
    int countSet() const;
};
