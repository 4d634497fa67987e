#pragma once

#include <vector>

#include <Inventor/SbColor.h>

#include "korva/core/KxData.h"

// A colormap: RGBA entries (256 by default) spread evenly over a data range
// [min, max]. Values between entries are interpolated linearly; values
// outside the range take the end entries. Saved and loaded as KorvaMesh
// files with the content type "KxColormap" (format "Colormap", .kxm/.col).
// The pool object labelled defaultLabel, when there is one, is the colormap
// that colormap ports connect to when they are made. Console: setMinMax
// MIN MAX, getMinMax, getColor VALUE.
class KxColormap : public KxData {
public:
    static constexpr int kDefaultNumEntries = 256;
    static const char* const defaultLabel;

    // A grey ramp of 256 entries from black to white over [0, 1].
    KxColormap();
    // n entries of 4 floats each (red, green, blue, alpha in 0..1).
    KxColormap(int n, const float* rgba, float minCoord, float maxCoord);
    // Copies entries and range (not the label or pool membership).
    KxColormap(const KxColormap& other);
    KxColormap& operator=(const KxColormap& other);

    const char* getTypeName() const override { return "KxColormap"; }
    bool isOfType(const char* typeName) const override;

    int getNumEntries() const { return static_cast<int>(rgba_.size() / 4); }
    const float* getEntry(int i) const { return &rgba_[4 * static_cast<size_t>(i)]; }
    void setEntry(int i, const SbColor& color, float alpha = 1.0f);
    // Resizes to n entries (at least 1); new entries are black and opaque.
    void resize(int n);

    float getMinCoord() const { return min_; }
    float getMaxCoord() const { return max_; }
    void setMinMax(float minCoord, float maxCoord);

    // Colour at fraction t of the entries (0: first entry, 1: last), clamped.
    SbColor getColorAtFraction(float t) const;
    // Colour at data value v over [min, max]; a range of 0 gives the first entry.
    SbColor getColor(float v) const { return getColor(v, min_, max_); }
    // Colour at data value v over another range.
    SbColor getColor(float v, float minCoord, float maxCoord) const;

    // The colormap labelled defaultLabel in the session's pool, or null.
    static KxColormap* findDefault();

    // Writes a KorvaMesh file, which then is the object's source (its load
    // command); 1, or 0 after an "Error: " line.
    int saveKorvaMesh(const char* filename);
    // Reads a KorvaMesh colormap file into the pool under the file's name; 1, or 0 after an "Error: " line.
    static int readKorvaMesh(const char* filename);

    KxData* duplicate() const override { return new KxColormap(*this); }
    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    // Registers the class and its KorvaMesh file format with the host.
    static void registerClass();

private:
    std::vector<float> rgba_;
    float min_ = 0.0f;
    float max_ = 1.0f;
};
