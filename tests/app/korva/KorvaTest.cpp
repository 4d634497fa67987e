// Runs the built korva executable and checks its exit status and output.

#include <gtest/gtest.h>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <QImage>

#include "support/KorvaRunner.h"
#include "support/TempDir.h"

namespace {

// A graph file whose second vertex lies away from its edge's end: it loads,
// but its consistency check reports the fault.
const char* kDamagedGraph = R"(KorvaMesh 1 ascii
parameters {
  "ContentType" string "KxSpatialGraph"
}
location "VERTEX" 2
location "EDGE" 1
location "POINT" 2
array "VertexCoordinates" "VERTEX" float 3
array "EdgeConnectivity" "EDGE" int32 2
array "NumEdgePoints" "EDGE" int32 1
array "EdgePointCoordinates" "POINT" float 3
end
@1
0 0 0
5 0 0
@2
0 1
@3
2
@4
0 0 0
1 0 0
)";

// Two thick tubes crossing the middle of the picture, seen from +z; the
// label group "Topology" marks the horizontal one red, the vertical one green.
const char* kCrossScript =
    "set g [create KxSpatialGraph cross]\n"
    "set a [$g addVertex -10 0 0]\nset b [$g addVertex 10 0 0]\n"
    "set c [$g addVertex 0 -10 0]\nset d [$g addVertex 0 10 0]\n"
    "$g addEdge $a $b\n$g addEdge $c $d\n"
    "$g addAttribute thickness POINT float\n"
    "$g addLabelGroup Topology POINT\n"
    "set red [$g addLabel Topology 0 Axon 1 0 0]\nset green [$g addLabel Topology 0 Dendrite 0 1 0]\n"
    "foreach e {0 1} id [list $red $green] { foreach p {0 1} {\n"
    "    $g setValue POINT thickness $e $p 2.0\n    $g setValue POINT Topology $e $p $id\n} }\n";

class KorvaTest : public ::testing::Test {
protected:
    // Runs korva in the test's directory with stdin from the given text.
    KorvaRun korva(const std::vector<std::string>& args, const std::string& input = "",
                   bool testPackage = false) {
        return runKorva(args, KorvaRunOptions{dir_.path(), input, testPackage, {}, {}});
    }

    std::string write(const std::string& name, const std::string& contents) {
        std::string path = dir_.path(name);
        writeFileBytes(path, contents);
        return path;
    }

    TempDir dir_;
};

}  // namespace

