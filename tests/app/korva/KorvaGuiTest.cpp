#include <cstdlib>
#include <string>

#include <QColor>
#include <QImage>
#include <gtest/gtest.h>

#include "support/KorvaRunner.h"
#include "support/TempDir.h"

// The viewer window opens on a virtual X server, shows the graph a script
// builds, hands its frame buffer to `viewer grab` and closes on `quit`.
TEST(KorvaGuiTest, WindowShowsTheGraphAndClosesOnQuit) {
    if (std::system("command -v xvfb-run >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "xvfb-run is missing (scripts/setup installs it)";
    }
    TempDir dir;
    std::string picture = dir.path("window.png");
    KorvaRunOptions options;
    options.workingDir = dir.path();
    options.launcher = {"xvfb-run", "-a", "-s", "-screen 0 1024x768x24"};
    std::string script = dir.path("show.tcl");
    writeFileBytes(
        script,
        "create KxSpatialGraph g\ng addVertex -10 0 0\ng addVertex 10 0 0\ng addEdge 0 1\n"
        "[create KxSpatialGraphView V] data connect g\n"
        "V segmentStyle setValue 2 1; V tubeScaleFactor setValue 2; V segmentColor setValue 1 0 0\n"
        "viewer viewAll\nviewer grab window.png\nquit 3\n");
    KorvaRun run = runKorva({"--gui", script}, options);
    EXPECT_EQ(run.status, 3) << run.out << run.err;
    QImage image(QString::fromStdString(picture));
    ASSERT_FALSE(image.isNull()) << run.err;
    QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
    EXPECT_GT(centre.red(), 150) << centre.name().toStdString();
    EXPECT_LT(centre.green() + centre.blue(), 60) << centre.name().toStdString();
    QColor corner = image.pixelColor(2, 2);
    EXPECT_LT(corner.red() + corner.green() + corner.blue(), 30) << corner.name().toStdString();

    KorvaRun noDisplay =
        runKorva({"--gui", script}, KorvaRunOptions{dir.path(), "", false, {"DISPLAY="}, {}});
    EXPECT_EQ(noDisplay.status, 1);
    EXPECT_NE(noDisplay.err.find("Error: korva --gui needs an X display"), std::string::npos)
        << noDisplay.err;
}
