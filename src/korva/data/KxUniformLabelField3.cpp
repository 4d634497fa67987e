#include "korva/data/KxUniformLabelField3.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <string>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
#include "korva/data/KxKorvaMeshContent.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"

namespace {

// Largest lattice a field accepts: 2^31 voxels keep every index an int-sized offset.
constexpr double kMaxVoxels = 2147483647.0;

}  // namespace

bool KxUniformLabelField3::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxUniformLabelField3") == 0 || KxSpatialData::isOfType(typeName);
}

void KxUniformLabelField3::setDimensions(int nx, int ny, int nz) {
    dims_[0] = nx;
    dims_[1] = ny;
    dims_[2] = nz;
    labels_.assign(static_cast<size_t>(nx) * static_cast<size_t>(ny) * static_cast<size_t>(nz), 0);
}

void KxUniformLabelField3::setBoundingBox(const float* box) {
    std::memcpy(box_, box, sizeof(box_));
}

void KxUniformLabelField3::getBoundingBox(Box3f& box) const {
    box.makeEmpty();
    box.extendBy(Vec3f(box_[0], box_[2], box_[4]));
    box.extendBy(Vec3f(box_[1], box_[3], box_[5]));
}

void KxUniformLabelField3::addMaterial(const char* name, const SbColor& color) {
    KxParamBundle* materials = parameters().getBundle("Materials");
    if (!materials) {
        materials = parameters().addBundle("Materials");
    }
    materials->addBundle(name)->setFloats("Color", color.getValue(), 3);
}

bool KxUniformLabelField3::findLabel(const Vec3f& p, int& label) const {
    const float c[3] = {p.x, p.y, p.z};
    int ijk[3];
    for (int a = 0; a < 3; ++a) {
        if (dims_[a] < 1) {
            return false;
        }
        float lo = box_[2 * a];
        float extent = box_[2 * a + 1] - lo;
        // A single voxel layer is one unit thick when the box gives it no extent.
        float voxel =
            dims_[a] > 1 ? extent / static_cast<float>(dims_[a] - 1) : (extent > 0.0f ? extent : 1.0f);
        float at = voxel > 0.0f ? (c[a] - lo) / voxel : 0.0f;
        if (!(at >= -0.5f && at < static_cast<float>(dims_[a]) - 0.5f)) {  // also NaN
            return false;
        }
        ijk[a] = std::min(static_cast<int>(std::floor(at + 0.5f)), dims_[a] - 1);
    }
    label = getVoxel(ijk[0], ijk[1], ijk[2]);
    return true;
}

int KxUniformLabelField3::saveKorvaMesh(const char* filename) {
    KorvaMesh mesh;
    mesh.getParameters().copyContentsFrom(parameters());
    mesh.getParameters().setString("ContentType", "KxUniformLabelField3");
    mesh.getParameters().setInts("Dimensions", dims_, 3);
    mesh.getParameters().setFloats("BoundingBox", box_, 6);
    if (!isTransformIdentity()) {
        mesh.getParameters().setFloats("TransformationMatrix", getTransform()[0], 16);
    }
    const KorvaMesh::Location* lattice = mesh.createLocation("Lattice", static_cast<int64_t>(labels_.size()));
    mesh.createData("Labels", lattice, PrimType::UINT8, 1, labels_.data());
    if (!mesh.write(filename, 0, 1)) {
        return 0;
    }
    setLoadCmd(filename);
    return 1;
}

int KxUniformLabelField3::readKorvaMesh(const char* filename) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(filename);
    if (!mesh) {
        return 0;
    }
    KxParamBundle& params = mesh->getParameters();
    int dims[3] = {0, 0, 0};
    float box[6];
    const KorvaMesh::Data* labels = mesh->findData("Lattice", PrimType::UINT8, 1, "Labels");
    bool sized = params.findInts("Dimensions", 3, dims) && dims[0] >= 0 && dims[1] >= 0 && dims[2] >= 0 &&
                 static_cast<double>(dims[0]) * dims[1] * dims[2] <= kMaxVoxels;
    if (!sized || !params.findReals("BoundingBox", 6, box) || !labels ||
        labels->getLocation()->getSize() != static_cast<int64_t>(dims[0]) * dims[1] * dims[2]) {
        theMsg->printf(
            "Error: Label field file %s needs \"Dimensions\", \"BoundingBox\" and \"Labels\" (uint8) "
            "with one value per voxel.",
            filename);
        return 0;
    }
    auto field = std::make_unique<KxUniformLabelField3>();
    field->setDimensions(dims[0], dims[1], dims[2]);
    field->setBoundingBox(box);
    std::memcpy(field->labels_.data(), labels->getValues(), field->labels_.size());
    float m[16];
    if (params.findReals("TransformationMatrix", 16, m)) {
        field->setTransform(SbMatrix(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11],
                                     m[12], m[13], m[14], m[15]));
    }
    for (const char* own : {"ContentType", "Dimensions", "BoundingBox", "TransformationMatrix"}) {
        params.removeParam(own);
    }
    field->parameters().copyContentsFrom(params);
    return KxKorvaMeshContent::addLoaded(field.release(), filename);
}

