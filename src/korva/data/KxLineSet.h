#pragma once

#include <string>
#include <vector>

#include "korva/base/Vec3f.h"
#include "korva/core/KxSpatialData.h"

// A set of polylines over shared points: points with any number of float
// data columns (one value per point each), and lines as ordered lists of
// point indices. Lines may share points. Saved and loaded as KorvaMesh files
// with the content type "KxLineSet" (format "LineSet", .kxm). Indices are
// not checked by the accessors; isValid() checks that every line refers to
// existing points.
class KxLineSet : public KxSpatialData {
public:
    KxLineSet() = default;
    // Copies points, data, lines, transformation and parameters (not the label).
    KxLineSet(const KxLineSet& other);
    KxLineSet& operator=(const KxLineSet&) = delete;

    const char* getTypeName() const override { return "KxLineSet"; }
    bool isOfType(const char* typeName) const override;

    int getNumPoints() const { return static_cast<int>(points_.size()); }
    const Vec3f& getPoint(int i) const { return points_[static_cast<size_t>(i)]; }
    // Appends points (their data values are 0); answers the index of the first.
    int addPoints(const Vec3f* points, int n);

    int getNumDataColumns() const { return static_cast<int>(data_.size()); }
    // Keeps the columns that remain; new columns hold 0.
    void setNumDataColumns(int n);
    float getData(int column, int point) const {
        return data_[static_cast<size_t>(column)][static_cast<size_t>(point)];
    }
    void setData(int column, int point, float value) {
        data_[static_cast<size_t>(column)][static_cast<size_t>(point)] = value;
    }

    int getNumLines() const { return static_cast<int>(lines_.size()); }
    int getLineLength(int line) const { return static_cast<int>(lines_[static_cast<size_t>(line)].size()); }
    int getLineIndex(int line, int k) const {
        return lines_[static_cast<size_t>(line)][static_cast<size_t>(k)];
    }
    // Appends a line over the given point indices; answers its index.
    int addLine(const int* indices, int n);

    // False, after an "Error: " line naming the first bad index, when a line
    // refers to a point that does not exist.
    bool isValid() const;
    void getBoundingBox(Box3f& box) const override;

    // Writes a KorvaMesh file, which then is the object's source (its load
    // command); 1, or 0 after an "Error: " line.
    int saveKorvaMesh(const char* filename);
    // Reads a KorvaMesh line-set file into the pool under the file's name; 1, or 0 after an "Error: " line.
    static int readKorvaMesh(const char* filename);

    KxData* duplicate() const override { return new KxLineSet(*this); }
    void info(KxInfoTags& tags) const override;
    // Registers the class and its KorvaMesh file format with the host.
    static void registerClass();

private:
    std::vector<Vec3f> points_;
    std::vector<std::vector<float>> data_;
    std::vector<std::vector<int>> lines_;
};
