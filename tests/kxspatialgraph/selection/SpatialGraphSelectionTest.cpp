#include "kxspatialgraph/selection/SpatialGraphSelection.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

namespace {

SpatialGraphPoint pt(int edge, int point) {
    return SpatialGraphPoint(edge, point);
}

// One line per kind, e.g. "V 0 31 | E 33 | A 2 | P 1:1 0:3": selected vertices
// and edges, edges with all points selected, then the listed points in order.
// A '?' marks an index that getSelectedVertex/-Edge names differently, "#n" a
// count that differs from the listed ones.
std::string listed(const char* tag, int size, int count, const std::function<bool(int)>& isSelected,
                   const std::function<int(int)>& nth) {
    std::string out = tag;
    int k = 0;
    for (int i = 0; i < size; ++i) {
        if (isSelected(i)) {
            out += " " + std::to_string(i) + (nth && nth(k) != i ? "?" : "");
            ++k;
        }
    }
    return k == count ? out : out + " #" + std::to_string(count);
}

std::string contents(const SpatialGraphSelection& s) {
    std::string out =
        listed(
            "V", s.getNumVertices(), s.getNumSelectedVertices(), [&](int v) { return s.isSelectedVertex(v); },
            [&](int k) { return s.getSelectedVertex(k); }) +
        listed(
            " | E", s.getNumEdges(), s.getNumSelectedEdges(), [&](int e) { return s.isSelectedEdge(e); },
            [&](int k) { return s.getSelectedEdge(k); }) +
        listed(
            " | A", s.getNumEdges(), s.getNumEdgesWithAllPointsSelected(),
            [&](int e) { return s.allPointsOnEdgeSelected(e); }, nullptr) +
        " | P";
    for (int i = 0; i < s.getNumSelectedPoints(); ++i) {
        out += " " + std::to_string(s.getSelectedPoint(i).edgeNum) + ":" +
               std::to_string(s.getSelectedPoint(i).pointNum);
    }
    return out;
}

TEST(SpatialGraphSelectionTest, GetSelectedCountsAcrossWords) {
    SpatialGraphSelection s(100, 100);
    EXPECT_EQ(s.getSelectedEdge(0), -1);
    EXPECT_EQ(s.getSelectedVertex(0), -1);
    for (int v : {0, 31, 32, 63, 64, 99}) {
        s.selectVertex(v);
    }
    s.selectEdge(33);
    EXPECT_EQ(contents(s), "V 0 31 32 63 64 99 | E 33 | A | P");
    EXPECT_EQ(s.getSelectedVertex(6), -1);
    EXPECT_EQ(s.getSelectedVertex(-1), -1);
    EXPECT_EQ(s.getSelectedEdge(1), -1);
    // Shrinking drops the bits past the new sizes; growing again adds clear bits.
    s.selectAllPointsOnEdge(33);
    s.resize(40, 10);
    s.resize(100, 100);
    EXPECT_EQ(contents(s), "V 0 31 32 | E | A | P");
    EXPECT_TRUE(s.isSameSize(SpatialGraphSelection(100, 100)));
    s.toggleAll();
    EXPECT_EQ(s.getNumSelectedVertices(), 97);
    EXPECT_EQ(s.getNumSelectedEdges(), 100);
}

TEST(SpatialGraphSelectionTest, PointListAndAllPointsBitsAreIndependent) {
    SpatialGraphSelection s(4, 4);
    s.selectAllPointsOnEdge(2);
    EXPECT_TRUE(s.isPointSelected(pt(2, 5)));
    EXPECT_FALSE(s.isPointSelected(pt(1, 0)));
    EXPECT_EQ(contents(s), "V | E | A 2 | P");

    // Duplicates are kept; a toggle removes only the first occurrence.
    s.selectPoint(pt(1, 1));
    s.selectPoint(pt(0, 3));
    s.selectPoint(pt(1, 1));
    EXPECT_EQ(contents(s), "V | E | A 2 | P 1:1 0:3 1:1");
    s.togglePoint(pt(1, 1));
    EXPECT_EQ(contents(s), "V | E | A 2 | P 0:3 1:1");
    EXPECT_TRUE(s.isPointSelected(pt(1, 1)));
    s.togglePoint(pt(1, 1));
    EXPECT_FALSE(s.isPointSelected(pt(1, 1)));

    // Toggling ignores the all-points bit: the point is listed as well.
    s.togglePoint(pt(2, 0));
    EXPECT_EQ(contents(s), "V | E | A 2 | P 0:3 2:0");
    // Toggling all flips vertices and edges (none past the sizes), keeps the
    // all-points bits and drops the listed points.
    s.selectEdge(1);
    s.toggleAll();
    EXPECT_EQ(contents(s), "V 0 1 2 3 | E 0 2 3 | A 2 | P");
}

TEST(SpatialGraphSelectionTest, SelectingAndDeselectingAllPoints) {
    SpatialGraphSelection s(3, 5);
    s.selectPoint(pt(0, 1));
    s.selectAllPoints();
    EXPECT_EQ(contents(s), "V | E | A 0 1 2 3 4 | P");
    EXPECT_TRUE(s.isPointSelected(pt(4, 100)));

    s.selectPoint(pt(0, 1));
    s.deselectAllPoints();
    EXPECT_EQ(contents(s), "V | E | A | P");
    EXPECT_FALSE(s.isPointSelected(pt(4, 0)));
    // The all-points bits were shrunk to nothing, so the sizes now differ.
    EXPECT_FALSE(s.isSameSize(SpatialGraphSelection(3, 5)));
    s.selectAllPointsOnEdge(4);
    EXPECT_TRUE(s.isSameSize(SpatialGraphSelection(3, 5)));
    EXPECT_EQ(contents(s), "V | E | A 4 | P");

    SpatialGraphSelection edges(3, 5);
    edges.selectEdge(1);
    edges.selectEdge(3);
    s.selectAllPointsOnEdgesFromSelection(edges);
    EXPECT_EQ(contents(s), "V | E | A 1 3 | P");

    SpatialGraphSelection copy(3, 5);
    copy.selectVertex(0);
    s.selectPoint(pt(2, 2));
    copy.copyPointSelection(s);
    EXPECT_EQ(contents(copy), "V 0 | E | A 1 3 | P 2:2");
}

// A 4 x 4 selection of the listed vertices, edges, all-points edges and points.
SpatialGraphSelection made(std::initializer_list<int> vertices, std::initializer_list<int> edges,
                           std::initializer_list<int> allPoints,
                           std::initializer_list<SpatialGraphPoint> points) {
    SpatialGraphSelection s(4, 4);
    for (int v : vertices) {
        s.selectVertex(v);
    }
    for (int e : edges) {
        s.selectEdge(e);
    }
    for (int e : allPoints) {
        s.selectAllPointsOnEdge(e);
    }
    for (const SpatialGraphPoint& p : points) {
        s.selectPoint(p);
    }
    return s;
}

TEST(SpatialGraphSelectionTest, SetOperationsCombineBitsAndPointLists) {
    SpatialGraphSelection a = made({0, 1}, {1, 2}, {1, 3}, {pt(0, 1), pt(1, 0), pt(0, 1), pt(2, 0)});
    const SpatialGraphSelection b = made({1, 3}, {0, 2}, {2, 3}, {pt(0, 1), pt(1, 0), pt(3, 0)});
    SpatialGraphSelection sum = a;
    sum.addSelection(b);
    EXPECT_EQ(contents(sum), "V 0 1 3 | E 0 1 2 | A 1 2 3 | P 0:1 1:0 0:1 2:0 0:1 1:0 3:0");

    // Every listed copy of other's points goes; 1:0 stays selected through edge 1's all-points bit.
    SpatialGraphSelection difference = a;
    difference.subtractSelection(b);
    EXPECT_EQ(contents(difference), "V 0 | E 1 | A 1 | P 2:0");
    EXPECT_TRUE(difference.isPointSelected(pt(1, 0)));
    EXPECT_FALSE(difference.isPointSelected(pt(0, 1)));

    // Only points listed in both stay: other's all-points bit on edge 2 does not keep 2:0.
    SpatialGraphSelection viaAnd = a;
    SpatialGraphSelection& result = viaAnd & b;
    EXPECT_EQ(&result, &viaAnd);
    a &= b;
    EXPECT_EQ(a, viaAnd);
    EXPECT_EQ(contents(a), "V 1 | E 2 | A 3 | P 0:1 1:0 0:1");

    // All-points bits shrunk by deselectAllPoints still receive other's bits.
    SpatialGraphSelection c(4, 4);
    c.deselectAllPoints();
    c.addSelection(b);
    EXPECT_EQ(contents(c), "V 1 3 | E 0 2 | A 2 3 | P 0:1 1:0 3:0");
    EXPECT_TRUE(c.isSameSize(b));
}

TEST(SpatialGraphSelectionTest, EqualityIgnoresPointOrderButNotSizesOrCounts) {
    SpatialGraphSelection a(3, 3), b(3, 3);
    a.selectPoint(pt(0, 1));
    a.selectPoint(pt(2, 0));
    b.selectPoint(pt(2, 0));
    b.selectPoint(pt(0, 1));
    EXPECT_EQ(a, b);

    b.selectPoint(pt(0, 1));
    EXPECT_NE(a, b);
    a.selectPoint(pt(2, 0));
    // Equal lengths and every entry of a occurs in b: equal, as defined.
    EXPECT_EQ(a, b);

    SpatialGraphSelection c = a;
    c.selectAllPointsOnEdge(1);
    EXPECT_NE(a, c);
    c = a;
    c.selectEdge(0);
    EXPECT_NE(a, c);
    EXPECT_NE(SpatialGraphSelection(3, 3), SpatialGraphSelection(3, 4));
    EXPECT_NE(SpatialGraphSelection(2, 3), SpatialGraphSelection(3, 3));
}

// Turns bytes into the two-letter text of a serialised selection.
std::string letters(const std::vector<unsigned char>& bytes) {
    std::string text;
    for (unsigned char b : bytes) {
        text += static_cast<char>('A' + (b >> 4));
        text += static_cast<char>('A' + (b & 15));
    }
    return text;
}

TEST(SpatialGraphSelectionTest, SerializeWritesGoldenStrings) {
    // Edge bits 0 and 33 of 40: words 0x00000001, 0x00000002, i.e. the
    // big-endian bytes 00 00 00 01 00 00 00 02. zlib at its default level
    // compresses them to 78 9c | 63 60 60 60 64 60 60 60 02 00 | 00 0f 00 04,
    // the last four bytes being the Adler-32 checksum (sum 4, sum of sums 15).
    SpatialGraphSelection s(3, 40);
    s.selectEdge(0);
    s.selectEdge(33);
    s.selectVertex(1);
    s.selectPoint(pt(0, 0));  // points are not written
    String edges, vertices;
    s.serialize(edges, vertices);
    EXPECT_STREQ(edges, "HIJMGDGAGAGAGEGAGAGAACAAAAAPAAAE");
    // Vertex bit 1 of 3: the bytes 00 00 00 02.
    EXPECT_STREQ(vertices, "HIJMGDGAGAGAACAAAAAGAAAD");

    // A set without words compresses the empty input.
    SpatialGraphSelection none;
    none.serialize(edges, vertices);
    EXPECT_STREQ(edges, "HIJMADAAAAAAAAAB");
    EXPECT_STREQ(vertices, "HIJMADAAAAAAAAAB");
}

TEST(SpatialGraphSelectionTest, DeserializeReadsHandMadeStreamsInBothCases) {
    // A zlib stream with one stored (uncompressed) block holding the bytes
    // 00 00 00 05: header 78 01, block header 01, length 0004 and its
    // complement fffb (little-endian), the data, then Adler-32 = 0x00090006.
    const std::string word5 =
        letters({0x78, 0x01, 0x01, 0x04, 0x00, 0xfb, 0xff, 0x00, 0x00, 0x00, 0x05, 0x00, 0x09, 0x00, 0x06});
    ASSERT_EQ(word5, "HIABABAEAAPLPPAAAAAAAFAAAJAAAG");
    std::string lower = word5;
    for (char& c : lower) {
        c = static_cast<char>(c - 'A' + 'a');
    }

    SpatialGraphSelection s(20, 10);
    s.selectEdge(9);
    s.deserialize(word5.c_str(), lower.c_str());
    EXPECT_EQ(contents(s), "V 0 2 | E 0 2 | A | P");

    // An odd trailing character is ignored.
    SpatialGraphSelection odd(3, 3);
    odd.deserialize((word5 + "X").c_str(), (lower + "q").c_str());
    EXPECT_EQ(contents(odd), "V 0 2 | E 0 2 | A | P");
}

// Damaged or oversized data selects the whole set; a set without edges reads
// nothing; shorter data fills the first words and clears the rest.
TEST(SpatialGraphSelectionTest, DeserializeRefusesWhatDoesNotFit) {
    SpatialGraphSelection source(40, 40);
    source.selectEdge(3);
    String edges, vertices, bigEdges, bigVertices;
    source.serialize(edges, vertices);
    SpatialGraphSelection(40, 100).serialize(bigEdges, bigVertices);
    std::string flipped = edges.std();
    flipped[6] = flipped[6] == 'A' ? 'B' : 'A';
    const std::string vertex1 = "HIJMGDGAGAGAACAAAAAGAAAD";  // 3 vertices, vertex 1 selected

    struct Case {
        const char* name;
        int numVertices, numEdges;
        bool allSelectedBefore;
        std::string edges, vertices;
        int selectedEdges, selectedVertices;
    };
    const Case cases[] = {
        {"not compressed data", 40, 40, false, "HELLOWORLD", vertices.std(), 40, 0},
        {"empty", 40, 40, false, "", vertices.std(), 40, 0},
        {"truncated", 40, 40, false, edges.std().substr(0, edges.length() - 4), vertices.std(), 40, 0},
        {"checksum broken", 40, 40, false, flipped, vertices.std(), 40, 0},
        {"more data than the set holds", 40, 10, false, bigEdges.std(), "QQQQ", 10, 40},
        {"no edges: vertices not read", 4, 0, true, "garbage", vertex1, 0, 4},
        {"no vertices", 0, 4, false, "garbage", "garbage", 4, 0},
        {"short data clears the remaining words", 3, 64, true, vertex1, vertex1, 1, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SpatialGraphSelection s(c.numVertices, c.numEdges);
        if (c.allSelectedBefore) {
            s.selectAllVerticesAndEdges();
        }
        s.deserialize(c.edges.c_str(), c.vertices.c_str());
        EXPECT_EQ(s.getNumSelectedEdges(), c.selectedEdges);
        EXPECT_EQ(s.getNumSelectedVertices(), c.selectedVertices);
    }

    SpatialGraphSelection nullStrings(5, 5);
    nullStrings.deserialize(nullptr, nullptr);
    EXPECT_EQ(nullStrings.getNumSelectedEdges(), 5);
    EXPECT_EQ(nullStrings.getNumSelectedVertices(), 5);
}

}  // namespace
