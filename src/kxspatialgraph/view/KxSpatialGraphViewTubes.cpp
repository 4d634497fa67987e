// KxSpatialGraphView: the tube picture of batch rendering, set up through the ports.
#include <algorithm>

#include <Inventor/nodes/SoSeparator.h>

#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/view/KxSpatialGraphView.h"

namespace {

// The menu item of attr (0, "Constant", when it is not listed).
int menuItemOf(const std::vector<const GraphAttribute*>& items, const GraphAttribute* attr) {
    auto found = std::find(items.begin(), items.end(), attr);
    return attr && found != items.end() ? static_cast<int>(found - items.begin()) + 1 : 0;
}

// Sets a slider, raising its maximum when the value lies above it.
void setWithRoom(KxPortFloatSlider& slider, float value) {
    slider.setMinMax(slider.getMinValue(), std::max(slider.getMaxValue(), value));
    slider.setValue(value);
}

}  // namespace

SoSeparator* KxSpatialGraphView::showAsTubes(KxSpatialGraph* graph, const GraphAttribute* colorAttr,
                                             const GraphAttribute* radii, float scale, float nodeRadius) {
    portData.connect(graph);
    fire();  // fills the attribute menus
    portItemsToShow.setValue(NODES, nodeRadius > 0.0f ? 1 : 0);
    portSegmentStyle.setValue(LINES, 0);
    portSegmentStyle.setValue(TUBES, 1);
    portTubeScale.setValue(menuItemOf(tubeScaleItems_, radii));
    setWithRoom(portTubeScaleFactor, scale);
    portSegmentColoring.setValue(menuItemOf(segmentColorItems_, colorAttr));
    // The sphere set draws radius × 0.2.
    setWithRoom(portNodeScaleFactor, 5.0f * nodeRadius);
    fire();
    return scene_;
}