TEST_F(KorvaTest, CommandLineAnswersEachCallOnceOnTheRightStream) {
    write("cross.tcl", kCrossScript);
    write("damaged.kxm", kDamagedGraph);
    write("noext", "puts \"ran [lindex $argv 0]\"\n");
    write("data.xyz", "something");
    write("notmesh.kxm", "puts ran\n");
    ASSERT_EQ(korva({"-c", "source cross.tcl; save KorvaMesh cross cross.kxm"}).status, 0);
    struct Case {
        std::vector<std::string> args;
        int status;
        bool onStdout;  // where the fragment appears, exactly once; never on the other stream
        std::string fragment;
    };
    const Case cases[] = {
        {{"help"}, 0, true, "usage: korva "},
        {{"--version"}, 0, true, std::string("korva ") + KORVA_VERSION + "\n"},
        {{"-x"}, 2, false, "usage: korva "},
        {{"nothing"}, 2, false, "Error: No file or subcommand named \"nothing\""},
        {{"noext", "arg"}, 0, true, "ran arg\n"},
        {{"notmesh.kxm"}, 1, false, "Error: Unknown file format of notmesh.kxm.\n"},
        {{"cross.kxm"}, 0, true, "Vertices:    4\n"},
        {{"info", "cross.kxm"}, 0, true, "Attribute:   thickness (POINT, float, 1)\n"},
        {{"info", "cross.kxm"}, 0, true, "Attribute:   Topology (POINT, int, 1), label group Topology\n"},
        {{"info", "cross.kxm"}, 0, true, "Label group: Topology (2 labels)\n"},
        {{"info", "damaged.kxm"}, 1, false, "Error: target vertex 1 coordinates"},
        {{"info"}, 2, false, "USAGE: korva info FILE ...\n"},
        {{"-c", "create KxSpatialGraph g; g merge"}, 1, false, "USAGE: merge otherDataSet\n"},
        {{"-c", "load data.xyz"}, 1, false, "Error: Unknown file format of data.xyz.\n"},
        {{"-c", "create KxSpatialGraph g; g addVertex 1 2 zz"},
         1,
         false,
         "Error: Expected floating-point number but got \"zz\".\n"},
        {{"-c", "create KxData d; d nosuch"}, 1, false, "Error: Object d has no command \"nosuch\""},
        {{"-c", "save KorvaMesh nobody x.kxm"}, 1, false, "Error: No data object \"nobody\".\n"},
        {{"render", "cross.kxm", "x.bmp"},
         2,
         false,
         "Error: Cannot write x.bmp: pictures are written as PNG (.png) or JPEG (.jpg, .jpeg).\n"},
        {{"render", "cross.kxm", "x.png", "0", "80"},
         2,
         false,
         "Error: The width must be a whole number from 1 to 8192, not \"0\".\n"},
        {{"render", "cross.kxm", "x.png", "10", "9000"}, 2, false, "from 1 to 8192, not \"9000\""},
        {{"render", "--colour", "Topology", "cross.kxm", "x.png"}, 2, false, "USAGE: korva render "},
        {{"render", "--color", "Nope", "cross.kxm", "x.png", "40", "30"},
         1,
         false,
         "Error: Graph cross.kxm has no point or edge attribute or label group named \"Nope\".\n"},
        {{"render", "--scale", "Topology", "cross.kxm", "x.png", "40", "30"},
         1,
         false,
         "Error: Graph cross.kxm has no float point attribute named \"Topology\" to scale the tubes by.\n"},
    };
    for (const Case& c : cases) {
        std::string call;
        for (const std::string& a : c.args) {
            call += " " + a;
        }
        SCOPED_TRACE("korva" + call);
        KorvaRun run = korva(c.args);
        EXPECT_EQ(run.status, c.status) << run.out << run.err;
        EXPECT_EQ(countOccurrences(c.onStdout ? run.out : run.err, c.fragment), 1) << run.out << run.err;
        EXPECT_EQ(countOccurrences(c.onStdout ? run.err : run.out, c.fragment), 0) << run.out << run.err;
    }
}

