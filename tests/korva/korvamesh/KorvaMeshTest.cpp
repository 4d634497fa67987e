#include "korva/korvamesh/KorvaMesh.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"
#include "support/DecimalCommaLocale.h"

namespace {

struct Encoding {
    const char* name;
    int ascii;
    int compress;
};
const Encoding kEncodings[] = {{"ascii", 1, 0}, {"binary", 0, 0}, {"compressed", 0, 1}};

// Under a decimal-comma locale where one is installed: numbers are written
// and read the same in every locale.
TEST(KorvaMeshTest, RoundTripsEveryTypeInEveryEncoding) {
    TempDir dir;
    KorvaMeshSample sample;
    DecimalCommaLocale locale;
    for (const Encoding& e : kEncodings) {
        SCOPED_TRACE(e.name);
        KxMessageCapture capture;
        std::string path = dir.path(std::string("sample_") + e.name + ".kxm");
        ASSERT_EQ(sample.mesh.write(path.c_str(), e.ascii, e.compress), 1) << capture.text();

        std::unique_ptr<KorvaMesh> fromFile = KorvaMesh::read(path.c_str());
        ASSERT_TRUE(fromFile) << capture.text();
        EXPECT_EQ(describeMeshDifference(sample.mesh, *fromFile), "");
        EXPECT_TRUE(capture.lines().empty()) << capture.text();
        for (int i = 0; i < fromFile->getNumData(); ++i) {
            const KorvaMesh::Data* d = fromFile->getData(i);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(d->getValues()) % d->getPrimType().getSize(), 0u)
                << "arrays lie aligned for their type: " << d->getName();
        }

        // A mesh that was read writes back to the same bytes; arrays read
        // compressed are written compressed again without being asked.
        std::string again = dir.path(std::string("again_") + e.name + ".kxm");
        ASSERT_EQ(fromFile->write(again.c_str(), e.ascii), 1);
        const std::string bytes = readFileBytes(path);
        EXPECT_EQ(readFileBytes(again), bytes);
        // The matrix entry -3.5 is written with a decimal point, not a comma.
        EXPECT_EQ(bytes.find(" -3,5 "), std::string::npos);
        EXPECT_NE(bytes.find(" -3.5 "), std::string::npos);
        // The ramp compresses; five random-looking bytes would only grow.
        EXPECT_EQ(bytes.find("array \"Ramp\" \"LONG\" int32 1 zlib ") != std::string::npos, e.compress == 1);
        EXPECT_EQ(bytes.find("uint8 1 zlib"), std::string::npos);
    }
}

TEST(KorvaMeshTest, WritesTheDocumentedLayout) {
    TempDir dir;
    KorvaMesh mesh;
    mesh.getParameters().setString("ContentType", "Example");
    const KorvaMesh::Location* nodes = mesh.createLocation("NODES", 2);
    float xyz[6] = {0, 0, 0, 1.5f, -2, 1e-3f};
    int ids[2] = {7, -1};
    mesh.createData("Coordinates", nodes, PrimType::FLOAT32, 3, xyz);
    mesh.createData("Id", nodes, PrimType::INT32, 1, ids);

    const std::string start =
        "# Format description: docs/korvamesh.md\n"
        "parameters {\n"
        "  \"ContentType\" string \"Example\"\n"
        "}\n"
        "location \"NODES\" 2\n";
    std::string path = dir.path("layout.kxm");
    ASSERT_EQ(mesh.write(path.c_str(), 1), 1);
    EXPECT_EQ(readFileBytes(path), "KorvaMesh 1 ascii\n" + start +
                                       "array \"Coordinates\" \"NODES\" float 3\n"
                                       "array \"Id\" \"NODES\" int32 1\n"
                                       "end\n"
                                       "@1\n"
                                       "0 0 0\n"
                                       "1.5 -2 0.001\n"
                                       "@2\n"
                                       "7\n"
                                       "-1\n");

    ASSERT_EQ(mesh.write(path.c_str(), 0), 1);
    std::string expected = "KorvaMesh 1 binary-le\n" + start +
                           "array \"Coordinates\" \"NODES\" float 3 raw 24\n"
                           "array \"Id\" \"NODES\" int32 1 raw 8\n"
                           "end\n";
    // Each block starts at a multiple of 8; the 24 coordinate bytes need no padding after them.
    expected.resize((expected.size() + 7) / 8 * 8, '\0');
    expected.append(reinterpret_cast<const char*>(xyz), 24).append(reinterpret_cast<const char*>(ids), 8);
    EXPECT_EQ(readFileBytes(path), expected);
}

