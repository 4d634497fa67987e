#include "kxspatialgraph/view/KxRangeSetModuleImpl.h"

#include <cstring>

#include "korva/core/KxData.h"
#include "korva/modules/KxPort.h"
#include "kxspatialgraph/view/KxSpatialGraphView.h"

int KxRangeSetModuleImpl::getCurrentSet(const KxData* data, const KxPort* colormapPort) const {
    if (!data || !colormapPort || data != static_cast<const KxObject*>(view_->portData.getSource())) {
        return -1;
    }
    const char* name = colormapPort->getName();
    int r = std::strcmp(name, "nodeColormap") == 0 ? 0 : std::strcmp(name, "segmentColormap") == 0 ? 1 : 2;
    const KxPortMenu& menu = r == 0 ? view_->portNodeColoring : view_->portSegmentColoring;
    int m = menu.getValue();
    // Deliberate: the index is lowered only while the menu is at "Constant";
    // for a chosen attribute m stays its menu index, which counts "Constant"
    // too, and so names the candidate after it.
    if (menu.getNumItems() > 0 && std::strcmp(menu.getItemLabel(m), "Constant") == 0) {
        --m;
    }
    return r + 4 * m;
}
