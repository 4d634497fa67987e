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

TEST(KxWorkAreaTest, RedrawsOnlyWhenThePercentageChangesAndNestedTasksLeaveTheBarAlone) {
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
    work.setProgressValue(0.505f);  // still shows 50 %: no redraw
    work.step();
    work.step();                  // past the step count: stays at 100 %
    work.setProgressValue(2.0f);  // clamped to 100 %
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
