#include "kxspatialgraph/analysis/KxSpatialGraphStats.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "korva/base/String.h"
#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxWorkArea.h"
#include "korva/data/KxSpreadSheet.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphSelectionInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

const String KxSpatialGraphStats::unlabeledName = "<unlabeled>";

namespace {

constexpr double kPi = 3.141592653589793;

void metricsWithThickness(const KxSpatialGraph* graph, const PointAttribute* thickness, int edge,
                          KxSpatialGraphStats::SegmentMetrics& m) {
    int n = 0;
    const Vec3f* p = graph->getEdgePoints(edge, n);
    if (n == 0) {
        return;
    }
    float radiusSum = thickness ? thickness->getFloatDataAtPoint(edge, 0) : 0.0f;
    float length = 0.0f;
    float volume = 0.0f;
    for (int i = 1; i < n; ++i) {
        float dx = p[i].x - p[i - 1].x;
        float dy = p[i].y - p[i - 1].y;
        float dz = p[i].z - p[i - 1].z;
        float d = std::sqrt(dx * dx + dy * dy + dz * dz);
        length += d;
        if (thickness) {
            double a = thickness->getFloatDataAtPoint(edge, i - 1);
            double b = thickness->getFloatDataAtPoint(edge, i);
            radiusSum += static_cast<float>(b);
            volume += static_cast<float>(static_cast<double>(d) * kPi / 3.0 * (a * a + a * b + b * b));
        }
    }
    m.length = length;
    m.volume = volume;
    m.meanRadius = radiusSum / static_cast<float>(n);
}

const PointAttribute* findThickness(const KxSpatialGraph* graph) {
    const PointAttribute* t = graph->findEdgePointAttribute("thickness");
    return t && t->getPrimType() == PrimType::FLOAT32 ? t : nullptr;
}

struct Accumulator {
    float sumLength = 0.0f;
    float sumMeanRadius = 0.0f;
    float totalLength = 0.0f;
    float totalVolume = 0.0f;
    int count = 0;
};

// One labelled edge attribute: its label names, accumulators per label id
// and a cursor over its integer values.
struct LabelColumn {
    std::string title;
    std::vector<String> names;
    std::vector<Accumulator> sums;
    const int* values = nullptr;
    int numValues = 0;
    int cursor = 0;
    int column = 0;
};

std::vector<LabelColumn> labelColumns(const KxSpatialGraph* graph) {
    std::vector<LabelColumn> columns;
    for (int i = 0; i < graph->getNumEdgeAttributes(); ++i) {
        const EdgeVertexAttribute* attr = graph->getEdgeAttribute(i);
        if (!graph->hasLabel(attr) || attr->getPrimType() != PrimType::INT32) {
            continue;
        }
        LabelColumn c;
        int maxId = graph->getMaxLabelId(attr);
        for (int id = 0; id <= maxId; ++id) {
            String name;
            graph->getLabelName(attr, id, name);
            c.names.push_back(name);
        }
        c.title = c.names.empty() ? std::string(attr->getName()) : c.names[0].std();
        c.sums.resize(c.names.size());
        c.values = static_cast<const int*>(attr->dataPtr());
        c.numValues = attr->size() * attr->getNumDataVar();
        columns.push_back(std::move(c));
    }
    return columns;
}

void addLabelTable(KxSpreadSheet& sheet, LabelColumn& c) {
    KxSpreadSheet::Table* table = sheet.addTable(c.title.c_str());
    if (!c.names.empty()) {
        c.names[0] = KxSpatialGraphStats::unlabeledName;
    }
    for (int id = static_cast<int>(c.sums.size()) - 1; id >= 0; --id) {
        if (c.sums[static_cast<size_t>(id)].count == 0) {
            c.sums.erase(c.sums.begin() + id);
            c.names.erase(c.names.begin() + id);
        }
    }
    int name = table->addColumn("Label Name", KxSpreadSheet::STRING);
    int meanLength = table->addColumn("Mean Length", KxSpreadSheet::FLOAT);
    int meanRadius = table->addColumn("Mean Radius", KxSpreadSheet::FLOAT);
    int totalLength = table->addColumn("Total Length", KxSpreadSheet::FLOAT);
    int totalVolume = table->addColumn("Total Volume", KxSpreadSheet::FLOAT);
    int count = table->addColumn("Number of Segments", KxSpreadSheet::INT);
    table->setNumRows(static_cast<int>(c.sums.size()));
    for (int r = 0; r < table->getNumRows(); ++r) {
        const Accumulator& a = c.sums[static_cast<size_t>(r)];
        float n = static_cast<float>(a.count);
        table->setString(name, r, c.names[static_cast<size_t>(r)]);
        table->setFloat(meanLength, r, a.sumLength / n);
        table->setFloat(meanRadius, r, a.sumMeanRadius / n);
        table->setFloat(totalLength, r, a.totalLength);
        table->setFloat(totalVolume, r, a.totalVolume);
        table->setInt(count, r, a.count);
    }
}

std::vector<int> selectedEdges(const KxSpatialGraph* graph, const SpatialGraphSelection* selection) {
    bool all = !selection || selection->isEmpty();
    std::vector<int> edges;
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        if (all || (e < selection->getNumEdges() && selection->isSelectedEdge(e))) {
            edges.push_back(e);
        }
    }
    return edges;
}

}  // namespace

