#include "korva/korvamesh/KorvaMesh.h"

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

TEST(KorvaMeshTest, RoundTripsEveryTypeInEveryEncoding) {
    TempDir dir;
    KorvaMeshSample sample;
    for (const Encoding& e : kEncodings) {
        SCOPED_TRACE(e.name);
        KxMessageCapture capture;
        std::string path = dir.path(std::string("sample_") + e.name + ".kxm");
        ASSERT_EQ(sample.mesh.write(path.c_str(), e.ascii, e.compress), 1) << capture.text();

        std::unique_ptr<KorvaMesh> fromFile = KorvaMesh::read(path.c_str());
        ASSERT_TRUE(fromFile) << capture.text();
        EXPECT_EQ(describeMeshDifference(sample.mesh, *fromFile), "");
        EXPECT_TRUE(capture.lines().empty()) << capture.text();

        // A mesh that was read writes back to the same bytes.
        std::string again = dir.path(std::string("again_") + e.name + ".kxm");
        ASSERT_EQ(fromFile->write(again.c_str(), e.ascii, e.compress), 1);
        EXPECT_EQ(readFileBytes(again), readFileBytes(path));
    }
}

TEST(KorvaMeshTest, CompressesOnlyWhereItHelps) {
    TempDir dir;
    KorvaMeshSample sample;
    std::string path = dir.path("c.kxm");
    ASSERT_EQ(sample.mesh.write(path.c_str(), 0, 1), 1);
    std::string header = readFileBytes(path);
    header.resize(header.find("\nend\n"));
    // The ramp compresses; eight random-looking bytes would only grow.
    EXPECT_NE(header.find("array \"Ramp\" \"LONG\" int32 1 zlib "), std::string::npos) << header;
    EXPECT_NE(header.find("array \"UInt8\" \"POINTS\" uint8 1 raw 5\n"), std::string::npos) << header;

    // Compression can also be asked for per array.
    std::string plain = dir.path("p.kxm");
    sample.mesh.getData(sample.mesh.getNumData() - 1)->setCompressed(true);
    ASSERT_EQ(sample.mesh.write(plain.c_str(), 0), 1);
    EXPECT_LT(readFileBytes(plain).size(), 2000u);
    std::unique_ptr<KorvaMesh> back = KorvaMesh::read(plain.c_str());
    ASSERT_TRUE(back);
    EXPECT_EQ(describeMeshDifference(sample.mesh, *back), "");
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

    std::string path = dir.path("layout.kxm");
    ASSERT_EQ(mesh.write(path.c_str(), 1), 1);
    EXPECT_EQ(readFileBytes(path),
              "KorvaMesh 1 ascii\n"
              "# Format description: docs/korvamesh.md\n"
              "parameters {\n"
              "  \"ContentType\" string \"Example\"\n"
              "}\n"
              "location \"NODES\" 2\n"
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
    std::string binary = readFileBytes(path);
    std::string header =
        "KorvaMesh 1 binary-le\n"
        "# Format description: docs/korvamesh.md\n"
        "parameters {\n"
        "  \"ContentType\" string \"Example\"\n"
        "}\n"
        "location \"NODES\" 2\n"
        "array \"Coordinates\" \"NODES\" float 3 raw 24\n"
        "array \"Id\" \"NODES\" int32 1 raw 8\n"
        "end\n";
    ASSERT_EQ(binary.compare(0, header.size(), header), 0) << binary.substr(0, header.size());
    // Each block starts at a multiple of 8; the 24 coordinate bytes need no padding after them.
    size_t first = (header.size() + 7) / 8 * 8;
    ASSERT_EQ(binary.size(), first + 24 + 8);
    EXPECT_EQ(binary.substr(header.size(), first - header.size()), std::string(first - header.size(), '\0'));
    // The file's bytes are the point here, floats included.
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
    EXPECT_EQ(std::memcmp(binary.data() + first, xyz, 24), 0);
    EXPECT_EQ(std::memcmp(binary.data() + first + 24, ids, 8), 0);
}

TEST(KorvaMeshTest, AsciiIgnoresTheLocale) {
    TempDir dir;
    KorvaMeshSample sample;
    std::string path = dir.path("locale.kxm");
    bool written = false;
    std::unique_ptr<KorvaMesh> back;
    {
        DecimalCommaLocale locale;
        if (!locale.active()) {
            GTEST_SKIP() << "no locale with a decimal comma is installed";
        }
        written = sample.mesh.write(path.c_str(), 1) == 1;
        back = KorvaMesh::read(path.c_str());
    }
    ASSERT_TRUE(written);
    ASSERT_TRUE(back);
    EXPECT_EQ(describeMeshDifference(sample.mesh, *back), "");
    // The matrix entry -3.5 is written with a decimal point, not a comma.
    EXPECT_NE(readFileBytes(path).find(" -3.5 "), std::string::npos);
    EXPECT_EQ(readFileBytes(path).find(" -3,5 "), std::string::npos);
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
