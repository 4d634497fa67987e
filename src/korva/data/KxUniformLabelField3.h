#pragma once

#include <vector>

#include <Inventor/SbColor.h>

#include "korva/base/Vec3f.h"
#include "korva/core/KxSpatialData.h"

// A 3-D label image on a uniform lattice: nx x ny x nz voxels of label
// values 0..255 (x fastest), voxel centres spread evenly over the bounding
// box (first centre at the minimum, last at the maximum), placed in space by
// the transformation of KxSpatialData. The parameter bundle "Materials" holds
// one sub-bundle per label value, in order, with its name and a "Color".
// KorvaMesh content "KxUniformLabelField3" (format "LabelField", .kxm).
// Console: setDimensions NX NY NZ, setBoundingBox XMIN XMAX YMIN YMAX ZMIN
// ZMAX, setVoxel I J K VALUE, getVoxel I J K, addMaterial NAME R G B.
class KxUniformLabelField3 : public KxSpatialData {
public:
    KxUniformLabelField3() = default;
    // Copies lattice, labels, transformation and parameters (not the label).
    KxUniformLabelField3(const KxUniformLabelField3& other);
    KxUniformLabelField3& operator=(const KxUniformLabelField3&) = delete;

    const char* getTypeName() const override { return "KxUniformLabelField3"; }
    bool isOfType(const char* typeName) const override;

    // Resizes the lattice; every voxel becomes 0.
    void setDimensions(int nx, int ny, int nz);
    const int* getDimensions() const { return dims_; }
    // xmin, xmax, ymin, ymax, zmin, zmax.
    void setBoundingBox(const float* box);
    const float* getBoundingBoxValues() const { return box_; }
    void getBoundingBox(Box3f& box) const override;

    int getVoxel(int i, int j, int k) const { return labels_[index(i, j, k)]; }
    void setVoxel(int i, int j, int k, int value) {
        labels_[index(i, j, k)] = static_cast<unsigned char>(value);
    }
    // Appends a material (a sub-bundle of "Materials" with "Color").
    void addMaterial(const char* name, const SbColor& color);
    // The "Materials" bundle, or null.
    const KxParamBundle* getMaterials() const { return parameters().getBundle("Materials"); }

    // Nearest-neighbour lookup at p, in the field's own (untransformed)
    // coordinates: false when p lies outside the lattice (beyond half a
    // voxel from its outer centres), else true with the voxel's label.
    bool findLabel(const Vec3f& p, int& label) const;

    // Writes a KorvaMesh file, which then is the object's source (its load
    // command); 1, or 0 after an "Error: " line.
    int saveKorvaMesh(const char* filename);
    // Reads a KorvaMesh label-field file into the pool under the file's name; 1, or 0 after an "Error: "
    // line.
    static int readKorvaMesh(const char* filename);

    KxData* duplicate() const override { return new KxUniformLabelField3(*this); }
    void info(KxInfoTags& tags) const override;
    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    // Registers the class, its console commands and its KorvaMesh file format with the host.
    static void registerClass();

private:
    size_t index(int i, int j, int k) const {
        return static_cast<size_t>(i) +
               static_cast<size_t>(dims_[0]) *
                   (static_cast<size_t>(j) + static_cast<size_t>(dims_[1]) * static_cast<size_t>(k));
    }
    bool readIndices(Tcl_Interp* interp, char** argv, int* ijk) const;

    int dims_[3] = {0, 0, 0};
    float box_[6] = {0, 1, 0, 1, 0, 1};
    std::vector<unsigned char> labels_;
};