KxSpatialGraphStats::KxSpatialGraphStats()
    : KxCompModule({"KxSpatialGraphInterface"}),
      portSelection(this, "SpatialGraphSelection", "Selection", {"KxSpatialGraphSelectionInterface"}),
      portDoIt(this, "doIt", "Action") {
    portSelection.hide();
    setCreateButton(&portDoIt);
}

bool KxSpatialGraphStats::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxSpatialGraphStats") == 0 || KxCompModule::isOfType(typeName);
}

void KxSpatialGraphStats::calcSegmentMetrics(const KxSpatialGraph* graph, int edge, SegmentMetrics& m) {
    metricsWithThickness(graph, findThickness(graph), edge, m);
}

void KxSpatialGraphStats::computeTables(const KxSpatialGraph* graph, const SpatialGraphSelection* selection,
                                        KxSpreadSheet& sheet) {
    std::vector<int> edges = selectedEdges(graph, selection);
    std::vector<LabelColumn> labels = labelColumns(graph);
    KxSpreadSheet::Table* table = sheet.addTable("Segment Statistics");
    int id = table->addColumn("Segment ID", KxSpreadSheet::INT);
    int length = table->addColumn("Length", KxSpreadSheet::FLOAT);
    int radius = table->addColumn("Mean Radius", KxSpreadSheet::FLOAT);
    int volume = table->addColumn("Volume", KxSpreadSheet::FLOAT);
    for (LabelColumn& c : labels) {
        c.column = table->addColumn(c.title.c_str(), KxSpreadSheet::STRING);
    }
    table->setNumRows(static_cast<int>(edges.size()));
    const PointAttribute* thickness = findThickness(graph);
    theWorkArea->startWorking("Computing segment statistics ...");
    SegmentMetrics m;
    for (int r = 0; r < table->getNumRows(); ++r) {
        int e = edges[static_cast<size_t>(r)];
        metricsWithThickness(graph, thickness, e, m);
        table->setInt(id, r, e);
        table->setFloat(length, r, m.length);
        table->setFloat(radius, r, m.meanRadius);
        table->setFloat(volume, r, m.volume);
        for (LabelColumn& c : labels) {
            // Deliberate: the cursor moves once per listed edge and is not
            // placed at the edge's index, so with a partial selection the
            // k-th listed edge shows the k-th edge's label.
            int v = c.cursor < c.numValues ? c.values[c.cursor] : 0;
            ++c.cursor;
            // A value without an accumulator (negative, or above the group's
            // largest id) has no label: it counts as unlabelled.
            bool labelled = v > 0 && v < static_cast<int>(c.sums.size());
            Accumulator& a = c.sums[labelled ? static_cast<size_t>(v) : 0];
            table->setString(c.column, r, labelled ? c.names[static_cast<size_t>(v)] : unlabeledName);
            a.sumLength += m.length;
            a.sumMeanRadius += m.meanRadius;
            a.totalLength += m.length;
            a.totalVolume += m.volume;
            a.count += 1;
        }
        if ((r & 0xffff) == 0) {
            theWorkArea->setProgressValue(static_cast<float>(r) / static_cast<float>(table->getNumRows()));
        }
    }
    for (LabelColumn& c : labels) {
        addLabelTable(sheet, c);
    }
    theWorkArea->stopWorking();
}

void KxSpatialGraphStats::compute() {
    auto* graph = portData.getSource<KxSpatialGraph>();
    if (!portDoIt.wasHit() || !graph) {
        return;
    }
    auto* selectionSource = static_cast<KxSpatialGraphSelectionInterface*>(
        portSelection.getSourceInterface("KxSpatialGraphSelectionInterface"));
    const SpatialGraphSelection* selection = selectionSource ? selectionSource->getSelection() : nullptr;
    auto* sheet = dynamic_cast<KxSpreadSheet*>(getReusableResult("KxSpreadSheet"));
    if (sheet) {
        sheet->clear();
    } else {
        sheet = new KxSpreadSheet;
        sheet->setLabel(makeResultLabel("statistics").c_str());
    }
    computeTables(graph, selection, *sheet);
    setResult(sheet);
    sheet->touch(KxData::NEW_DATA);
    sheet->fire();
}

void KxSpatialGraphStats::registerClass() {
    registerCreatingClass("KxSpatialGraphStats", "kxspatialgraph",
                          []() -> KxObject* { return new KxSpatialGraphStats; });
}
