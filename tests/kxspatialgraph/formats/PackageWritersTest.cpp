#include <sys/stat.h>

#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"
#include "support/FileSizeLimit.h"
#include "support/PackageFormatsTest.h"

namespace {

// Every writer of the package, saving over an existing file.
const char* const kWriters[] = {"KorvaMesh", "KorvaMeshASCII",   "KorvaMeshCompressed",
                                "SWC",       "NeurolucidaASCII", "HOC"};

const char* const kNeuron = R"(create soma, dend[2]
connect dend[0](0), soma(1)
connect dend[1](0), soma(1)
soma { pt3dclear() pt3dadd(0, 0, 0, 8) pt3dadd(0, 10, 0, 6) }
dend[0] { pt3dadd(0, 10, 0, 2) pt3dadd(-5, 15, 0, 1.5) }
dend[1] { pt3dadd(0, 10, 0, 2) pt3dadd(5, 15, 1, 1.5) }
)";

mode_t modeOf(const std::string& path) {
    struct stat st = {};
    stat(path.c_str(), &st);
    return st.st_mode & 07777;
}

}  // namespace

class PackageWritersTest : public PackageFormatsTest {
protected:
    KxSpatialGraph* neuron() {
        writeFileBytes(dir_.path("neuron.hoc"), kNeuron);
        return load(dir_.path("neuron.hoc"));
    }
};

TEST_F(PackageWritersTest, AFailedSaveLeavesTheOldFileAsItWasAndNothingBeside) {
    KxSpatialGraph* graph = neuron();
    ASSERT_TRUE(graph);
    const std::string loadCmd = graph->getLoadCmd();
    graph->setModified(true);
    for (const char* name : kWriters) {
        SCOPED_TRACE(name);
        const std::string target = dir_.path("old");
        writeFileBytes(target, "the old contents");
        KxMessageCapture capture;
        bool saved;
        {
            FileSizeLimit limit(20);
            saved = theFileFormats->save(*theFileFormats->find(name), graph, target.c_str());
        }
        EXPECT_FALSE(saved);
        ASSERT_EQ(capture.numErrors(), 1) << capture.text();
        EXPECT_NE(capture.text().find("\"" + target + "\""), std::string::npos) << capture.text();
        EXPECT_EQ(readFileBytes(target), "the old contents");
        EXPECT_EQ(dir_.list(), (std::vector<std::string>{"neuron.hoc", "old"}));
        // The graph is still unsaved.
        EXPECT_TRUE(graph->isModified());
        EXPECT_EQ(graph->getLoadCmd(), loadCmd);
    }
}

TEST_F(PackageWritersTest, SavingOverAFileKeepsItsModeAndLeavesReadOnlyFilesAlone) {
    KxSpatialGraph* graph = neuron();
    ASSERT_TRUE(graph);
    for (const char* name : kWriters) {
        SCOPED_TRACE(name);
        const std::string target = dir_.path(std::string("saved-") + name);
        writeFileBytes(target, "old");
        ASSERT_EQ(chmod(target.c_str(), 0640), 0);
        EXPECT_TRUE(theFileFormats->save(*theFileFormats->find(name), graph, target.c_str()));
        EXPECT_EQ(modeOf(target), 0640u);
        EXPECT_NE(readFileBytes(target), "old");

        ASSERT_EQ(chmod(target.c_str(), 0444), 0);
        KxMessageCapture capture;
        EXPECT_FALSE(theFileFormats->save(*theFileFormats->find(name), graph, target.c_str()));
        EXPECT_NE(capture.text().find("read-only"), std::string::npos) << capture.text();
        EXPECT_EQ(modeOf(target), 0444u);
        ASSERT_EQ(chmod(target.c_str(), 0644), 0);
    }
}
