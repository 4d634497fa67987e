#pragma once

class KxData;
class KxPort;
class KxSpatialGraphView;

// Tells the host's colormap editing which range set of the connected graph
// (see KxRangeSetDataImpl) a colormap port of a graph view shows.
class KxRangeSetModuleImpl {
public:
    explicit KxRangeSetModuleImpl(const KxSpatialGraphView* view) : view_(view) {}

    // -1 when data is null or not the view's graph. Otherwise r + 4 × m: r is
    // 0 for "nodeColormap", 1 for "segmentColormap", 2 for any other port; m
    // the index of the matching colouring menu, one less while it is at "Constant".
    int getCurrentSet(const KxData* data, const KxPort* colormapPort) const;

private:
    const KxSpatialGraphView* view_;
};