// Runs whose whole output is known, with the test package loaded. An expected
// text ending in "..." need only begin the output.
TEST_F(KorvaTest, RunsPrintExactlyTheirOutputAndExitWithTheirCode) {
    write("ok.tcl", "puts \"$argc [lindex $argv 1] [file tail $argv0]\"\n");
    write("fail.tcl", "puts before\nproc f {} { error \"it broke\" }\nf\nputs after\n");
    write("memo", "KXNOTE\nbuy milk");
    write("cell.swc", "1 1 0 0 0 1 -1\n2 3 2 0 0 1 1\n");
    // One edge of points (5,0,0) (2,0,0) (0,0,0) (0,0,0): the root's point is doubled.
    write("line.swc", "1 1 0 0 0 1 -1\n2 3 2 0 0 1 1\n3 3 5 0 0 1 2\n");
    const std::string stats = "Segment Statistics\nSegment ID,Length,Mean Radius,Volume\n0,2,1,6.2831855\n";
    struct Case {
        std::vector<std::string> args;
        KorvaRun expected;
        std::string input = "";  // stdin, which is not a terminal: the console reads it
    };
    const Case cases[] = {
        {{"ok.tcl", "one", "two words"}, {0, "2 two words ok.tcl\n", ""}},
        {{"fail.tcl"},
         {1, "before\n",
          "Error: it broke\n    while executing\n\"error \"it broke\" \"\n    (procedure \"f\" line 1)\n"
          "    invoked from within\n\"f\"\n    (file \"fail.tcl\" line 3)\n"}},
        {{"nothing.tcl"}, {1, "", "Error: couldn't read file \"nothing.tcl\": no such file or directory\n"}},
        {{"-c", "puts hello; expr {6 * 7}"}, {0, "hello\n42\n", ""}},
        {{"-c", "puts bye; create KxData d; quit 3; puts never"}, {3, "bye\n", ""}},
        {{"-c", "quit"}, {0, "", ""}},
        {{"-c"}, {2, "", "usage: korva ..."}},
        {{},
         {0, "notes\n\"n\" int 3\n\n", ""},
         "create KxData notes\nputs [all]\nnotes setParameters {\"n\" int 3}\nputs [notes parameters]\n"},
        {{},
         {1, "one\n", "Error: two\n    while executing\n\"error two\"\n"},
         "puts one\nerror two\nputs three\n"},
        {{}, {1, "one\n", "Error: missing close-brace\n..."}, "puts one\nproc f {} {\n"},
        {{"info", "memo"},
         {0, "File:       memo\nLabel:      memo\nData Class: KxTestNote\nText:       buy milk\n", ""}},
        {{"convert", "memo", "copy.note"}, {0, "", ""}},
        {{"convert", "memo", "copy.png"},
         {1, "", "Error: No format writes KxTestNote to files named like copy.png.\n"}},
        {{"info", "copy.png"}, {1, "", "Error: Cannot read file copy.png: No such file or directory.\n"}},
        {{"stats", "cell.swc"}, {0, stats, ""}},
        {{"stats", "cell.swc", "-o", "cell.csv"}, {0, "", ""}},
        {{"stats"}, {2, "", "USAGE: korva stats FILE [-o OUT.csv]\n"}},
        {{"trees", "cell.swc", "-o"}, {2, "", "USAGE: korva trees FILE [-l] [-o OUT]\n"}},
        {{"distance", "cell.swc", "--edge", "0", "--point", "9", "-o", "bad.kxm"},
         {1, "", "Error: invalid point number 9, should be 0..2\n"}},
        {{"distance", "cell.swc", "--edge", "[puts x]", "--point", "0", "-o", "x.kxm"},
         {1, "", "Error: Expected integer but got \"[puts x]\".\n"}},
        {{"distance", "cell.swc", "--edge", "0", "-o", "x.kxm"},
         {2, "", "USAGE: korva distance FILE --ref X Y Z | --edge E --point P -o OUT\n"}},
        {{"distance", "line.swc", "-o", "ref.kxm", "--ref", "2.1", "0", "0"}, {0, "", ""}},
        {{"distance", "line.swc", "--edge", "0", "--point", "1", "-o", "edge.kxm"}, {0, "", ""}},
        {{"-c",
          "foreach f {ref.kxm edge.kxm} {foreach p {0 1 2 3} {puts [[load $f] getValue POINT "
          "DistanceToPoint 0 $p]}}"},
         {0, "3\n0\n2\n2\n3\n0\n2\n2\n", ""}},
    };
    auto expectText = [](const std::string& actual, const std::string& expected) {
        const size_t dots = expected.rfind("...");
        if (dots != std::string::npos && dots + 3 == expected.size()) {
            EXPECT_EQ(actual.substr(0, dots), expected.substr(0, dots)) << actual;
        } else {
            EXPECT_EQ(actual, expected);
        }
    };
    for (const Case& c : cases) {
        std::string call;
        for (const std::string& a : c.args) {
            call += " " + a;
        }
        SCOPED_TRACE("korva" + call);
        KorvaRun run = korva(c.args, c.input, true);
        EXPECT_EQ(run.status, c.expected.status) << run.out << run.err;
        expectText(run.out, c.expected.out);
        expectText(run.err, c.expected.err);
    }
    EXPECT_EQ(readFileBytes(dir_.path("copy.note")), "KXNOTE\nbuy milk");
    EXPECT_EQ(readFileBytes(dir_.path("cell.csv")), stats);

    // Help lists the package's formats and only classes that create can make.
    KorvaRun help = korva({"-c", "help"}, "", true);
    EXPECT_NE(help.out.find("  Test note (.note read write)\n"), std::string::npos) << help.out;
    EXPECT_NE(help.out.find("  KxTestNote\n"), std::string::npos) << help.out;
    // No interfaces, no abstract bases.
    EXPECT_EQ(help.out.find("Interface"), std::string::npos) << help.out;
    EXPECT_EQ(help.out.find("  KxObject\n"), std::string::npos) << help.out;
}

