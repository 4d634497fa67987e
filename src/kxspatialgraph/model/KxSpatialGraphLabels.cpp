// Label-group operations of KxSpatialGraph. The label data lives in
// sub-bundles of the graph's parameters; the graph keeps one access object
// per registered group.

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxParamBundle.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

void KxSpatialGraph::deleteAllLabelGroups() {
    // Like deleteLabelGroup: the group's bundle leaves the parameters too, so
    // a group made later under the same name starts empty.
    labelGroups_.forEach([this](const char*, HierarchicalLabels* labels) {
        parameters().removeBundle(labels->getRootBundle());
        delete labels;
    });
    labelGroups_.clear();
}

void KxSpatialGraph::parametersReplaced() {
    labelGroups_.forEach([](const char*, HierarchicalLabels* labels) { delete labels; });
    labelGroups_.clear();
    for (Location loc : {VERTEX, EDGE, POINT}) {
        for (int i = 0; i < numAttributes(loc); ++i) {
            if (KxParamBundle* bundle = parameters().getBundle(attribute(loc, i)->getName())) {
                addExistingLabelGroup(bundle)->update();
            }
        }
    }
}

HierarchicalLabels* KxSpatialGraph::addNewLabelGroup(const char* name, bool edges, bool vertices,
                                                     bool points) {
    if (HierarchicalLabels* existing = getLabelGroup(name)) {
        return existing;
    }
    if (vertices) {
        addAttribute(name, VERTEX, PrimType::INT32, 1);
    }
    if (edges) {
        addAttribute(name, EDGE, PrimType::INT32, 1);
    }
    // A point attribute only for a group that has no vertex or edge attribute.
    if (points && !vertices && !edges && !findVertexAttribute(name) && !findEdgeAttribute(name)) {
        addAttribute(name, POINT, PrimType::INT32, 1);
    }
    KxParamBundle* bundle = parameters().getBundle(name);
    if (!bundle) {
        bundle = parameters().addBundle(name);
    }
    HierarchicalLabels* labels = addExistingLabelGroup(bundle);
    labels->update();
    return labels;
}

HierarchicalLabels* KxSpatialGraph::addExistingLabelGroup(KxParamBundle* bundle) {
    if (HierarchicalLabels* existing = getLabelGroup(bundle->getName())) {
        return existing;
    }
    HierarchicalLabels* labels = new HierarchicalLabels(bundle);
    labelGroups_.insert(bundle->getName(), labels);
    return labels;
}

void KxSpatialGraph::addLabelGroup(HierarchicalLabels* labels) {
    if (!labelGroups_.insert(labels->getLabelGroupName(), labels)) {
        delete labels;
    }
}

HierarchicalLabels* KxSpatialGraph::getLabelGroup(const char* name) const {
    HierarchicalLabels* labels = nullptr;
    return name && labelGroups_.lookup(name, labels) ? labels : nullptr;
}

HierarchicalLabels* KxSpatialGraph::getLabelGroup(const GraphAttribute* a) const {
    return a ? getLabelGroup(a->getName()) : nullptr;
}

int KxSpatialGraph::getLabelId(const GraphAttribute* a, const String& name) const {
    HierarchicalLabels* labels = getLabelGroup(a);
    return labels ? labels->getLabelIdFromName(name) : -1;
}

int KxSpatialGraph::getMaxLabelId(const GraphAttribute* a) const {
    HierarchicalLabels* labels = getLabelGroup(a);
    return labels ? labels->getMaxLabelId() : -1;
}

int KxSpatialGraph::getNumLabels(const GraphAttribute* a) const {
    HierarchicalLabels* labels = getLabelGroup(a);
    return labels ? labels->getNumLabels() : 0;
}

bool KxSpatialGraph::getLabelName(const GraphAttribute* a, int id, String& name) const {
    HierarchicalLabels* labels = getLabelGroup(a);
    return labels && labels->getLabelName(id, name);
}

bool KxSpatialGraph::getLabelColor(const GraphAttribute* a, int id, SbColor& color) const {
    HierarchicalLabels* labels = getLabelGroup(a);
    return labels && labels->getLabelColor(id, color);
}

void KxSpatialGraph::setLabelColor(const GraphAttribute* a, int id, const Color& color) {
    if (HierarchicalLabels* labels = getLabelGroup(a)) {
        labels->setLabelColor(id, color);
    }
}

int KxSpatialGraph::addLabel(const char* group, int parentId, const char* name, const SbColor& color) {
    HierarchicalLabels* labels = getLabelGroup(group);
    return labels ? labels->addLabel(parentId, name, color) : -1;
}

void KxSpatialGraph::relocateLabel(const char* group, int id, int targetId) {
    if (HierarchicalLabels* labels = getLabelGroup(group)) {
        labels->relocateLabel(id, targetId);
    }
}

bool KxSpatialGraph::relocateLabelGroup(const char* group, const char* targetGroup) {
    int from = parameters().indexOfBundle(group);
    int to = parameters().indexOfBundle(targetGroup);
    if (from < 0 || to < 0) {
        return false;
    }
    parameters().moveBundle(from, to);
    touch(NEW_PARAMETERS);
    return true;
}

void KxSpatialGraph::changeLabelGroupName(HierarchicalLabels* labels, const char* newName) {
    HierarchicalLabels* holder = getLabelGroup(newName);
    if (holder && holder != labels) {
        // Two groups under one name would lose one of them from the table.
        return;
    }
    String oldName = labels->getLabelGroupName();
    labelGroups_.remove(oldName);
    int rootId = 0;
    labels->getRootLabel(rootId);
    labels->setLabelName(rootId, newName);
    labelGroups_.insert(newName, labels);
    if (EdgeVertexAttribute* a = findVertexAttribute(oldName)) {
        a->setName(newName);
    }
    if (EdgeVertexAttribute* a = findEdgeAttribute(oldName)) {
        a->setName(newName);
    }
    touch(NEW_PARAMETERS);
}

void KxSpatialGraph::deleteLabelGroup(const char* name) {
    String group = name;  // name may belong to an object deleted below
    if (HierarchicalLabels* labels = getLabelGroup(group)) {
        delete labels;
        labelGroups_.remove(group);
    }
    parameters().removeBundle(group);
    if (GraphAttribute* a = findVertexAttribute(group)) {
        deleteAttribute(a);
    }
    if (GraphAttribute* a = findEdgeAttribute(group)) {
        deleteAttribute(a);
    }
    if (GraphAttribute* a = findEdgePointAttribute(group)) {
        deleteAttribute(a);
    }
}

int KxSpatialGraph::assignLabelIds(KxParamBundle* bundle, int firstId) {
    bundle->setInt("Id", firstId);
    int last = firstId;
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        last = assignLabelIds(bundle->getBundle(i), last + 1);
    }
    return last;
}

bool KxSpatialGraph::assignChildLabelId(KxParamBundle* parent, const char* childName, int id) {
    KxParamBundle* child = parent->getBundle(childName);
    if (!child) {
        theMsg->printf("Warning: label \"%s\" not found. Skipping child labels.", childName);
        return false;
    }
    child->setInt("Id", id);
    return true;
}
