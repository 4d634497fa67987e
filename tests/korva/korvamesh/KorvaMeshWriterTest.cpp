#include "korva/korvamesh/KorvaMeshWriter.h"

#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"

TEST(KorvaMeshWriterTest, ReportsWhatCannotBeWritten) {
    TempDir dir;
    KorvaMesh mesh;
    mesh.createData("none", mesh.createLocation("L", 3), PrimType::INT32, 1, nullptr);
    std::string path = dir.path("x.kxm");
    writeFileBytes(path, "old");
    std::filesystem::create_directory(dir.path("isadir.kxm"));

    struct Case {
        const char* what;
        std::string path;
        const char* problem;
    } cases[] = {
        {"missing values", path, "array \"none\" has no values"},
        {"missing directory", dir.path("nodir/x.kxm"), "cannot create a temporary file"},
        {"target is a directory", dir.path("isadir.kxm"), "Is a directory"},
    };
    int values[3] = {1, 2, 3};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        KorvaMesh good;
        good.createData("v", good.createLocation("L", 3), PrimType::INT32, 1, values);
        const KorvaMesh& written = std::string(c.what) == "missing values" ? mesh : good;
        KxMessageCapture capture;
        EXPECT_EQ(written.write(c.path.c_str(), 0), 0);
        ASSERT_EQ(capture.numErrors(), 1) << capture.text();
        EXPECT_NE(capture.lines()[0].find(c.problem), std::string::npos) << capture.text();
    }
    EXPECT_EQ(readFileBytes(path), "old");
    EXPECT_EQ(dir.list(), (std::vector<std::string>{"isadir.kxm", "x.kxm"}));
}