TEST_F(KorvaTest, RenderDrawsTheGraphAScriptBuilds) {
    write("cross.tcl", kCrossScript);
    ASSERT_EQ(korva({"-c", "source cross.tcl; save KorvaMesh cross cross.kxm"}).status, 0);
    // Renders 120 x 80 and returns the picture.
    auto render = [this](std::vector<std::string> args, const std::string& picture) {
        args.insert(args.end(), {picture, "120", "80"});
        KorvaRun run = korva(args);
        EXPECT_EQ(run.status, 0) << run.err;
        return QImage(QString::fromStdString(dir_.path(picture)));
    };
    QImage tubes = render({"render", "cross.tcl"}, "gpu.png");
    ASSERT_EQ(tubes.size(), QSize(120, 80));
    EXPECT_GT(tubes.pixelColor(60, 40).red(), 100);  // where the tubes cross
    EXPECT_EQ(tubes.pixelColor(5, 5).red(), 0);      // background corner

    // By the label group, the horizontal tube is red and the vertical one green.
    QImage labels = render({"render", "--color", "Topology", "cross.tcl"}, "labels.jpg");
    ASSERT_EQ(labels.width(), 120);
    QColor horizontal = labels.pixelColor(45, 40), vertical = labels.pixelColor(60, 25);
    EXPECT_GT(horizontal.red(), 2 * horizontal.green() + 20) << horizontal.name().toStdString();
    EXPECT_GT(vertical.green(), 2 * vertical.red() + 20) << vertical.name().toStdString();

    // A saved graph file renders like the script that built it; "thickness" is
    // what the tubes are scaled by anyway.
    EXPECT_EQ(render({"render", "cross.kxm"}, "file.png"), tubes);
    EXPECT_EQ(render({"render", "--scale", "thickness", "cross.kxm"}, "scaled.png"), tubes);
    // Nodes add spheres thicker than the tubes.
    QImage nodes = render({"render", "--nodes", "cross.kxm"}, "nodes.png");
    ASSERT_EQ(nodes.size(), tubes.size());
    int grown = 0;
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 120; ++x) {
            grown += nodes.pixelColor(x, y).red() > 0 && tubes.pixelColor(x, y).red() == 0;
        }
    }
    EXPECT_GT(grown, 20) << "the spheres stand out of the tube ends";

    write("empty.tcl", "set x 1\n");
    KorvaRun nothing = korva({"render", "empty.tcl", dir_.path("none.png")});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_NE(nothing.err.find("Error: Nothing in empty.tcl can be rendered."), std::string::npos)
        << nothing.err;
}

TEST(KorvaConsoleTest, OnATerminalTheConsolePromptsAndPrintsResults) {
    int master = -1;
    pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        std::string korva = std::string(KORVA_BINARY_DIR) + "/bin/korva";
        execl(korva.c_str(), "korva", static_cast<char*>(nullptr));
        _exit(127);
    }
    // A command split over two lines runs once it is complete.
    const std::string input = "proc f {} {\nexpr {6 * 7} }\nf\nnosuch\nquit 5\n";
    ASSERT_EQ(write(master, input.data(), input.size()), static_cast<ssize_t>(input.size()));
    std::string output;
    char buffer[4096];
    while (true) {
        pollfd p{master, POLLIN, 0};
        if (poll(&p, 1, 30000) <= 0) {
            break;
        }
        ssize_t n = read(master, buffer, sizeof(buffer));
        if (n <= 0) {
            break;  // the korva side closed
        }
        output.append(buffer, static_cast<size_t>(n));
    }
    int status = 0;
    waitpid(pid, &status, 0);
    close(master);
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 5) << output;
    EXPECT_NE(output.find("korva> "), std::string::npos) << output;
    EXPECT_NE(output.find("> korva> 42\r\n"), std::string::npos) << "continuation prompt, then the result\n"
                                                                 << output;
    EXPECT_NE(output.find("Error: invalid command name \"nosuch\""), std::string::npos) << output;
}
