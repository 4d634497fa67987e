#pragma once

#include <string>
#include <vector>

#include "korva/base/Color.h"
#include "korva/base/String.h"

// One named parameter of a bundle: an array of ints, floats or doubles, or a
// string. Numbers are kept as doubles, which hold every int and float exactly;
// the kind says how they were set and how they are written.
class KxParam {
public:
    enum Kind { INT, FLOAT, DOUBLE, STRING };

    KxParam(const char* name, Kind kind) : name_(name), kind_(kind) {}

    const char* getName() const { return name_.c_str(); }
    Kind getKind() const { return kind_; }
    bool isNumeric() const { return kind_ != STRING; }
    int getNumValues() const { return kind_ == STRING ? 1 : static_cast<int>(values_.size()); }

    double getDouble(int i = 0) const { return values_[static_cast<size_t>(i)]; }
    float getFloat(int i = 0) const { return static_cast<float>(values_[static_cast<size_t>(i)]); }
    int getInt(int i = 0) const { return static_cast<int>(values_[static_cast<size_t>(i)]); }
    const char* getString() const { return string_.c_str(); }

    const std::vector<double>& values() const { return values_; }
    std::vector<double>& values() { return values_; }
    void setString(const std::string& s) { string_ = s; }

    bool operator==(const KxParam& o) const {
        return name_ == o.name_ && kind_ == o.kind_ && values_ == o.values_ && string_ == o.string_;
    }

private:
    std::string name_;
    Kind kind_;
    std::vector<double> values_;
    std::string string_;
};

// The host's parameter bundle: a name, typed parameters in insertion order and
// named sub-bundles in order. Sub-bundles are owned; copying is deep. A colour
// is a parameter "color" of three floats, written by setColor and read by
// findColor. Label trees and file metadata are kept in bundles, and the text
// form (toText/fromText) reproduces a bundle exactly, so file formats can
// store bundles as text.
class KxParamBundle {
public:
    // A bundle tree nests at most this many levels (a bundle without parent
    // is level 1). Text and label commands refuse deeper trees, so that the
    // recursive copy, compare, print and destroy cannot exhaust the stack.
    static constexpr int kMaxDepth = 100;

    explicit KxParamBundle(const char* name = "");
    KxParamBundle(const KxParamBundle& other);
    KxParamBundle& operator=(const KxParamBundle& other);
    ~KxParamBundle();

    const char* getName() const { return name_.c_str(); }
    void setName(const char* name) { name_ = name ? name : ""; }
    // The bundle this one is a sub-bundle of, or null.
    KxParamBundle* getParent() const { return parent_; }
    // 1 for a bundle without parent, its parent's level + 1 otherwise.
    int level() const;
    // Levels of the subtree below and including this bundle (1 if it has no sub-bundles).
    int height() const;

    // Parameters. A set-call replaces a parameter of the same name in place
    // (keeping its position) or appends a new one.
    int getNumParams() const { return static_cast<int>(params_.size()); }
    const KxParam* getParam(int i) const { return &params_[static_cast<size_t>(i)]; }
    const KxParam* findParam(const char* name) const;
    bool hasParam(const char* name) const { return findParam(name) != nullptr; }
    bool removeParam(const char* name);

    void setInt(const char* name, int value) { setInts(name, &value, 1); }
    void setInts(const char* name, const int* values, int n);
    void setFloat(const char* name, float value) { setFloats(name, &value, 1); }
    void setFloats(const char* name, const float* values, int n);
    void setDouble(const char* name, double value) { setDoubles(name, &value, 1); }
    void setDoubles(const char* name, const double* values, int n);
    void setString(const char* name, const char* value);

    // Lookups answer false and leave the output alone when the parameter is
    // missing or of the wrong kind. Numeric lookups accept any numeric kind;
    // the array lookups need exactly n values.
    bool findInt(const char* name, int& value) const;
    bool findFloat(const char* name, float& value) const;
    bool findDouble(const char* name, double& value) const;
    bool findString(const char* name, String& value) const;
    bool findInts(const char* name, int n, int* values) const;
    bool findReals(const char* name, int n, float* values) const;
    bool findReals(const char* name, int n, double* values) const;

    void setColor(const Color& color) { setFloats("color", color.data(), 3); }
    bool findColor(Color& color) const { return findReals("color", 3, color.data()); }
    bool hasColor() const { return findParam("color") != nullptr; }

    // Sub-bundles.
    int getNumBundles() const { return static_cast<int>(bundles_.size()); }
    KxParamBundle* getBundle(int i) const { return bundles_[static_cast<size_t>(i)]; }
    // The first sub-bundle of that name, or null.
    KxParamBundle* getBundle(const char* name) const;
    int indexOfBundle(const KxParamBundle* bundle) const;
    int indexOfBundle(const char* name) const;
    // Creates an empty sub-bundle and appends it.
    KxParamBundle* addBundle(const char* name);
    // Takes ownership of bundle and inserts it before index (-1 appends).
    void insertBundle(KxParamBundle* bundle, int index = -1);
    // Removes the sub-bundle from the list without deleting it; the caller owns it.
    KxParamBundle* takeBundle(int index);
    // Removes and deletes; false if it is not a sub-bundle here.
    bool removeBundle(KxParamBundle* bundle);
    bool removeBundle(const char* name);
    // Moves the sub-bundle at index from to index to, shifting those between.
    bool moveBundle(int from, int to);

    // Empties parameters and sub-bundles; the name stays.
    void clear();
    // Replaces parameters and sub-bundles with deep copies of other's; the name stays.
    void copyContentsFrom(const KxParamBundle& other);
    KxParamBundle* duplicate() const { return new KxParamBundle(*this); }

    // Deep equality: name, parameters and sub-bundles in order.
    bool operator==(const KxParamBundle& other) const;
    bool operator!=(const KxParamBundle& other) const { return !(*this == other); }

    // Text form of the contents (not the bundle's own name): one parameter per
    // line as `"name" kind values...`, sub-bundles as `"name" { ... }`.
    std::string toText(int indent = 0) const;
    // Replaces the contents with those parsed from text; on malformed text, or
    // sub-bundles that would nest deeper than kMaxDepth counted from this
    // bundle's level, answers false with a description in error and leaves
    // the bundle alone.
    bool fromText(const char* text, size_t length, std::string& error);

private:
    KxParam& paramForSet(const char* name, KxParam::Kind kind);
    void writeText(std::string& out, int indent) const;

    std::string name_;
    std::vector<KxParam> params_;
    std::vector<KxParamBundle*> bundles_;
    KxParamBundle* parent_ = nullptr;
};
