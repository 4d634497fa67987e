#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "support/TempDir.h"

namespace {

// Reader and writer functions of a pretend format, resolved by name the way a
// package library's functions are.
KxObjectPool* gPool = nullptr;

int readText(const char* filename) {
    KxData* data = new KxData;
    std::ifstream in(filename);
    std::string word;
    in >> word;
    data->parameters().setString("word", word.c_str());
    gPool->add(data, "text");
    return 1;
}
int failRead(const char*) {
    return 0;
}
int writeText(KxData* data, const char* filename) {
    String word;
    data->parameters().findString("word", word);
    std::ofstream out(filename);
    out << word.getString();
    return out ? 1 : 0;
}
std::string gFailedWriteName;
int failWrite(KxData*, const char* filename) {
    gFailedWriteName = filename;
    theMsg->printf("Error: the writer's own reason");
    return 0;
}
int checkMagic(const char* header, int length) {
    return length >= 5 && std::memcmp(header, "MAGIC", 5) == 0;
}
int rejectAll(const char*, int) {
    return 0;
}

const std::map<std::string, void*> kSymbols = {
    {"readText", reinterpret_cast<void*>(&readText)},     {"failRead", reinterpret_cast<void*>(&failRead)},
    {"writeText", reinterpret_cast<void*>(&writeText)},   {"failWrite", reinterpret_cast<void*>(&failWrite)},
    {"checkMagic", reinterpret_cast<void*>(&checkMagic)}, {"rejectAll", reinterpret_cast<void*>(&rejectAll)},
};

void* resolve(const char* symbol) {
    auto it = kSymbols.find(symbol);
    return it == kSymbols.end() ? nullptr : it->second;
}

const char* kResources = R"(# formats for the tests
format "Text" {
    extensions txt .TEXT
    class KxData
    read readText
    write writeText
}
format "Magic" {
    extensions mag
    check checkMagic
    read readText
}
format "Picky" {
    extensions pick
    check rejectAll
    read readText
}
format "Mesh graph" {
    extensions kxm
    contentType KxSpatialGraph
    read readText
}
format "Broken" { extensions brk
    read failRead
    write failWrite }
)";

class KxFileFormatRegistryTest : public ::testing::Test {
protected:
    void SetUp() override {
        gPool = &pool_;
        KxMessageCapture capture;
        ASSERT_EQ(registry_.parseResources(kResources, std::strlen(kResources), "test.rc", "test", resolve),
                  5)
            << capture.text();
        registry_.addContentProbe([](const char* header, int length, std::string& type) {
            std::string h(header, static_cast<size_t>(length));
            if (h.compare(0, 5, "MESH ") != 0) {
                return false;
            }
            type = h.substr(5, h.find('\n') - 5);
            return true;
        });
    }

    std::string readerFor(const std::string& name, const std::string& contents) {
        std::string path = dir_.path(name);
        writeFileBytes(path, contents);
        const KxFileFormat* f = registry_.findReader(path.c_str());
        return f ? f->name : "none";
    }

    KxObjectPool pool_;
    KxFileFormatRegistry registry_;
    TempDir dir_;
};

}  // namespace

// What each entry holds shows in which reader and writer are chosen below.
TEST_F(KxFileFormatRegistryTest, EntriesByNameOrExtensionReadersByContentTypeThenCheckThenExtension) {
    ASSERT_NE(registry_.find("text"), nullptr);
    EXPECT_EQ(registry_.find("text")->package, "test");
    EXPECT_EQ(registry_.find("MAG"), registry_.find("Magic"));
    EXPECT_EQ(registry_.find("nothing"), nullptr);

    EXPECT_EQ(readerFor("a.txt", "hello"), "Text");
    EXPECT_EQ(readerFor("a.TXT", "hello"), "Text");
    EXPECT_EQ(readerFor("a.text", "hello"), "Text");
    EXPECT_EQ(readerFor("a.dat", "hello"), "none");
    EXPECT_EQ(readerFor("noextension", "hello"), "none");
    // Content wins over the extension.
    EXPECT_EQ(readerFor("magic.txt", "MAGIC and more"), "Magic");
    EXPECT_EQ(readerFor("magic", "MAGIC"), "Magic");
    // A check that rejects the header overrules the extension.
    EXPECT_EQ(readerFor("a.mag", "not magic"), "none");
    EXPECT_EQ(readerFor("a.pick", "anything"), "none");
    // A content-typed format reads only files of its content type, whatever the extension.
    EXPECT_EQ(readerFor("graph.dat", "MESH KxSpatialGraph\n"), "Mesh graph");
    EXPECT_EQ(readerFor("field.kxm", "MESH KxLabelField\n"), "none");
    EXPECT_EQ(readerFor("plain.kxm", "no header"), "none");
}

