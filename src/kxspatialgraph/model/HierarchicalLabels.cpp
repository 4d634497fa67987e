#include "kxspatialgraph/model/HierarchicalLabels.h"

#include <algorithm>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxParamBundle.h"

HierarchicalLabels::HierarchicalLabels(KxParamBundle* root) : root_(root) {}

const char* HierarchicalLabels::getLabelGroupName() const {
    return root_->getName();
}

int HierarchicalLabels::idOf(const KxParamBundle* bundle) {
    int id = -1;
    bundle->findInt("Id", id);
    return id;
}

void HierarchicalLabels::update() {
    if (!root_->hasParam("Id")) {
        root_->setInt("Id", 0);
    }
    if (!root_->hasColor()) {
        root_->setColor(Color(0.0f, 0.0f, 0.0f));
    }
}

int HierarchicalLabels::addLabel(int parentId, const char* name, const SbColor& color) {
    KxParamBundle* parent = getLabelBundle(parentId);
    if (!parent) {
        return -1;
    }
    if (KxParamBundle* existing = parent->getBundle(name)) {
        existing->setColor(Color(color));
        return idOf(existing);
    }
    if (parent->level() >= KxParamBundle::kMaxDepth) {
        return -1;
    }
    int id = getMaxLabelId() + 1;
    KxParamBundle* label = parent->addBundle(name);
    label->setInt("Id", id);
    label->setColor(Color(color));
    return id;
}

KxParamBundle* HierarchicalLabels::getLabelBundle(KxParamBundle* bundle, int id) {
    int own = -1;
    if (bundle->findInt("Id", own) && own == id) {
        return bundle;
    }
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        if (KxParamBundle* found = getLabelBundle(bundle->getBundle(i), id)) {
            return found;
        }
    }
    return nullptr;
}

int HierarchicalLabels::getMaxLabelId(const KxParamBundle* bundle) {
    int max = idOf(bundle);
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        max = std::max(max, getMaxLabelId(bundle->getBundle(i)));
    }
    return max;
}

int HierarchicalLabels::getNumLabels(const KxParamBundle* bundle) {
    int n = 1;
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        n += getNumLabels(bundle->getBundle(i));
    }
    return n;
}

int HierarchicalLabels::getNumLabels(int id) const {
    const KxParamBundle* label = getLabelBundle(id);
    return label ? label->getNumBundles() : -1;
}

int HierarchicalLabels::getChildId(int id, int i) const {
    const KxParamBundle* label = getLabelBundle(id);
    if (!label || i < 0 || i >= label->getNumBundles()) {
        return -1;
    }
    return idOf(label->getBundle(i));
}

DArray<int> HierarchicalLabels::getChildIds(int id) const {
    DArray<int> ids;
    if (const KxParamBundle* label = getLabelBundle(id)) {
        for (int i = 0; i < label->getNumBundles(); ++i) {
            ids.append(idOf(label->getBundle(i)));
        }
    }
    return ids;
}

int HierarchicalLabels::getParentId(int id) const {
    const KxParamBundle* label = getLabelBundle(id);
    if (!label || label == root_ || !label->getParent()) {
        return -1;
    }
    return idOf(label->getParent());
}

void HierarchicalLabels::getRootLabel(int& id) const {
    id = idOf(root_);
}

bool HierarchicalLabels::isChild(int id, int ancestor) const {
    const KxParamBundle* label = getLabelBundle(id);
    if (!label) {
        return false;
    }
    for (const KxParamBundle* b = label; b != root_ && b->getParent(); b = b->getParent()) {
        if (idOf(b->getParent()) == ancestor) {
            return true;
        }
    }
    return false;
}

bool HierarchicalLabels::isDirectChild(int id, int parent) const {
    const KxParamBundle* label = getLabelBundle(id);
    return label && label != root_ && label->getParent() && idOf(label->getParent()) == parent;
}

bool HierarchicalLabels::getLabelName(int id, String& name) const {
    const KxParamBundle* label = getLabelBundle(id);
    if (!label) {
        return false;
    }
    name = label->getName();
    return true;
}

