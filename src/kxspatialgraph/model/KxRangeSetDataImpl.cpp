#include "kxspatialgraph/model/KxRangeSetDataImpl.h"

#include "korva/base/DArray.h"
#include "kxspatialgraph/model/GraphAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

namespace {

void appendSingleComponent(const KxSpatialGraph& graph, KxSpatialGraph::Location loc,
                           DArray<const GraphAttribute*>& candidates) {
    for (int i = 0; i < graph.numAttributes(loc); ++i) {
        const GraphAttribute* a = graph.attribute(loc, i);
        if (a->getNumDataVar() == 1) {
            candidates.append(a);
        }
    }
}

template <class T>
void valueRange(const GraphAttribute& a, float& min, float& max) {
    const T* values = static_cast<const T*>(a.dataPtr());
    min = max = static_cast<float>(values[0]);
    for (int i = 1; i < a.size(); ++i) {
        float v = static_cast<float>(values[i]);
        if (v < min) {
            min = v;
        } else if (v > max) {
            max = v;
        }
    }
}

}  // namespace

bool KxRangeSetDataImpl::getRangeSet(float& min, float& max, int index) const {
    if (index < 0) {
        return false;
    }
    DArray<const GraphAttribute*> candidates;
    if (index % 4 == 0) {
        appendSingleComponent(*graph_, KxSpatialGraph::VERTEX, candidates);
    } else {
        appendSingleComponent(*graph_, KxSpatialGraph::EDGE, candidates);
        appendSingleComponent(*graph_, KxSpatialGraph::POINT, candidates);
    }
    const int k = index / 4;
    if (k >= candidates.size() || candidates[k]->size() == 0) {
        return false;
    }
    const GraphAttribute& a = *candidates[k];
    if (a.getPrimType() == PrimType::FLOAT32) {
        valueRange<float>(a, min, max);
    } else if (a.getPrimType() == PrimType::INT32) {
        valueRange<int>(a, min, max);
    } else {
        return false;
    }
    return true;
}
