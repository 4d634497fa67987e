#include "korva/data/KxSpreadSheet.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxSafeFile.h"

namespace {

std::string floatText(float value) {
    char buffer[32];
    std::to_chars_result r = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return std::string(buffer, r.ptr);
}

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

}  // namespace

void KxSpreadSheet::Table::selectRow(int r, bool on) {
    if (r >= 0 && r < numRows_) {
        selected_[static_cast<size_t>(r)] = on;
    }
}

void KxSpreadSheet::Table::setNumRows(int n) {
    numRows_ = std::max(n, 0);
    size_t rows = static_cast<size_t>(numRows_);
    selected_.assign(rows, false);
    for (Column& c : columns_) {
        switch (c.type) {
            case INT:
                c.ints.resize(rows, 0);
                break;
            case FLOAT:
                c.floats.resize(rows, 0.0f);
                break;
            case STRING:
                c.strings.resize(rows);
                break;
        }
    }
}

int KxSpreadSheet::Table::addColumn(const char* name, ColumnType type) {
    columns_.push_back(Column{name ? name : "", type, {}, {}, {}});
    setNumRows(numRows_);
    return getNumColumns() - 1;
}

int KxSpreadSheet::Table::findColumn(const char* name) const {
    for (int c = 0; c < getNumColumns(); ++c) {
        if (column(c).name == name) {
            return c;
        }
    }
    return -1;
}

void KxSpreadSheet::Table::setInt(int c, int r, int value) {
    Column& col = column(c);
    if (col.type == INT) {
        col.ints[static_cast<size_t>(r)] = value;
    } else if (col.type == FLOAT) {
        col.floats[static_cast<size_t>(r)] = static_cast<float>(value);
    } else {
        col.strings[static_cast<size_t>(r)] = std::to_string(value);
    }
}

void KxSpreadSheet::Table::setFloat(int c, int r, float value) {
    Column& col = column(c);
    if (col.type == INT) {
        col.ints[static_cast<size_t>(r)] = static_cast<int>(value);
    } else if (col.type == FLOAT) {
        col.floats[static_cast<size_t>(r)] = value;
    } else {
        col.strings[static_cast<size_t>(r)] = floatText(value);
    }
}

void KxSpreadSheet::Table::setString(int c, int r, const char* value) {
    Column& col = column(c);
    if (col.type == STRING) {
        col.strings[static_cast<size_t>(r)] = value ? value : "";
        return;
    }
    // Text that is no number gives 0, as an empty numeric cell.
    const char* text = value ? value : "";
    const char* end = text + std::strlen(text);
    if (col.type == INT) {
        int v = 0;
        std::from_chars(text, end, v);
        col.ints[static_cast<size_t>(r)] = v;
    } else {
        float v = 0.0f;
        std::from_chars(text, end, v);
        col.floats[static_cast<size_t>(r)] = v;
    }
}

std::string KxSpreadSheet::Table::getText(int c, int r) const {
    switch (column(c).type) {
        case INT:
            return std::to_string(getInt(c, r));
        case FLOAT:
            return floatText(getFloat(c, r));
        case STRING:
            break;
    }
    return getString(c, r);
}

bool KxSpreadSheet::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxSpreadSheet") == 0 || KxData::isOfType(typeName);
}

KxSpreadSheet::Table* KxSpreadSheet::findTable(const char* name) const {
    for (const auto& table : tables_) {
        if (std::strcmp(table->getName(), name) == 0) {
            return table.get();
        }
    }
    return nullptr;
}

KxSpreadSheet::Table* KxSpreadSheet::addTable(const char* name) {
    tables_.push_back(std::make_unique<Table>(name));
    return tables_.back().get();
}

std::string KxSpreadSheet::toCSV() const {
    std::string out;
    for (const auto& table : tables_) {
        if (!out.empty()) {
            out += "\n";
        }
        out += csvField(table->getName()) + "\n";
        for (int c = 0; c < table->getNumColumns(); ++c) {
            out += (c ? "," : "") + csvField(table->getColumnName(c));
        }
        out += "\n";
        for (int r = 0; r < table->getNumRows(); ++r) {
            for (int c = 0; c < table->getNumColumns(); ++c) {
                out += (c ? "," : "") + csvField(table->getText(c, r));
            }
            out += "\n";
        }
    }
    return out;
}

bool KxSpreadSheet::exportCSV(const char* filename) const {
    KxSafeFile file(filename, "CSV file");
    if (!file.open()) {
        return false;
    }
    file.write(toCSV());
    return file.commit();
}

