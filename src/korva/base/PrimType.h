#pragma once

// Tag of a primitive value type, with its size in bytes and a stable name
// used by file formats ("int32", "float", ...).
class PrimType {
public:
    enum Type { INT8, UINT8, INT16, UINT16, INT32, UINT32, INT64, UINT64, FLOAT32, FLOAT64, NUM_TYPES };

    PrimType(Type type = INT32) : type_(type) {}

    Type getType() const { return type_; }
    operator Type() const { return type_; }
    int getSize() const;
    const char* getName() const;
    bool isInteger() const { return type_ != FLOAT32 && type_ != FLOAT64; }

    // Parses a name written by getName(); false for anything else.
    static bool fromName(const char* name, PrimType& type);

private:
    Type type_;
};
