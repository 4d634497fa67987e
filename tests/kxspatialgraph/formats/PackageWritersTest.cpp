#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// A failed save (the file size limit) leaves the old file as it was, nothing
// beside it, and the graph unsaved; a save keeps the file's mode; a read-only
// file is left alone.
TEST_F(PackageWritersTest, SavingOverAFileKeepsItsModeOrLeavesItAsItWas) {
    KxSpatialGraph* graph = neuron();
    ASSERT_TRUE(graph);
    const std::string target = dir_.path("old");
    for (const char* name : kWriters) {
        SCOPED_TRACE(name);
        const KxFileFormat& format = *theFileFormats->find(name);
        writeFileBytes(target, "the old contents");
        ASSERT_EQ(chmod(target.c_str(), 0640), 0);
        const std::string loadCmd = graph->getLoadCmd();
        graph->setModified(true);
        KxMessageCapture capture;
        bool saved;
        {
            FileSizeLimit limit(20);
            saved = theFileFormats->save(format, graph, target.c_str());
        }
        EXPECT_FALSE(saved);
        ASSERT_EQ(capture.numErrors(), 1) << capture.text();
        EXPECT_NE(capture.text().find("\"" + target + "\""), std::string::npos) << capture.text();
        EXPECT_EQ(readFileBytes(target), "the old contents");
        EXPECT_EQ(dir_.list(), (std::vector<std::string>{"neuron.hoc", "old"}));
        EXPECT_TRUE(graph->isModified());
        EXPECT_EQ(graph->getLoadCmd(), loadCmd);

        EXPECT_TRUE(theFileFormats->save(format, graph, target.c_str()));
        EXPECT_EQ(modeOf(target), 0640u);
        EXPECT_NE(readFileBytes(target), "the old contents");
        ASSERT_EQ(chmod(target.c_str(), 0444), 0);
        capture.clear();
        EXPECT_FALSE(theFileFormats->save(format, graph, target.c_str()));
        EXPECT_NE(capture.text().find("read-only"), std::string::npos) << capture.text();
        EXPECT_EQ(modeOf(target), 0444u);
        ASSERT_EQ(chmod(target.c_str(), 0644), 0);
    }
    // Through a symbolic link the file it names is replaced (or made); a FIFO is written to.
    const std::string link = dir_.path("link"), fifo = dir_.path("fifo"), dangling = dir_.path("dangling");
    ASSERT_EQ(symlink("old", link.c_str()), 0);
    ASSERT_EQ(symlink("new", dangling.c_str()), 0);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0644), 0);
    int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    const KxFileFormat& format = *theFileFormats->find("KorvaMeshASCII");
    EXPECT_TRUE(theFileFormats->save(format, graph, link.c_str()));
    EXPECT_TRUE(theFileFormats->save(format, graph, dangling.c_str()));
    EXPECT_TRUE(theFileFormats->save(format, graph, fifo.c_str()));
    char head[9] = {};
    EXPECT_EQ(::read(reader, head, 9), 9);
    ::close(reader);
    EXPECT_EQ(std::string(head, 9), "KorvaMesh");
    EXPECT_EQ(readFileBytes(target).substr(0, 9), "KorvaMesh");
    EXPECT_EQ(readFileBytes(dir_.path("new")).substr(0, 9), "KorvaMesh");
    EXPECT_EQ(dir_.list(),
              (std::vector<std::string>{"dangling", "fifo", "link", "neuron.hoc", "new", "old"}));
}
