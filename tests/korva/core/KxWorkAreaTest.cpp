#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "korva/core/KxWorkArea.h"

namespace {

// What was written to a temporary file.
std::string contents(FILE* f) {
    std::fflush(f);
    std::rewind(f);
    std::string text;
    for (int c = std::fgetc(f); c != EOF; c = std::fgetc(f)) {
        text += static_cast<char>(c);
    }
    return text;
}

}  // namespace

TEST(KxWorkAreaTest, PrintsNothingWhenTheOutputIsNotATerminal) {
    FILE* f = std::tmpfile();
    ASSERT_NE(f, nullptr);
    {
        KxWorkArea work(f);
        EXPECT_FALSE(work.drawsOnTerminal());
        work.startWorking("Reading", 4);
        work.step();
        work.setProgressValue(0.9f);
        EXPECT_FLOAT_EQ(work.getProgressValue(), 0.9f) << "progress is tracked all the same";
        work.stopWorking();
    }
    EXPECT_EQ(contents(f), "");
    std::fclose(f);
}

TEST(KxWorkAreaTest, OnATerminalRedrawsOnlyWhenThePercentageChanges) {
    FILE* f = std::tmpfile();
    ASSERT_NE(f, nullptr);
    KxWorkArea work(f, true);
    work.startWorking("Reading", 200);
    work.step();                  // 0.5 % shows as 0 %: no redraw
    work.step();                  // 1 %
    work.setProgressValue(2.0f);  // clamped to 100 %
    work.stopWorking();
    EXPECT_EQ(contents(f),
              "\rReading [..............................]   0%"
              "\rReading [..............................]   1%"
              "\rReading [##############################] 100%"
              "\r\033[K");
    std::fclose(f);
}

TEST(KxWorkAreaTest, NestedTasksLeaveTheOuterBarAlone) {
    FILE* f = std::tmpfile();
    ASSERT_NE(f, nullptr);
    KxWorkArea work(f, true);
    work.startWorking("Outer", 2);
    work.step();
    work.startWorking("Inner", 10);
    work.step();
    work.setProgressValue(0.0f);
    work.stopWorking();
    EXPECT_TRUE(work.isWorking());
    EXPECT_FLOAT_EQ(work.getProgressValue(), 0.5f);
    work.step();
    work.step();  // past the step count: stays at 100 %
    work.stopWorking();
    work.stopWorking();  // one stop too many does nothing
    EXPECT_FALSE(work.isWorking());
    EXPECT_EQ(contents(f),
              "\rOuter [..............................]   0%"
              "\rOuter [###############...............]  50%"
              "\rOuter [##############################] 100%"
              "\r\033[K");
    std::fclose(f);
}
