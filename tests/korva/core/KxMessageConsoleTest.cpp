#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxMessageConsole.h"

TEST(KxMessageConsoleTest, OneCallPrintsOneLinePerNewline) {
    KxMessageCapture capture;
    theMsg->printf("Error: Edge %d has %d points. Should be at least 2.", 3, 1);
    theMsg->printf("Warning: two\nlines\n");
    theMsg->printf("%s", "");
    theMsg->print("trailing empty line\n\n");
    EXPECT_EQ(capture.lines(),
              (std::vector<std::string>{"Error: Edge 3 has 1 points. Should be at least 2.", "Warning: two",
                                        "lines", "", "trailing empty line", ""}));
    EXPECT_EQ(capture.numErrors(), 1);
    EXPECT_TRUE(capture.contains("lines"));
    EXPECT_FALSE(capture.contains("line"));
    capture.clear();
    EXPECT_TRUE(capture.lines().empty());
}

TEST(KxMessageConsoleTest, CapturesNestAndTapsSeeLinesWithoutTakingThem) {
    KxMessageCapture outer;
    std::vector<std::string> tapped;
    int id = theMsg->addTap([&](const std::string& line) { tapped.push_back(line); });
    theMsg->printf("first");
    {
        KxMessageCapture inner;
        theMsg->printf("Error: %s", "second");
        EXPECT_EQ(inner.lines(), std::vector<std::string>{"Error: second"});
    }
    theMsg->removeTap(id);
    theMsg->printf("third");
    EXPECT_EQ(outer.lines(), (std::vector<std::string>{"first", "third"}));
    EXPECT_EQ(tapped, (std::vector<std::string>{"first", "Error: second"}));
}