KxUniformLabelField3::KxUniformLabelField3(const KxUniformLabelField3& other)
    : KxSpatialData(), labels_(other.labels_) {
    std::memcpy(dims_, other.dims_, sizeof(dims_));
    std::memcpy(box_, other.box_, sizeof(box_));
    setTransform(other.getTransform());
    parameters() = other.parameters();
}

void KxUniformLabelField3::info(KxInfoTags& tags) const {
    KxSpatialData::info(tags);
    tags.add("Dimensions:", "%d x %d x %d", dims_[0], dims_[1], dims_[2]);
    tags.add("Bounding box:", "%g %g %g %g %g %g", static_cast<double>(box_[0]), static_cast<double>(box_[1]),
             static_cast<double>(box_[2]), static_cast<double>(box_[3]), static_cast<double>(box_[4]),
             static_cast<double>(box_[5]));
    const KxParamBundle* materials = getMaterials();
    tags.add("Materials:", "%d", materials ? materials->getNumBundles() : 0);
}

bool KxUniformLabelField3::readIndices(Tcl_Interp* interp, char** argv, int* ijk) const {
    for (int a = 0; a < 3; ++a) {
        if (Tcl_GetInt(interp, argv[a], &ijk[a]) != TCL_OK) {
            KxCommandReply::failWithTclMessage(interp);
            return false;
        }
        if (ijk[a] < 0 || ijk[a] >= dims_[a]) {
            KxCommandReply::failf(interp, "Error: Voxel index %d is out of range 0..%d.", ijk[a],
                                  dims_[a] - 1);
            return false;
        }
    }
    return true;
}

int KxUniformLabelField3::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    int ijk[3] = {0, 0, 0};
    double values[6] = {0, 0, 0, 0, 0, 0};
    auto readDoubles = [&](int n, int first = 2) {
        for (int k = 0; k < n; ++k) {
            if (Tcl_GetDouble(interp, argv[first + k], &values[k]) != TCL_OK) {
                KxCommandReply::failWithTclMessage(interp);
                return false;
            }
        }
        return true;
    };
    if (std::strcmp(cmd, "setDimensions") == 0) {
        if (argc != 5) {
            return KxCommandReply::usage(interp, "setDimensions nx ny nz");
        }
        if (!readDoubles(3)) {
            return TCL_ERROR;
        }
        if (values[0] < 1 || values[1] < 1 || values[2] < 1 ||
            values[0] * values[1] * values[2] > kMaxVoxels) {
            return KxCommandReply::fail(interp,
                                        "Error: Dimensions must be at least 1 and hold at most 2^31 voxels.");
        }
        setDimensions(static_cast<int>(values[0]), static_cast<int>(values[1]), static_cast<int>(values[2]));
    } else if (std::strcmp(cmd, "setBoundingBox") == 0) {
        if (argc != 8) {
            return KxCommandReply::usage(interp, "setBoundingBox xmin xmax ymin ymax zmin zmax");
        }
        if (!readDoubles(6)) {
            return TCL_ERROR;
        }
        float box[6];
        for (int k = 0; k < 6; ++k) {
            box[k] = static_cast<float>(values[k]);
        }
        setBoundingBox(box);
    } else if (std::strcmp(cmd, "setVoxel") == 0 || std::strcmp(cmd, "getVoxel") == 0) {
        bool set = cmd[0] == 's';
        int value = 0;
        if (argc != (set ? 6 : 5)) {
            return KxCommandReply::usage(interp, set ? "setVoxel i j k value" : "getVoxel i j k");
        }
        if (!readIndices(interp, argv + 2, ijk)) {
            return TCL_ERROR;
        }
        if (!set) {
            Tcl_SetObjResult(interp, Tcl_NewIntObj(getVoxel(ijk[0], ijk[1], ijk[2])));
            return TCL_OK;
        }
        if (Tcl_GetInt(interp, argv[5], &value) != TCL_OK || value < 0 || value > 255) {
            return KxCommandReply::failf(interp, "Error: Labels lie in 0..255, not %s.", argv[5]);
        }
        setVoxel(ijk[0], ijk[1], ijk[2], value);
    } else if (std::strcmp(cmd, "addMaterial") == 0) {
        if (argc != 6) {
            return KxCommandReply::usage(interp, "addMaterial name r g b");
        }
        if (!readDoubles(3, 3)) {
            return TCL_ERROR;
        }
        addMaterial(argv[2], SbColor(static_cast<float>(values[0]), static_cast<float>(values[1]),
                                     static_cast<float>(values[2])));
    } else {
        return KxSpatialData::parse(interp, argc, argv);
    }
    touch(NEW_DATA);
    fire();
    return TCL_OK;
}

void KxUniformLabelField3::registerClass() {
    if (theClassRegistry->isRegistered("KxUniformLabelField3")) {
        return;
    }
    theClassRegistry->registerClass("KxUniformLabelField3", "korva",
                                    []() -> KxObject* { return new KxUniformLabelField3; });
    for (const char* usage : {"setDimensions nx ny nz", "setBoundingBox xmin xmax ymin ymax zmin zmax",
                              "setVoxel i j k value", "getVoxel i j k", "addMaterial name r g b"}) {
        std::string word(usage, std::strcspn(usage, " "));
        theClassRegistry->registerCommand("KxUniformLabelField3", word.c_str(), usage);
    }
    KxKorvaMeshContent::registerFormat<KxUniformLabelField3>("LabelField", "KxUniformLabelField3", {"kxm"});
}