TEST_F(KxFileFormatRegistryTest, LoadFailuresPrintOneErrorLineEach) {
    writeFileBytes(dir_.path("unknown.dat"), "data");
    writeFileBytes(dir_.path("broken.brk"), "data");
    struct Case {
        std::string path;
        std::string error;
    };
    std::vector<Case> cases = {
        {dir_.path("missing.txt"),
         "Error: Cannot read file " + dir_.path("missing.txt") + ": No such file or directory."},
        {dir_.path("unknown.dat"), "Error: Unknown file format of " + dir_.path("unknown.dat") + "."},
        {dir_.path("broken.brk"), "Error: Could not read " + dir_.path("broken.brk") + " as Broken."},
        {dir_.path(""), "Error: Cannot read file " + dir_.path("") + ": not a regular file."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        KxMessageCapture capture;
        std::vector<KxObject*> created;
        EXPECT_FALSE(registry_.load(c.path.c_str(), created, pool_));
        EXPECT_EQ(capture.lines(), std::vector<std::string>{c.error});
    }
    EXPECT_EQ(pool_.size(), 0);
}

TEST_F(KxFileFormatRegistryTest, SaveCallsTheWriterWithTheUsersFileName) {
    KxData data;
    data.parameters().setString("word", "saved");
    data.touch();
    std::string path = dir_.path("out.txt");
    writeFileBytes(path, "old");

    KxMessageCapture capture;
    EXPECT_FALSE(registry_.save(*registry_.find("Broken"), &data, path.c_str()));
    EXPECT_EQ(capture.lines(), std::vector<std::string>{"Error: the writer's own reason"})
        << "no second, vaguer line";
    EXPECT_EQ(gFailedWriteName, path) << "writers see the user's file name";
    EXPECT_EQ(readFileBytes(path), "old");
    EXPECT_TRUE(data.isModified());

    capture.clear();
    EXPECT_FALSE(registry_.save(*registry_.find("Magic"), &data, path.c_str()));
    EXPECT_EQ(capture.lines(), std::vector<std::string>{"Error: Format Magic cannot be written."});

    ASSERT_TRUE(registry_.save(*registry_.find("Text"), &data, path.c_str()));
    EXPECT_EQ(readFileBytes(path), "saved");
    EXPECT_STREQ(data.getSaveInfoParam(), "Text");
    EXPECT_FALSE(data.isModified());
    EXPECT_EQ(registry_.findWriter("x.TEXT", &data), registry_.find("Text"));
    EXPECT_EQ(registry_.findWriter("x.mag", &data), nullptr);
}

TEST(KxFileFormatRegistryResourceTest, MalformedResourcesAreRejectedWithTheLine) {
    struct Case {
        const char* text;
        const char* error;
    };
    const Case cases[] = {
        {"formats \"A\" { read readText }", "Error: bad.rc, line 1: expected 'format'."},
        {"format { read readText }", "Error: bad.rc, line 1: expected a format name after 'format'."},
        {"format \"A\" read readText", "Error: bad.rc, line 1: expected '{' after the name of format \"A\"."},
        {"format \"A\" {\n extensions\n read readText\n}",
         "Error: bad.rc, line 2: 'extensions' needs values."},
        {"format \"A\" {\n read a b\n}", "Error: bad.rc, line 2: 'read' needs one value."},
        {"format \"A\" {\n colour red\n read readText\n}", "Error: bad.rc, line 2: unknown key 'colour'."},
        {"format \"A\" {\n extensions a\n}",
         "Error: bad.rc, line 3: format \"A\" has neither 'read' nor 'write'."},
        {"format \"A\" {\n read readText\n", "Error: bad.rc, line 3: unterminated format \"A\"."},
        {"format \"A {\n}", "Error: bad.rc, line 1: expected a format name after 'format'."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        KxFileFormatRegistry registry;
        KxMessageCapture capture;
        EXPECT_EQ(registry.parseResources(c.text, std::strlen(c.text), "bad.rc", "test", resolve), -1);
        EXPECT_EQ(capture.lines(), std::vector<std::string>{c.error});
        EXPECT_EQ(registry.size(), 0);
    }
}

TEST(KxFileFormatRegistryResourceTest, UnresolvedFunctionsAndDuplicatesSkipOnlyTheirFormat) {
    const char* text =
        "format \"A\" { read readText }\n"
        "format \"B\" { read noSuchReader }\n"
        "format \"a\" { write writeText }\n"
        "format \"C\" { write writeText }\n";
    KxFileFormatRegistry registry;
    KxMessageCapture capture;
    EXPECT_EQ(registry.parseResources(text, std::strlen(text), "x.rc", "test", resolve), 2);
    EXPECT_EQ(capture.lines(),
              (std::vector<std::string>{"Error: x.rc, line 2: format \"B\": no function noSuchReader.",
                                        "Error: File format \"a\" is registered already."}));
    ASSERT_EQ(registry.size(), 2);
    EXPECT_EQ(registry.get(0).name, "A");
    EXPECT_EQ(registry.get(1).name, "C");
}
