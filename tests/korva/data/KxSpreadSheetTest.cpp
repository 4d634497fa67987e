#include "korva/data/KxSpreadSheet.h"

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "support/DecimalCommaLocale.h"
#include "support/TempDir.h"

TEST(KxSpreadSheetTest, CsvQuotesFieldsAndWritesNumbersWithAPointInAnyLocale) {
    DecimalCommaLocale locale;
    if (!locale.active()) {
        GTEST_SKIP() << "no locale with a decimal comma installed";
    }
    KxSpreadSheet sheet;
    KxSpreadSheet::Table* a = sheet.addTable("Sizes, all");
    int name = a->addColumn("Name", KxSpreadSheet::STRING);
    int size = a->addColumn("Size", KxSpreadSheet::FLOAT);
    a->setNumRows(2);
    a->setString(name, 0, "say \"hi\"");
    a->setFloat(size, 0, 0.1f);
    a->setString(size, 1, "2.5");  // text into a number column is read as a number
    KxSpreadSheet::Table* b = sheet.addTable("Counts");
    b->addColumn("N", KxSpreadSheet::INT);
    b->setNumRows(1);
    b->setFloat(0, 0, 7.9f);

    const char* expected =
        "\"Sizes, all\"\nName,Size\n\"say \"\"hi\"\"\",0.1\n,2.5\n"
        "\nCounts\nN\n7\n";
    EXPECT_EQ(sheet.toCSV(), expected);
    TempDir dir;
    ASSERT_TRUE(sheet.exportCSV(dir.path("out.csv").c_str()));
    std::stringstream written;
    written << std::ifstream(dir.path("out.csv")).rdbuf();
    EXPECT_EQ(written.str(), expected);
    EXPECT_EQ(sheet.toText(), "Sizes, all\nName      Size\nsay \"hi\"  0.1\n          2.5\nCounts\nN\n7\n");
}
