#pragma once

#include <Inventor/SbColor.h>

#include "korva/base/Color.h"
#include "korva/base/DArray.h"
#include "korva/base/String.h"

class KxParamBundle;

// Access object over one label group: a tree of parameter bundles whose root
// is the group bundle (a sub-bundle of the graph's parameters, named like the
// group). Every label is a bundle named by the label's name with an int "Id"
// (unique in the group), a colour ("color") and optionally "Expanded"; the
// order of sub-bundles is the order of the children. The bundle is not owned.
// Ids are ints; -1 means none. Lookups of missing ids or names answer null,
// -1 or false without messages (findLabel excepted).
class HierarchicalLabels {
public:
    explicit HierarchicalLabels(KxParamBundle* root);

    const char* getLabelGroupName() const;
    KxParamBundle* getRootBundle() const { return root_; }
    // Gives the root "Id" 0 and colour (0, 0, 0) where they are missing.
    void update();

    // Adds a child label under parentId and returns its id (max id + 1); if
    // the parent already has a child of that name, only its colour changes and
    // its id is returned. -1 if the parent does not exist or a new label would
    // nest deeper than KxParamBundle::kMaxDepth.
    int addLabel(int parentId, const char* name, const SbColor& color);

    // Depth-first search from bundle for the bundle whose "Id" is id; null if none.
    static KxParamBundle* getLabelBundle(KxParamBundle* bundle, int id);
    KxParamBundle* getLabelBundle(int id) const { return getLabelBundle(root_, id); }
    // Largest "Id" in the subtree, -1 if there is none.
    int getMaxLabelId() const { return getMaxLabelId(root_); }
    static int getMaxLabelId(const KxParamBundle* bundle);
    // Label bundles in the tree, the root (or the given bundle) counted as one.
    int getNumLabels() const { return getNumLabels(root_); }
    static int getNumLabels(const KxParamBundle* bundle);
    // Direct children of label id; -1 if there is no such label.
    int getNumLabels(int id) const;
    int getChildId(int id, int i) const;
    DArray<int> getChildIds(int id) const;
    // -1 for the root or a missing label.
    int getParentId(int id) const;
    void getRootLabel(int& id) const;
    // Whether ancestor lies on the path from id up to the root (id itself excluded).
    bool isChild(int id, int ancestor) const;
    bool isDirectChild(int id, int parent) const;

    bool getLabelName(int id, String& name) const;
    int getLabelIdFromName(const String& name) const { return findLabel(root_, name); }
    // Id of the first label named name in the subtree (bundle included); -1 if
    // none. Prints "Error: Label %s has no Id!" when the bundle has no "Id".
    static int findLabel(const KxParamBundle* bundle, const String& name);
    bool hasLabel(const String& name) const { return hasLabel(root_, name); }
    static bool hasLabel(const KxParamBundle* bundle, const String& name);

    // False if the label or its colour is missing.
    bool getLabelColor(int id, SbColor& color) const;
    void setLabelColor(int id, const Color& color);
    void setLabelName(int id, const String& name);
    void setLabelExpanded(int id, bool expanded);
    bool isLabelExpanded(int id) const;

    // Moves label id (with its subtree and id) to the place of targetId.
    // Nothing happens if either is missing, target lies inside the moved
    // subtree or the subtree would nest deeper than KxParamBundle::kMaxDepth.
    void relocateLabel(int id, int targetId);
    // Collects the ids of label id and its descendants, then deletes its
    // bundle. The root cannot be removed.
    void removeLabel(int id, DArray<int>& removedIds);
    void removeChildLabels(int id);
    // Appends the ids of the subtree (pre-order).
    static void gatherSubBundleIds(const KxParamBundle* bundle, DArray<int>& ids);
    // Appends a copy of the group bundle to target.
    void duplicateAndInsertToParamBundle(KxParamBundle& target) const;

    // Prints "Error: label %s has no id." / "Error: label %s has no color."
    // for every label of the tree lacking them; false if any was printed.
    static bool isConsistent(const KxParamBundle* bundle);

private:
    static int idOf(const KxParamBundle* bundle);

    KxParamBundle* root_;
};
