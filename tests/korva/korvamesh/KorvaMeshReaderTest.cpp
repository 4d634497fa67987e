#include "korva/korvamesh/KorvaMeshReader.h"

#include <zlib.h>

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMeshTestSupport.h"

namespace {

const char* const kName = "bad.kxm";
const std::string kErrorStart = std::string("Error: cannot read KorvaMesh file \"") + kName + "\": ";

// Parses text and expects a null result and exactly one error line that
// contains problem. Answers the line for further checks.
std::string expectRejected(const std::string& text, const std::string& problem) {
    KxMessageCapture capture;
    std::unique_ptr<KorvaMesh> mesh = KorvaMeshReader::readMemory(text.data(), text.size(), kName);
    EXPECT_FALSE(mesh);
    EXPECT_EQ(capture.lines().size(), 1u) << capture.text();
    std::string line = capture.lines().empty() ? "" : capture.lines()[0];
    EXPECT_EQ(line.compare(0, kErrorStart.size(), kErrorStart), 0) << line;
    EXPECT_NE(line.find(problem), std::string::npos) << "expected \"" << problem << "\" in: " << line;
    return line;
}

std::unique_ptr<KorvaMesh> expectAccepted(const std::string& text) {
    KxMessageCapture capture;
    std::unique_ptr<KorvaMesh> mesh = KorvaMeshReader::readMemory(text.data(), text.size(), kName);
    EXPECT_TRUE(mesh) << capture.text();
    EXPECT_TRUE(capture.lines().empty()) << capture.text();
    return mesh;
}

std::string fileOf(const KorvaMesh& mesh, bool ascii, bool compress) {
    TempDir dir;
    std::string path = dir.path("m.kxm");
    mesh.write(path.c_str(), ascii ? 1 : 0, compress ? 1 : 0);
    return readFileBytes(path);
}

std::string zlibOf(const std::string& raw) {
    uLongf n = compressBound(raw.size());
    std::string out(n, '\0');
    compress(reinterpret_cast<Bytef*>(&out[0]), &n, reinterpret_cast<const Bytef*>(raw.data()), raw.size());
    out.resize(n);
    return out;
}

// A binary file with one location of size elements and one int32 array whose
// header line ends in storage; data follows after the padding.
std::string binaryFile(int size, const std::string& storage, const std::string& data) {
    std::string header = "KorvaMesh 1 binary-le\nlocation \"L\" " + std::to_string(size) +
                         "\narray \"a\" \"L\" int32 1 " + storage + "\nend\n";
    header.resize((header.size() + 7) / 8 * 8, '\0');
    return header + data;
}

const std::string kAsciiHeader = "KorvaMesh 1 ascii\nlocation \"L\" 3\narray \"a\" \"L\" int32 1\nend\n";

struct Case {
    const char* what;
    std::string text;
    const char* problem;
};

TEST(KorvaMeshReaderTest, RejectsMalformedHeaders) {
    const Case cases[] = {
        {"empty", "", "not a KorvaMesh file"},
        {"signature alone", "KorvaMesh", "not a KorvaMesh file"},
        {"longer word", "KorvaMeshX 1 ascii\nend\n", "not a KorvaMesh file"},
        {"lower case", "korvamesh 1 ascii\nend\n", "not a KorvaMesh file"},
        {"no version", "KorvaMesh ", "expected the format version"},
        {"future version", "KorvaMesh 2 ascii\nend\n", "unsupported format version \"2\""},
        {"version not a number", "KorvaMesh one ascii\nend\n", "unsupported format version \"one\""},
        {"unknown encoding", "KorvaMesh 1 ebcdic\nend\n", "unknown encoding \"ebcdic\""},
        {"no end", "KorvaMesh 1 ascii\nlocation \"L\" 3\n", "no \"end\" line"},
        {"unknown keyword", "KorvaMesh 1 ascii\nlocations \"L\" 3\nend\n",
         "header line 2: unknown keyword \"locations\""},
        {"quoted keyword", "KorvaMesh 1 ascii\n\"location\"\nend\n", "header line 2: expected a keyword"},
        {"end not alone", "KorvaMesh 1 ascii\nend x\n", "\"end\" must stand alone"},
        {"parameters without brace", "KorvaMesh 1 ascii\nparameters \"a\" int 1\nend\n",
         "expected '{' after"},
        {"parameters unclosed", "KorvaMesh 1 ascii\nparameters {\n \"a\" int 1\nend\n", "no closing '}'"},
        {"parameter bad number", "KorvaMesh 1 ascii\nparameters {\n\"a\" int 1.5\n}\nend\n",
         "bad int value '1.5'"},
        {"parameter unterminated string", "KorvaMesh 1 ascii\nparameters {\n\"a\" string \"x}\nend\n",
         "no closing '}'"},
        {"bundles nested too deep", "KorvaMesh 1 ascii\nparameters {" + std::string(5000, '{'),
         "nested deeper"},
        {"two parameter blocks", "KorvaMesh 1 ascii\nparameters {\n}\nparameters {\n}\nend\n",
         "header line 4: a second parameter block"},
        {"location name unquoted", "KorvaMesh 1 ascii\nlocation L 3\nend\n", "expected a location name"},
        {"location name unterminated", "KorvaMesh 1 ascii\nlocation \"L 3\nend\n",
         "closing quote is missing"},
        {"location size negative", "KorvaMesh 1 ascii\nlocation \"L\" -1\nend\n", "bad size \"-1\""},
        {"location size huge", "KorvaMesh 1 ascii\nlocation \"L\" 2147483648\nend\n",
         "bad size \"2147483648\""},
        {"location size float", "KorvaMesh 1 ascii\nlocation \"L\" 3.0\nend\n", "bad size \"3.0\""},
        {"location twice", "KorvaMesh 1 ascii\nlocation \"L\" 3\nlocation \"L\" 3\nend\n",
         "header line 3: location \"L\" is defined twice"},
        {"array in unknown location", "KorvaMesh 1 ascii\narray \"a\" \"L\" int32 1\nend\n",
         "refers to location \"L\", which is not defined"},
        {"unknown type", "KorvaMesh 1 ascii\nlocation \"L\" 3\narray \"a\" \"L\" int33 1\nend\n",
         "unknown value type \"int33\""},
        {"zero components", "KorvaMesh 1 ascii\nlocation \"L\" 3\narray \"a\" \"L\" int32 0\nend\n",
         "bad component count \"0\""},
        {"too many components", "KorvaMesh 1 ascii\nlocation \"L\" 3\narray \"a\" \"L\" int32 65537\nend\n",
         "bad component count \"65537\""},
        {"array twice",
         "KorvaMesh 1 ascii\nlocation \"L\" 3\narray \"a\" \"L\" int8 1\narray \"a\" \"L\" int8 2\nend\n",
         "holds two arrays \"a\""},
        {"binary without storage",
         "KorvaMesh 1 binary-le\nlocation \"L\" 3\narray \"a\" \"L\" int32 1\nend\n",
         "unknown storage \"end\" of array \"a\""},
        {"unknown storage", binaryFile(3, "lz4 12", ""), "unknown storage \"lz4\""},
        {"raw size wrong", binaryFile(3, "raw 16", std::string(16, '\0')),
         "stores 16 bytes, but 3 elements of 1 int32 components take 12 bytes"},
        {"raw size not a number", binaryFile(3, "raw twelve", ""), "bad byte count \"twelve\""},
        {"control characters in names are not printed", "KorvaMesh 1 ascii\nlocation \"a\nb\" x\nend\n",
         "location \"a?b\""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        expectRejected(c.text, c.problem);
    }
}

TEST(KorvaMeshReaderTest, RejectsMalformedAsciiData) {
    const Case cases[] = {
        {"data missing", kAsciiHeader,
         "expected \"@1\", the start of the data of array \"a\"; the file is truncated"},
        {"marker missing", kAsciiHeader + "1 2 3\n", "line 5: expected \"@1\""},
        {"wrong marker", kAsciiHeader + "@2\n1 2 3\n", "expected \"@1\""},
        {"too few values", kAsciiHeader + "@1\n1 2\n", "ends after 2 of its 3 values; the file is truncated"},
        {"too few values before next array",
         "KorvaMesh 1 ascii\nlocation \"L\" 2\narray \"a\" \"L\" int32 1\narray \"b\" \"L\" int32 1\nend\n"
         "@1\n1\n@2\n1\n2\n",
         "bad int32 value \"@2\" (value 2 of array \"a\")"},
        {"too many values", kAsciiHeader + "@1\n1 2 3 4\n", "line 6: unexpected text after the data"},
        {"bad number", kAsciiHeader + "@1\n1\n2.5\n3\n", "line 7: bad int32 value \"2.5\" (value 2"},
        {"word", kAsciiHeader + "@1\n1 two 3\n", "bad int32 value \"two\""},
        {"glued numbers", kAsciiHeader + "@1\n1 2,3\n", "bad int32 value \"2,3\""},
        {"int out of range", kAsciiHeader + "@1\n1 2 4294967296\n",
         "bad int32 value \"4294967296\" (value 3 of array \"a\"): out of range"},
        {"int8 out of range", "KorvaMesh 1 ascii\nlocation \"L\" 1\narray \"a\" \"L\" int8 1\nend\n@1\n128\n",
         "bad int8 value \"128\""},
        {"negative unsigned",
         "KorvaMesh 1 ascii\nlocation \"L\" 1\narray \"a\" \"L\" uint16 1\nend\n@1\n-1\n",
         "bad uint16 value \"-1\""},
        {"float out of range",
         "KorvaMesh 1 ascii\nlocation \"L\" 1\narray \"a\" \"L\" float 1\nend\n@1\n1e39\n",
         "bad float value \"1e39\""},
        {"decimal comma", "KorvaMesh 1 ascii\nlocation \"L\" 1\narray \"a\" \"L\" double 1\nend\n@1\n1,5\n",
         "bad double value \"1,5\""},
        {"plus sign", "KorvaMesh 1 ascii\nlocation \"L\" 1\narray \"a\" \"L\" double 1\nend\n@1\n+1\n",
         "bad double value \"+1\""},
        {"count larger than the file",
         "KorvaMesh 1 ascii\nlocation \"L\" 2147483647\narray \"a\" \"L\" double 65536\nend\n@1\n1 2 3\n",
         "should hold 140737488289792 values, but only 7 bytes are left"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        expectRejected(c.text, c.problem);
    }
    std::unique_ptr<KorvaMesh> ok = expectAccepted(kAsciiHeader + "@1 1\t2\r\n  -3\n\n");
    ASSERT_TRUE(ok);
    EXPECT_EQ(static_cast<const int*>(ok->getData(0)->getValues())[2], -3);
}

TEST(KorvaMeshReaderTest, RejectsMalformedBinaryData) {
    const std::string twelve(12, '\x01');
    const std::string ints = std::string("\x01\0\0\0\x02\0\0\0\x03\0\0\0", 12);
    const std::string packed = zlibOf(ints);
    const std::string n = std::to_string(packed.size());
    const Case cases[] = {
        {"data short", binaryFile(3, "raw 12", twelve.substr(0, 11)), "extends past the end of the file"},
        {"trailing bytes", binaryFile(3, "raw 12", twelve + "x"), "1 unexpected bytes after the data"},
        {"padding missing",
         "KorvaMesh 1 binary-le\nlocation \"L\" 3\narray \"a\" \"L\" int32 1 raw 12\nend\n" + twelve,
         "extends past the end of the file"},
        {"zlib garbage", binaryFile(3, "zlib 12", twelve), "compressed array \"a\" is damaged"},
        {"zlib truncated",
         binaryFile(3, "zlib " + std::to_string(packed.size() - 3), packed.substr(0, packed.size() - 3)),
         "compressed data ends early"},
        {"zlib too little", binaryFile(4, "zlib " + n, packed), "decompresses to fewer bytes"},
        {"zlib too much", binaryFile(2, "zlib " + n, packed), "decompresses to more bytes"},
        {"zlib with trailing bytes",
         binaryFile(3, "zlib " + std::to_string(packed.size() + 2), packed + "xy"),
         "stored size is larger than its compressed data"},
        {"zlib stored size past the end", binaryFile(3, "zlib 1000", packed),
         "extends past the end of the file"},
        {"forged huge count with tiny stream", binaryFile(2147483647, "zlib " + n, packed),
         "decompresses to fewer bytes"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        expectRejected(c.text, c.problem);
    }
    std::unique_ptr<KorvaMesh> ok = expectAccepted(binaryFile(3, "zlib " + n, packed));
    ASSERT_TRUE(ok);
    EXPECT_EQ(std::memcmp(ok->getData(0)->getValues(), ints.data(), 12), 0);
}

// Cutting a file anywhere gives an error, never a crash or a partial mesh:
// binary files at every byte, ASCII files anywhere before their last value
// (a cut inside the last number still leaves a valid, shorter number).
TEST(KorvaMeshReaderTest, EveryTruncationFails) {
    KorvaMeshSample sample;
    for (int compress = 0; compress < 2; ++compress) {
        std::string file = fileOf(sample.mesh, false, compress);
        SCOPED_TRACE(compress ? "compressed" : "binary");
        for (size_t cut = 0; cut < file.size(); ++cut) {
            KxMessageCapture capture;
            ASSERT_FALSE(KorvaMeshReader::readMemory(file.data(), cut, kName)) << "cut at " << cut;
            ASSERT_EQ(capture.numErrors(), 1) << "cut at " << cut;
        }
    }
    std::string ascii = fileOf(sample.mesh, true, false);
    size_t lastValue = ascii.rfind('\n', ascii.size() - 2) + 1;
    for (size_t cut = 0; cut < lastValue; ++cut) {
        KxMessageCapture capture;
        ASSERT_FALSE(KorvaMeshReader::readMemory(ascii.data(), cut, kName)) << "cut at " << cut;
        ASSERT_EQ(capture.numErrors(), 1) << "cut at " << cut;
    }
}

TEST(KorvaMeshReaderTest, ReportsFilesThatCannotBeRead) {
    TempDir dir;
    KxMessageCapture capture;
    EXPECT_FALSE(KorvaMeshReader::readFile(dir.path("missing.kxm").c_str()));
    EXPECT_FALSE(KorvaMeshReader::readFile(dir.path().c_str()));
    writeFileBytes(dir.path("empty.kxm"), "");
    EXPECT_FALSE(KorvaMeshReader::readFile(dir.path("empty.kxm").c_str()));
    ASSERT_EQ(capture.lines().size(), 3u);
    EXPECT_EQ(capture.lines()[0], "Error: cannot read KorvaMesh file \"" + dir.path("missing.kxm") +
                                      "\": No such file or directory.");
    EXPECT_EQ(capture.lines()[1],
              "Error: cannot read KorvaMesh file \"" + dir.path() + "\": not a regular file.");
    EXPECT_EQ(capture.lines()[2], "Error: cannot read KorvaMesh file \"" + dir.path("empty.kxm") +
                                      "\": not a KorvaMesh file (it does not start with \"KorvaMesh\").");
}

}  // namespace

// Arrays of megabytes get buffers of their own, which small meshes never reach.
TEST(KorvaMeshReaderTest, ReadsArraysOfSeveralMegabytes) {
    std::vector<int> values(700001);
    for (size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<int>(i * 7919 % 1000003) - 500000;
    }
    KorvaMesh mesh;
    mesh.createData("a", mesh.createLocation("L", values.size()), PrimType::INT32, 1, values.data());
    for (bool ascii : {true, false}) {
        std::unique_ptr<KorvaMesh> read = expectAccepted(fileOf(mesh, ascii, false));
        ASSERT_TRUE(read) << ascii;
        EXPECT_EQ(std::memcmp(read->getData(0)->getValues(), values.data(), values.size() * 4), 0) << ascii;
    }
}
