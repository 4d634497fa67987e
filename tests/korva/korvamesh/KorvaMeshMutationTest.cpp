#include <gtest/gtest.h>

#include "fuzz/KorvaMeshMutator.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"

namespace {

// Damaged copies of a real file in each encoding: every one must be either
// accepted silently or refused with exactly one error line, and never crash
// (the sanitizer build runs this too).
TEST(KorvaMeshMutationTest, DamagedFilesNeverCrashTheReader) {
    TempDir dir;
    KorvaMeshSample sample;
    const struct {
        const char* name;
        int ascii, compress;
    } encodings[] = {{"ascii", 1, 0}, {"binary", 0, 0}, {"compressed", 0, 1}};
    KorvaMeshMutator mutator(2024);
    for (const auto& e : encodings) {
        SCOPED_TRACE(e.name);
        std::string path = dir.path("seed.kxm");
        ASSERT_EQ(sample.mesh.write(path.c_str(), e.ascii, e.compress), 1);
        const std::string seed = readFileBytes(path);
        int accepted = 0;
        for (int n = 0; n < 1500; ++n) {
            std::string input = mutator.mutate(seed);
            KxMessageCapture capture;
            std::unique_ptr<KorvaMesh> mesh =
                KorvaMesh::readFromMemory(input.data(), input.size(), "mutated");
            if (mesh) {
                ++accepted;
                ASSERT_TRUE(capture.lines().empty()) << capture.text();
            } else {
                ASSERT_EQ(capture.lines().size(), 1u) << capture.text();
                ASSERT_EQ(capture.numErrors(), 1) << capture.text();
            }
        }
        // Most damage must be noticed.
        EXPECT_LT(accepted, 1000);
    }
}

}  // namespace
