#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "korva/base/Color.h"
#include "korva/base/HashTable.h"
#include "kxspatialgraph/formats/HocScanner.h"

class KxSpatialGraph;
class PointAttribute;

// The statement parser of the HOC morphology subset: "create" lists of
// sections, section selection (by "access", by name, by "name { ... }"
// blocks), "pt3dclear()", "pt3dadd(x, y, z, d)" and "connect a(x), b(y)";
// every other statement is an error. parse() collects the sections;
// takeGraph() turns them into a graph with one edge per section that has
// points, "thickness" per point, "topology" (section name) and "Ranks" per edge.
class HocParser {
public:
    HocParser(const char* text, size_t length, bool debug);
    ~HocParser();

    // Reads every statement. False after "Error reading file at line %d. Tag: %d"
    // on a syntax error or a reference to a section never created.
    bool parse();
    // After a successful parse: the graph, ranks numbered and consistency
    // checked (its error lines printed). The caller owns it.
    KxSpatialGraph* takeGraph();

    // The rest of a connect statement: "a ( x ) , b ( y )", each name with an
    // optional index. The last tag read, or -1 on a syntax error.
    int connect(std::string& nameA, double& positionA, std::string& nameB, double& positionB);
    // "( x , y , z , d )" into values; the last tag read, or -1 on a syntax error
    // or a value beyond float's range.
    int read4Vector(float values[4]);
    // "( )": 9, or -1 on a syntax error.
    int pt3dclear();

private:
    // All sections of one name: "create dend[12]" makes one array of 12.
    struct SectionArray {
        int count = 0;
        int label = 0;  // the name's "topology" label
    };
    // A section, made when a statement first names it.
    struct Section {
        int array = 0;
        int index = 0;
        bool isChild = false;
        std::vector<float> points;  // x, y, z, d per point
    };
    struct Block {
        int section;
        int nesting;
    };
    // A connect statement: child at childPosition to parent at parentPosition.
    struct Connect {
        int child;
        double childPosition;
        int parent;
        double parentPosition;
        int line;
    };

    int nextTag();
    int peekTag();
    int expect(int tag);
    bool fail(int tag);
    bool create();
    void addLabelBundle(const char* group, const char* name, int id, const Color& color);
    // The section an identifier token names; -1 when it was never created.
    int lookupSection(const std::string& reference);
    bool selectByName();
    void closeBlock();
    bool addPoint();
    bool connectStatement();
    // The 3-D point at position 0 or 1 of a section; null elsewhere or without points.
    const float* endPoint(int section, double position) const;
    void warnAboutConnectsOffTheEnds() const;

    HocScanner scanner_;
    bool debug_;
    int pending_ = -2;  // a tag read ahead, or -2
    int lastTag_ = 0;
    int current_ = -1;
    std::vector<Block> blocks_;
    std::vector<Connect> connects_;
    HashTable<std::string, int> arrayByName_;
    std::vector<SectionArray> arrays_;
    HashTable<int64_t, int> sectionByKey_;
    std::vector<Section> sections_;
    std::unique_ptr<KxSpatialGraph> graph_;
};
