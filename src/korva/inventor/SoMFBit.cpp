#include "korva/inventor/SoMFBit.h"

#include <algorithm>
#include <cstring>
#include <mutex>

#include <Inventor/SoInput.h>
#include <Inventor/SoOutput.h>

SO_MFIELD_SOURCE(SoMFBit, uint8_t, uint8_t);

void SoMFBit::initClass() {
    static std::once_flag once;
    std::call_once(once, [] { SO_MFIELD_INIT_CLASS(SoMFBit, inherited); });
}

SbBool SoMFBit::read1Value(SoInput* in, int idx) {
    int value = 0;
    if (!in->read(value) || (value != 0 && value != 1)) {
        return FALSE;
    }
    values[idx] = static_cast<uint8_t>(value);
    return TRUE;
}

void SoMFBit::write1Value(SoOutput* out, int idx) const {
    out->write(static_cast<int>(values[idx]));
}

bool SoMFBit::test(int i) const {
    int n = getNum();
    if (n == 0 || i < 0) {
        return false;
    }
    return (*this)[std::min(i, n - 1)] != 0;
}

void SoMFBit::setAll(int n, bool on) {
    setNum(n);
    if (n > 0) {
        std::memset(startEditing(), on ? 1 : 0, static_cast<size_t>(n));
        finishEditing();
    }
}

void SoMFBit::setRange(int start, int count, bool on) {
    if (start < 0 || count <= 0) {
        return;
    }
    int old = getNum();
    if (old < start + count) {
        setNum(start + count);
        if (start > old) {
            std::memset(startEditing() + old, 0, static_cast<size_t>(start - old));
        }
    }
    std::memset(startEditing() + start, on ? 1 : 0, static_cast<size_t>(count));
    finishEditing();
}

int SoMFBit::countSet() const {
    const uint8_t* v = getValues(0);
    return static_cast<int>(std::count_if(v, v + getNum(), [](uint8_t b) { return b != 0; }));
}