int HierarchicalLabels::findLabel(const KxParamBundle* bundle, const String& name) {
    if (name == bundle->getName()) {
        int id = -1;
        if (!bundle->findInt("Id", id)) {
            theMsg->printf("Error: Label %s has no Id!", name.getString());
        }
        return id;
    }
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        if (hasLabel(bundle->getBundle(i), name)) {
            return findLabel(bundle->getBundle(i), name);
        }
    }
    return -1;
}

bool HierarchicalLabels::hasLabel(const KxParamBundle* bundle, const String& name) {
    if (name == bundle->getName()) {
        return true;
    }
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        if (hasLabel(bundle->getBundle(i), name)) {
            return true;
        }
    }
    return false;
}

bool HierarchicalLabels::getLabelColor(int id, SbColor& color) const {
    const KxParamBundle* label = getLabelBundle(id);
    Color c;
    if (!label || !label->findColor(c)) {
        return false;
    }
    color = c;
    return true;
}

void HierarchicalLabels::setLabelColor(int id, const Color& color) {
    if (KxParamBundle* label = getLabelBundle(id)) {
        label->setColor(color);
    }
}

void HierarchicalLabels::setLabelName(int id, const String& name) {
    if (KxParamBundle* label = getLabelBundle(id)) {
        label->setName(name);
    }
}

void HierarchicalLabels::setLabelExpanded(int id, bool expanded) {
    if (KxParamBundle* label = getLabelBundle(id)) {
        label->setInt("Expanded", expanded ? 1 : 0);
    }
}

bool HierarchicalLabels::isLabelExpanded(int id) const {
    const KxParamBundle* label = getLabelBundle(id);
    int expanded = 0;
    return label && label->findInt("Expanded", expanded) && expanded != 0;
}

void HierarchicalLabels::relocateLabel(int id, int targetId) {
    KxParamBundle* label = getLabelBundle(id);
    KxParamBundle* target = getLabelBundle(targetId);
    if (!label || !target || label == target || label == root_ || target == root_ || isChild(targetId, id) ||
        target->level() + label->height() - 1 > KxParamBundle::kMaxDepth) {
        return;
    }
    KxParamBundle* parent = label->getParent();
    KxParamBundle* targetParent = target->getParent();
    int targetIndex = targetParent->indexOfBundle(target);
    if (parent == targetParent) {
        parent->moveBundle(parent->indexOfBundle(label), targetIndex);
        return;
    }
    parent->takeBundle(parent->indexOfBundle(label));
    targetParent->insertBundle(label);
    targetParent->moveBundle(targetParent->getNumBundles() - 1, targetIndex);
}

void HierarchicalLabels::removeLabel(int id, DArray<int>& removedIds) {
    KxParamBundle* label = getLabelBundle(id);
    if (!label || label == root_ || !label->getParent()) {
        return;
    }
    gatherSubBundleIds(label, removedIds);
    label->getParent()->removeBundle(label);
}

void HierarchicalLabels::removeChildLabels(int id) {
    KxParamBundle* label = getLabelBundle(id);
    while (label && label->getNumBundles() > 0) {
        label->removeBundle(label->getBundle(label->getNumBundles() - 1));
    }
}

void HierarchicalLabels::gatherSubBundleIds(const KxParamBundle* bundle, DArray<int>& ids) {
    ids.append(idOf(bundle));
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        gatherSubBundleIds(bundle->getBundle(i), ids);
    }
}

void HierarchicalLabels::duplicateAndInsertToParamBundle(KxParamBundle& target) const {
    target.insertBundle(root_->duplicate());
}

bool HierarchicalLabels::isConsistent(const KxParamBundle* bundle) {
    bool ok = true;
    if (!bundle->hasParam("Id")) {
        theMsg->printf("Error: label %s has no id.", bundle->getName());
        ok = false;
    }
    if (!bundle->hasColor()) {
        theMsg->printf("Error: label %s has no color.", bundle->getName());
        ok = false;
    }
    for (int i = 0; i < bundle->getNumBundles(); ++i) {
        ok = isConsistent(bundle->getBundle(i)) && ok;
    }
    return ok;
}
