#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "korva/korvamesh/KorvaMesh.h"
#include "support/TempDir.h"

// A mesh that exercises the format: every value type, several component
// counts, an empty location, awkward names, special float values (NaN of
// either sign included) and nested parameters. The values live in the
// object, which must outlive the mesh's writes.
class KorvaMeshSample {
public:
    KorvaMeshSample() {
        KxParamBundle& p = mesh.getParameters();
        p.setString("ContentType", "Test \"quoted\"\nsecond line");
        float matrix[16] = {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.1f, 1e-7f, -3.5f, 1};
        p.setFloats("TransformationMatrix", matrix, 16);
        KxParamBundle* labels = p.addBundle("Labels with space");
        labels->setColor(Color(0.25f, 0.5f, 1.0f / 3.0f));
        labels->setInt("Id", 0);
        labels->addBundle("Child")->setInt("Id", 7);

        KorvaMesh::Location* points = mesh.createLocation("POINTS", 5);
        KorvaMesh::Location* empty = mesh.createLocation("EMPTY", 0);
        mesh.createLocation("weird \"name\"\t#", 2);
        const KorvaMesh::Location* weird = mesh.findLocation("weird \"name\"\t#");
        for (int i = 0; i < 15; ++i) {
            coords[i] = i * 0.1f - 0.7f;
        }
        coords[3] = std::numeric_limits<float>::infinity();
        coords[4] = -std::numeric_limits<float>::infinity();
        coords[5] = -0.0f;
        coords[6] = std::numeric_limits<float>::denorm_min();
        coords[7] = std::numeric_limits<float>::max();
        coords[8] = std::numeric_limits<float>::quiet_NaN();
        mesh.createData("Coordinates", points, PrimType::FLOAT32, 3, coords);
        mesh.createData("Doubles", points, PrimType::FLOAT64, 1, doubles);
        mesh.createData("Int8", points, PrimType::INT8, 1, int8s);
        mesh.createData("UInt8", points, PrimType::UINT8, 1, uint8s);
        mesh.createData("Int16", points, PrimType::INT16, 2, int16s);
        mesh.createData("UInt16", points, PrimType::UINT16, 1, uint16s);
        mesh.createData("Int32", points, PrimType::INT32, 1, int32s);
        mesh.createData("UInt32", points, PrimType::UINT32, 1, uint32s);
        mesh.createData("Int64", points, PrimType::INT64, 1, int64s);
        mesh.createData("UInt64", points, PrimType::UINT64, 1, uint64s);
        mesh.createData("Nothing", empty, PrimType::FLOAT32, 4, nullptr);
        mesh.createData("a \"quoted\" name\nwith newline", weird, PrimType::INT32, 2, pairs);
        // Compressible: long enough for zlib to gain.
        mesh.createLocation("LONG", 1000);
        for (int i = 0; i < 1000; ++i) {
            ramp[i] = i / 8;
        }
        mesh.createData("Ramp", mesh.findLocation("LONG"), PrimType::INT32, 1, ramp);
    }

    KorvaMesh mesh;
    float coords[15];
    double doubles[5] = {0.1, -1e300, 5e-324, -std::numeric_limits<double>::quiet_NaN(), 123456789.123456789};
    int8_t int8s[5] = {-128, 127, 0, -1, 1};
    uint8_t uint8s[5] = {0, 255, 1, 2, 3};
    int16_t int16s[10] = {-32768, 32767, 0, 1, -1, 2, -2, 3, -3, 4};
    uint16_t uint16s[5] = {0, 65535, 1, 2, 3};
    int32_t int32s[5] = {INT32_MIN, INT32_MAX, 0, -1, 1};
    uint32_t uint32s[5] = {0, UINT32_MAX, 1, 2, 3};
    int64_t int64s[5] = {INT64_MIN, INT64_MAX, 0, -1, 1};
    uint64_t uint64s[5] = {0, UINT64_MAX, 1, 2, 3};
    int32_t pairs[4] = {1, 2, 3, 4};
    int32_t ramp[1000];
};

// Empty when the meshes hold the same locations, arrays (names, types,
// components, bytes) and parameters; else a description of the first difference.
inline std::string describeMeshDifference(const KorvaMesh& a, const KorvaMesh& b) {
    if (a.getNumLocations() != b.getNumLocations()) {
        return "number of locations differs";
    }
    for (int i = 0; i < a.getNumLocations(); ++i) {
        const KorvaMesh::Location* la = a.getLocation(i);
        const KorvaMesh::Location* lb = b.getLocation(i);
        if (std::string(la->getName()) != lb->getName() || la->getSize() != lb->getSize()) {
            return "location " + std::to_string(i) + " differs: " + la->getName() + " vs " + lb->getName();
        }
    }
    if (a.getNumData() != b.getNumData()) {
        return "number of arrays differs";
    }
    for (int i = 0; i < a.getNumData(); ++i) {
        const KorvaMesh::Data* da = a.getData(i);
        const KorvaMesh::Data* db = b.getData(i);
        if (std::string(da->getName()) != db->getName() ||
            std::string(da->getLocationName()) != db->getLocationName() ||
            da->getPrimType() != db->getPrimType() || da->getNumComponents() != db->getNumComponents()) {
            return std::string("array ") + da->getName() + " differs in its description";
        }
        if (da->getNumBytes() > 0 && std::memcmp(da->getValues(), db->getValues(), da->getNumBytes()) != 0) {
            return std::string("values of array ") + da->getName() + " differ";
        }
    }
    if (a.getParameters() != b.getParameters()) {
        return "parameters differ:\n" + a.getParameters().toText() + "---\n" + b.getParameters().toText();
    }
    return "";
}