TEST(KorvaMeshTest, RefusesInvalidLocationsAndArrays) {
    KorvaMesh mesh;
    KorvaMesh other;
    const KorvaMesh::Location* l = mesh.createLocation("L", 3);
    const KorvaMesh::Location* foreign = other.createLocation("L", 3);
    int values[3] = {};
    ASSERT_TRUE(mesh.createData("a", l, PrimType::INT32, 1, values));

    KxMessageCapture capture;
    EXPECT_FALSE(mesh.createLocation("L", 1));
    EXPECT_FALSE(mesh.createLocation("M", -1));
    EXPECT_FALSE(mesh.createLocation("N", KorvaMesh::kMaxLocationSize + 1));
    EXPECT_FALSE(mesh.createData("a", l, PrimType::INT32, 1, values));
    EXPECT_FALSE(mesh.createData("b", foreign, PrimType::INT32, 1, values));
    EXPECT_FALSE(mesh.createData("c", l, PrimType::INT32, 0, values));
    EXPECT_FALSE(mesh.createData("d", l, PrimType::INT32, KorvaMesh::kMaxComponents + 1, values));
    EXPECT_EQ(capture.numErrors(), 7) << capture.text();
    EXPECT_EQ(mesh.getNumLocations(), 1);
    EXPECT_EQ(mesh.getNumData(), 1);
    // The same name in another location is a different array.
    const KorvaMesh::Location* m = mesh.createLocation("M", 3);
    EXPECT_TRUE(mesh.createData("a", m, PrimType::INT32, 1, values));
}

TEST(KorvaMeshTest, ProbesTheContentTypeFromTheFileStart) {
    KorvaMesh mesh;
    KxParamBundle& p = mesh.getParameters();
    p.setString("Note", "ContentType");
    p.setFloats("Numbers", std::vector<float>(3, 1.5f).data(), 3);
    p.setString("ContentType", "KxSpatialGraph");
    // A large label tree after it, so that the start of the file ends inside it.
    KxParamBundle* labels = p.addBundle("Labels");
    for (int i = 0; i < 500; ++i) {
        labels->addBundle(("Label" + std::to_string(i)).c_str())->setInt("Id", i);
    }
    TempDir dir;
    std::string path = dir.path("probe.kxm");
    ASSERT_EQ(mesh.write(path.c_str(), 0), 1);
    std::string header = readFileBytes(path).substr(0, 4096);
    ASSERT_EQ(header.find("\nend\n"), std::string::npos);
    std::string type;
    EXPECT_TRUE(KorvaMesh::probeContentType(header.data(), static_cast<int>(header.size()), type));
    EXPECT_EQ(type, "KxSpatialGraph");

    const char* without[] = {
        ("KorvaMesh 1 ascii\nparameters {\n\"Note\" string \"ContentType\"\n\"Sub\" {\n\"ContentType\" "
         "string \"X\"\n}\n}\nend\n"),
        "KorvaMesh 1 ascii\nlocation \"L\" 1\nend\n",
        "PLY ContentType",
    };
    for (const char* text : without) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(KorvaMesh::probeContentType(text, static_cast<int>(std::strlen(text)), type));
    }
}

}  // namespace
