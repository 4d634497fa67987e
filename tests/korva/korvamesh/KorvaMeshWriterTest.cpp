#include "korva/korvamesh/KorvaMeshWriter.h"

#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"
#include "support/FileSizeLimit.h"

namespace {

int filesIn(const std::string& dir) {
    int n = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        (void)entry;
        ++n;
    }
    return n;
}

bool startsWithError(const KxMessageCapture& capture, const std::string& start) {
    return capture.lines().size() == 1 && capture.lines()[0].compare(0, start.size(), start) == 0;
}

}  // namespace

TEST(KorvaMeshWriterTest, FailedWriteLeavesTheOldFileAndNoTemporary) {
    TempDir dir;
    std::string path = dir.path("keep.kxm");
    writeFileBytes(path, "the old contents");

    KorvaMesh mesh;
    std::vector<float> big(1 << 20, 1.5f);
    mesh.createData("big", mesh.createLocation("L", 1 << 18), PrimType::FLOAT32, 4, big.data());
    for (int ascii = 0; ascii < 2; ++ascii) {
        SCOPED_TRACE(ascii);
        KxMessageCapture capture;
        int result;
        {
            FileSizeLimit limit(100000);
            result = mesh.write(path.c_str(), ascii);
        }
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(startsWithError(capture, "Error: cannot write KorvaMesh file \"" + path + "\": "))
            << capture.text();
        EXPECT_EQ(readFileBytes(path), "the old contents");
        EXPECT_EQ(filesIn(dir.path()), 1);
    }
}

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
    EXPECT_EQ(filesIn(dir.path()), 2);
}

TEST(KorvaMeshWriterTest, ReplacingAFileKeepsItsPermissionsAndRefusesReadOnlyFiles) {
    const mode_t modes[] = {0640, 0600, 0444, 0400};
    for (mode_t mode : modes) {
        SCOPED_TRACE(mode);
        TempDir dir;
        std::string path = dir.path("mode.kxm");
        writeFileBytes(path, "old");
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        KorvaMeshSample sample;
        KxMessageCapture capture;
        bool readOnly = (mode & 0200) == 0;
        EXPECT_EQ(sample.mesh.write(path.c_str(), 0), readOnly ? 0 : 1);
        EXPECT_EQ(capture.numErrors(), readOnly ? 1 : 0) << capture.text();
        EXPECT_EQ(readFileBytes(path) == "old", readOnly);
        struct stat st;
        ASSERT_EQ(stat(path.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, mode);
        EXPECT_EQ(filesIn(dir.path()), 1);
    }
}
