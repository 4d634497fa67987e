// KxSpatialGraphView: attribute menus, port visibility and highlighting from statistics.
#include <algorithm>
#include <cstring>
#include <string>

#include "korva/data/KxSpreadSheet.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/view/KxSpatialGraphView.h"

namespace {

bool isNumeric(const GraphAttribute* a) {
    PrimType::Type t = a->getPrimType().getType();
    return t == PrimType::INT32 || t == PrimType::FLOAT32;
}

// Fills the menu with "Constant" and the attributes' names, keeping the
// chosen item by its label when it is still there ("Constant" otherwise).
void fillMenu(KxPortMenu& menu, const std::vector<const GraphAttribute*>& items) {
    std::string previous = menu.getItemLabel(menu.getValue());
    menu.setNumItems(static_cast<int>(items.size()) + 1);
    menu.setItemLabel(0, "Constant");
    int choice = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        menu.setItemLabel(static_cast<int>(i) + 1, items[i]->getName());
        if (choice == 0 && previous == items[i]->getName()) {
            choice = static_cast<int>(i) + 1;
        }
    }
    if (choice != menu.getValue()) {
        menu.setValue(choice);
    }
}

bool isLabelAttribute(const KxSpatialGraphInterface* g, const GraphAttribute* a) {
    return g && a && g->doHasLabel(a);
}

// Shows the colormap and the label-colouring choice for a chosen attribute:
// a label attribute offers the choice and shows the colormap only when it is
// chosen; any other attribute shows the colormap alone.
void showColoringPorts(bool constant, bool labels, KxPortColorList& color, KxPortColormap& colormap,
                       KxPortRadioBox& labelOptions, const KxSpatialGraphInterface* g) {
    if (constant) {
        color.show();
        colormap.hide();
        labelOptions.hide();
        return;
    }
    color.hide();
    if (!g) {
        return;
    }
    labelOptions.setVisible(labels);
    colormap.setVisible(!labels || labelOptions.getValue() == KxSpatialGraphView::COLORMAP);
}

// Calls select(i) for each of the first count elements whose value of the
// integer label attribute attr is the id of the label name.
template <class F>
void forEachLabelled(const KxSpatialGraphInterface* g, const GraphAttribute* attr, const String& name,
                     int count, F select) {
    if (!isLabelAttribute(g, attr) || attr->getPrimType().getType() != PrimType::INT32) {
        return;
    }
    int id = g->doGetLabelId(attr, name);
    const auto* values = static_cast<const EdgeVertexAttribute*>(attr);
    for (int i = 0; id >= 0 && i < std::min(count, values->size()); ++i) {
        if (values->getIntDataAtIdx(i) == id) {
            select(i);
        }
    }
}

}  // namespace

void KxSpatialGraphView::update() {
    updateMenus();
    updatePortVisibility();
}

void KxSpatialGraphView::updateMenus() {
    const KxSpatialGraphInterface* g = graph();
    nodeScaleItems_.clear();
    nodeColorItems_.clear();
    tubeScaleItems_.clear();
    segmentColorItems_.clear();
    for (int i = 0; g && i < g->doGetNumVertexAttributes(); ++i) {
        const GraphAttribute* a = g->doGetVertexAttribute(i);
        if (isNumeric(a)) {
            nodeScaleItems_.push_back(a);
        }
        nodeColorItems_.push_back(a);
    }
    for (int i = 0; g && i < g->doGetNumEdgeAttributes(); ++i) {
        segmentColorItems_.push_back(g->doGetEdgeAttribute(i));
    }
    for (int i = 0; g && i < g->doGetNumEdgePointAttributes(); ++i) {
        tubeScaleItems_.push_back(g->doGetEdgePointAttribute(i));
        segmentColorItems_.push_back(g->doGetEdgePointAttribute(i));
    }
    fillMenu(portNodeScale, nodeScaleItems_);
    fillMenu(portNodeColoring, nodeColorItems_);
    fillMenu(portTubeScale, tubeScaleItems_);
    fillMenu(portSegmentColoring, segmentColorItems_);
}

