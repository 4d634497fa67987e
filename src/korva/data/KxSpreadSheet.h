#pragma once

#include <memory>
#include <string>
#include <vector>

#include "korva/core/KxData.h"

// Named tables of typed columns (integer, float or text), e.g. the results
// of a statistics module. Every column of a table has the table's row
// count. Printable (print, as aligned text) and exportable as CSV; numbers
// are written locale-independently. Console: print, getNumTables,
// getValue TABLE COLUMN ROW, exportCSV FILE, selectRows TABLE ?ROW ...?
// (the rows chosen in the sheet's dialog; none deselects all, then fires).
class KxSpreadSheet : public KxData {
public:
    enum ColumnType { INT, FLOAT, STRING };

    class Table {
    public:
        explicit Table(const char* name) : name_(name ? name : "") {}

        const char* getName() const { return name_.c_str(); }
        int getNumRows() const { return numRows_; }
        // Rows added to the columns are 0 or empty; rows removed are lost.
        void setNumRows(int n);
        int getNumColumns() const { return static_cast<int>(columns_.size()); }
        // Appends a column with getNumRows() empty cells; answers its index.
        int addColumn(const char* name, ColumnType type);
        const char* getColumnName(int c) const { return column(c).name.c_str(); }
        ColumnType getColumnType(int c) const { return column(c).type; }
        int findColumn(const char* name) const;

        // Cells by column and row; the setters convert to the column's type.
        void setInt(int c, int r, int value);
        void setFloat(int c, int r, float value);
        void setString(int c, int r, const char* value);
        int getInt(int c, int r) const { return column(c).ints[static_cast<size_t>(r)]; }
        float getFloat(int c, int r) const { return column(c).floats[static_cast<size_t>(r)]; }
        const char* getString(int c, int r) const {
            return column(c).strings[static_cast<size_t>(r)].c_str();
        }
        // A cell as text: integers in decimal, floats in their shortest exact form.
        std::string getText(int c, int r) const;
        // Rows the user selected in the sheet's dialog (or with selectRows);
        // setNumRows deselects every row.
        void selectRow(int r, bool on = true);
        bool isRowSelected(int r) const {
            return r >= 0 && r < numRows_ && selected_[static_cast<size_t>(r)];
        }

    private:
        struct Column {
            std::string name;
            ColumnType type;
            std::vector<int> ints;
            std::vector<float> floats;
            std::vector<std::string> strings;
        };
        const Column& column(int c) const { return columns_[static_cast<size_t>(c)]; }
        Column& column(int c) { return columns_[static_cast<size_t>(c)]; }

        std::string name_;
        int numRows_ = 0;
        std::vector<Column> columns_;
        std::vector<bool> selected_;
    };

    const char* getTypeName() const override { return "KxSpreadSheet"; }
    bool isOfType(const char* typeName) const override;

    int getNumTables() const { return static_cast<int>(tables_.size()); }
    Table* getTable(int i) const { return tables_[static_cast<size_t>(i)].get(); }
    Table* findTable(const char* name) const;
    // Appends an empty table (names need not be unique).
    Table* addTable(const char* name);
    // Removes every table.
    void clear() { tables_.clear(); }

    // Every table as CSV: a line with the table's name, the header, the rows,
    // and an empty line between tables. Fields with a comma, quote or line
    // break are quoted.
    std::string toCSV() const;
    // Writes toCSV() to filename (an old file survives a failure); false after an "Error: " line.
    bool exportCSV(const char* filename) const;
    // Every table as aligned text columns under its name.
    std::string toText() const;

    KxData* duplicate() const override;
    void info(KxInfoTags& tags) const override;
    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    static void registerClass();

private:
    int parseSelectRows(Tcl_Interp* interp, int argc, char** argv);

    std::vector<std::unique_ptr<Table>> tables_;
};