std::string KxSpreadSheet::toText() const {
    std::string out;
    for (const auto& table : tables_) {
        out += std::string(table->getName()) + "\n";
        std::vector<size_t> widths;
        for (int c = 0; c < table->getNumColumns(); ++c) {
            size_t w = std::strlen(table->getColumnName(c));
            for (int r = 0; r < table->getNumRows(); ++r) {
                w = std::max(w, table->getText(c, r).size());
            }
            widths.push_back(w);
        }
        auto appendRow = [&](auto cellText) {
            std::string line;
            for (int c = 0; c < table->getNumColumns(); ++c) {
                std::string text = cellText(c);
                line +=
                    (c ? "  " : "") + text + std::string(widths[static_cast<size_t>(c)] - text.size(), ' ');
            }
            line.erase(line.find_last_not_of(' ') + 1);
            out += line + "\n";
        };
        appendRow([&](int c) { return std::string(table->getColumnName(c)); });
        for (int r = 0; r < table->getNumRows(); ++r) {
            appendRow([&](int c) { return table->getText(c, r); });
        }
    }
    return out;
}

KxData* KxSpreadSheet::duplicate() const {
    auto* copy = new KxSpreadSheet;
    for (const auto& table : tables_) {
        copy->tables_.push_back(std::make_unique<Table>(*table));
    }
    copy->parameters() = parameters();
    return copy;
}

void KxSpreadSheet::info(KxInfoTags& tags) const {
    KxData::info(tags);
    for (const auto& table : tables_) {
        tags.add("Table:", "%s (%d rows, %d columns)", table->getName(), table->getNumRows(),
                 table->getNumColumns());
    }
}

int KxSpreadSheet::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    if (std::strcmp(cmd, "print") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj(toText().c_str(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "getNumTables") == 0) {
        Tcl_SetObjResult(interp, Tcl_NewIntObj(getNumTables()));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "exportCSV") == 0) {
        if (argc != 3) {
            return KxCommandReply::usage(interp, "exportCSV file");
        }
        KxCommandReply::ErrorTap tap;
        return exportCSV(argv[2])
                   ? TCL_OK
                   : KxCommandReply::failWith(interp, tap, "Error: Cannot export the CSV file.");
    }
    if (std::strcmp(cmd, "getValue") == 0) {
        int r = -1;
        Table* table = argc == 5 ? findTable(argv[2]) : nullptr;
        int c = table ? table->findColumn(argv[3]) : -1;
        if (argc != 5) {
            return KxCommandReply::usage(interp, "getValue table column row");
        }
        if (c < 0 || Tcl_GetInt(interp, argv[4], &r) != TCL_OK || r < 0 || r >= table->getNumRows()) {
            return KxCommandReply::failf(interp, "Error: No cell (%s, %s, %s).", argv[2], argv[3], argv[4]);
        }
        Tcl_SetObjResult(interp, Tcl_NewStringObj(table->getText(c, r).c_str(), -1));
        return TCL_OK;
    }
    if (std::strcmp(cmd, "selectRows") == 0) {
        return parseSelectRows(interp, argc, argv);
    }
    return KxData::parse(interp, argc, argv);
}

int KxSpreadSheet::parseSelectRows(Tcl_Interp* interp, int argc, char** argv) {
    Table* table = argc >= 3 ? findTable(argv[2]) : nullptr;
    if (argc < 3) {
        return KxCommandReply::usage(interp, "selectRows table ?row ...?");
    }
    if (!table) {
        return KxCommandReply::failf(interp, "Error: No table \"%s\".", argv[2]);
    }
    std::vector<int> rows;
    for (int i = 3; i < argc; ++i) {
        int r = -1;
        if (Tcl_GetInt(interp, argv[i], &r) != TCL_OK || r < 0 || r >= table->getNumRows()) {
            return KxCommandReply::failf(interp, "Error: No row %s in table \"%s\".", argv[i], argv[2]);
        }
        rows.push_back(r);
    }
    for (int r = 0; r < table->getNumRows(); ++r) {
        table->selectRow(r, false);
    }
    for (int r : rows) {
        table->selectRow(r);
    }
    touch(NEW_PARAMETERS);
    fire();
    return TCL_OK;
}

void KxSpreadSheet::registerClass() {
    if (theClassRegistry->isRegistered("KxSpreadSheet")) {
        return;
    }
    theClassRegistry->registerClass("KxSpreadSheet", "korva",
                                    []() -> KxObject* { return new KxSpreadSheet; });
    theClassRegistry->registerCommand("KxSpreadSheet", "print", "print");
    theClassRegistry->registerCommand("KxSpreadSheet", "getNumTables", "getNumTables");
    theClassRegistry->registerCommand("KxSpreadSheet", "getValue", "getValue table column row");
    theClassRegistry->registerCommand("KxSpreadSheet", "exportCSV", "exportCSV file");
    theClassRegistry->registerCommand("KxSpreadSheet", "selectRows", "selectRows table ?row ...?");
}