void KxSpatialGraphView::updatePortVisibility() {
    const KxSpatialGraphInterface* g = graph();
    bool nodes = portItemsToShow.getValue(NODES) != 0;
    for (KxPort* port : {static_cast<KxPort*>(&portNodeSeparator), static_cast<KxPort*>(&portNodeScale),
                         static_cast<KxPort*>(&portNodeScaleFactor), static_cast<KxPort*>(&portNodeColoring),
                         static_cast<KxPort*>(&portNodeColor), static_cast<KxPort*>(&portNodeColormap),
                         static_cast<KxPort*>(&portNodeLabelColoringOptions)}) {
        port->setVisible(nodes);
    }
    bool segments = portItemsToShow.getValue(SEGMENTS) != 0;
    portSegmentSeparator.setVisible(segments);
    portSegmentStyle.setVisible(segments);
    portTubeScale.setVisible(segments && portSegmentStyle.getValue(TUBES));
    portTubeScaleFactor.setVisible(segments && portSegmentStyle.getValue(TUBES));
    portSegmentWidth.setVisible(segments && portSegmentStyle.getValue(LINES));
    portPointSize.setVisible(segments && portSegmentStyle.getValue(POINTS));
    for (KxPort* port : {static_cast<KxPort*>(&portSegmentColor), static_cast<KxPort*>(&portSegmentColoring),
                         static_cast<KxPort*>(&portSegmentColormap),
                         static_cast<KxPort*>(&portSegmentLabelColoringOptions)}) {
        port->setVisible(segments);
    }
    if (nodes) {
        showColoringPorts(portNodeColoring.getValue() == 0, isLabelAttribute(g, nodeColorAttribute()),
                          portNodeColor, portNodeColormap, portNodeLabelColoringOptions, g);
    }
    if (!segments) {
        return;
    }
    // A label group is looked for on the edge attribute of the chosen name, then on the point attribute.
    const GraphAttribute* chosen = segmentColorAttribute();
    bool labels = false;
    if (g && chosen) {
        labels = isLabelAttribute(g, g->doFindEdgeAttribute(chosen->getName())) ||
                 isLabelAttribute(g, g->doFindEdgePointAttribute(chosen->getName()));
    }
    showColoringPorts(portSegmentColoring.getValue() == 0, labels, portSegmentColor, portSegmentColormap,
                      portSegmentLabelColoringOptions, g);
}

// The rows selected in the "Segment Statistics" table highlight their edges
// (by the "Segment ID" column); the rows selected in a per-label table (one
// named after a label group, with a "Label Name" column) highlight the
// vertices and edges that carry that label. The connection is dropped after.
void KxSpatialGraphView::highlightStatistics() {
    auto* sheet = portStatistics.getSource<KxSpreadSheet>();
    const KxSpatialGraphInterface* g = graph();
    const KxSpreadSheet::Table* segments = sheet ? sheet->findTable("Segment Statistics") : nullptr;
    if (!segments || !g) {
        return;
    }
    int idColumn = segments->findColumn("Segment ID");
    for (int r = 0; idColumn >= 0 && r < segments->getNumRows(); ++r) {
        int e = segments->getInt(idColumn, r);
        if (segments->isRowSelected(r) && e >= 0 && e < highlighted_.getNumEdges()) {
            highlighted_.selectEdge(e);
        }
    }
    for (int t = 0; t < sheet->getNumTables(); ++t) {
        const KxSpreadSheet::Table* table = sheet->getTable(t);
        int nameColumn = table->findColumn("Label Name");
        const GraphAttribute* vertexAttr = g->doFindVertexAttribute(table->getName());
        const GraphAttribute* edgeAttr = g->doFindEdgeAttribute(table->getName());
        for (int r = 0; nameColumn >= 0 && r < table->getNumRows(); ++r) {
            if (!table->isRowSelected(r)) {
                continue;
            }
            String name(table->getString(nameColumn, r));
            forEachLabelled(g, vertexAttr, name, highlighted_.getNumVertices(),
                            [this](int v) { highlighted_.selectVertex(v); });
            forEachLabelled(g, edgeAttr, name, highlighted_.getNumEdges(),
                            [this](int e) { highlighted_.selectEdge(e); });
        }
    }
    portStatistics.disconnect();
}
