#include "korva/data/KxLineSet.h"

#include <cstring>
#include <memory>
#include <string>

#include "korva/core/KxClassRegistry.h"
#include "korva/data/KxKorvaMeshContent.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"

bool KxLineSet::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxLineSet") == 0 || KxSpatialData::isOfType(typeName);
}

int KxLineSet::addPoints(const Vec3f* points, int n) {
    int first = getNumPoints();
    points_.insert(points_.end(), points, points + n);
    for (std::vector<float>& column : data_) {
        column.resize(points_.size(), 0.0f);
    }
    return first;
}

void KxLineSet::setNumDataColumns(int n) {
    data_.resize(static_cast<size_t>(std::max(n, 0)), std::vector<float>(points_.size(), 0.0f));
}

int KxLineSet::addLine(const int* indices, int n) {
    lines_.emplace_back(indices, indices + n);
    return getNumLines() - 1;
}

bool KxLineSet::isValid() const {
    for (int l = 0; l < getNumLines(); ++l) {
        for (int k = 0; k < getLineLength(l); ++k) {
            int i = getLineIndex(l, k);
            if (i < 0 || i >= getNumPoints()) {
                theMsg->printf("Error: Line %d of %s refers to point %d; the line set has %d points.", l,
                               getLabel(), i, getNumPoints());
                return false;
            }
        }
    }
    return true;
}

void KxLineSet::getBoundingBox(Box3f& box) const {
    box.makeEmpty();
    for (const Vec3f& p : points_) {
        box.extendBy(p);
    }
}

int KxLineSet::saveKorvaMesh(const char* filename) {
    KorvaMesh mesh;
    mesh.getParameters().setString("ContentType", "KxLineSet");
    std::vector<int> sizes;
    std::vector<int> indices;
    for (const std::vector<int>& line : lines_) {
        sizes.push_back(static_cast<int>(line.size()));
        indices.insert(indices.end(), line.begin(), line.end());
    }
    const KorvaMesh::Location* points = mesh.createLocation("Points", getNumPoints());
    const KorvaMesh::Location* lines = mesh.createLocation("Lines", getNumLines());
    const KorvaMesh::Location* lineIndices =
        mesh.createLocation("LineIndices", static_cast<int64_t>(indices.size()));
    mesh.createData("Coordinates", points, PrimType::FLOAT32, 3, points_.data());
    for (int c = 0; c < getNumDataColumns(); ++c) {
        mesh.createData(("Data" + std::to_string(c)).c_str(), points, PrimType::FLOAT32, 1,
                        data_[static_cast<size_t>(c)].data());
    }
    mesh.createData("LineSizes", lines, PrimType::INT32, 1, sizes.data());
    mesh.createData("Indices", lineIndices, PrimType::INT32, 1, indices.data());
    if (!mesh.write(filename, 0)) {
        return 0;
    }
    setLoadCmd(filename);
    return 1;
}

int KxLineSet::readKorvaMesh(const char* filename) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(filename);
    if (!mesh) {
        return 0;
    }
    const KorvaMesh::Data* coords = mesh->findData("Points", PrimType::FLOAT32, 3, "Coordinates");
    const KorvaMesh::Data* sizes = mesh->findData("Lines", PrimType::INT32, 1, "LineSizes");
    const KorvaMesh::Data* indices = mesh->findData("LineIndices", PrimType::INT32, 1, "Indices");
    if (!coords || !sizes || !indices) {
        theMsg->printf(
            "Error: Line set file %s needs \"Coordinates\" on \"Points\", \"LineSizes\" on \"Lines\" "
            "and \"Indices\" on \"LineIndices\".",
            filename);
        return 0;
    }
    auto lineSet = std::make_unique<KxLineSet>();
    lineSet->addPoints(static_cast<const Vec3f*>(coords->getValues()),
                       static_cast<int>(coords->getLocation()->getSize()));
    for (int c = 0;; ++c) {
        const KorvaMesh::Data* column =
            mesh->findData("Points", PrimType::FLOAT32, 1, ("Data" + std::to_string(c)).c_str());
        if (!column) {
            break;
        }
        lineSet->setNumDataColumns(c + 1);
        const auto* values = static_cast<const float*>(column->getValues());
        lineSet->data_[static_cast<size_t>(c)].assign(values, values + lineSet->getNumPoints());
    }
    const auto* size = static_cast<const int*>(sizes->getValues());
    const auto* index = static_cast<const int*>(indices->getValues());
    int64_t available = indices->getLocation()->getSize();
    for (int64_t l = 0, at = 0; l < sizes->getLocation()->getSize(); ++l) {
        if (size[l] < 0 || size[l] > available - at) {
            theMsg->printf("Error: Line set file %s: line %lld has %d points, more than \"Indices\" holds.",
                           filename, static_cast<long long>(l), size[l]);
            return 0;
        }
        lineSet->addLine(index + at, size[l]);
        at += size[l];
    }
    lineSet->setLabel(filename);
    if (!lineSet->isValid()) {
        return 0;
    }
    return KxKorvaMeshContent::addLoaded(lineSet.release(), filename);
}

KxLineSet::KxLineSet(const KxLineSet& other)
    : KxSpatialData(), points_(other.points_), data_(other.data_), lines_(other.lines_) {
    setTransform(other.getTransform());
    parameters() = other.parameters();
}

void KxLineSet::info(KxInfoTags& tags) const {
    KxSpatialData::info(tags);
    tags.add("Points:", "%d", getNumPoints());
    tags.add("Lines:", "%d", getNumLines());
    tags.add("Data columns:", "%d", getNumDataColumns());
}

void KxLineSet::registerClass() {
    if (theClassRegistry->isRegistered("KxLineSet")) {
        return;
    }
    theClassRegistry->registerClass("KxLineSet", "korva", []() -> KxObject* { return new KxLineSet; });
    KxKorvaMeshContent::registerFormat<KxLineSet>("LineSet", "KxLineSet", {"kxm"});
}
