#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxParamBundle.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphFixtures.h"

using namespace GraphFixtures;
using Ints = std::vector<int>;

namespace {

Ints toInts(const DArray<int>& a) {
    return Ints(a.begin(), a.end());
}

// Neuron (0) / Axon (1), Dendrite (2) / Apical (3), Soma (4)
HierarchicalLabels* makeNeuron(KxSpatialGraph& g) {
    HierarchicalLabels* labels = g.addNewLabelGroup("Neuron", true, true, false);
    labels->addLabel(0, "Axon", SbColor(1, 0, 0));
    int dendrite = labels->addLabel(0, "Dendrite", SbColor(0, 1, 0));
    labels->addLabel(dendrite, "Apical", SbColor(0, 0, 1));
    labels->addLabel(0, "Soma", SbColor(1, 1, 0));
    return labels;
}

std::vector<std::string> childNames(const KxParamBundle* b) {
    std::vector<std::string> names;
    for (int i = 0; i < b->getNumBundles(); ++i) {
        names.push_back(b->getBundle(i)->getName());
    }
    return names;
}

}  // namespace

TEST(HierarchicalLabelsTest, AddLabelNumbersAfterTheMaximumAndReusesNames) {
    KxSpatialGraph g;
    HierarchicalLabels* labels = makeNeuron(g);
    // Labels, maximum id, Apical's id, parents of 3 and 0, second child of 0,
    // labels under 2 and under a missing id.
    EXPECT_EQ((Ints{labels->getNumLabels(), labels->getMaxLabelId(), labels->getLabelIdFromName("Apical"),
                    labels->getParentId(3), labels->getParentId(0), labels->getChildId(0, 1),
                    labels->getNumLabels(2), labels->getNumLabels(42)}),
              (Ints{5, 4, 3, 2, -1, 2, 1, -1}));
    EXPECT_EQ(toInts(labels->getChildIds(0)), (Ints{1, 2, 4}));
    EXPECT_EQ(
        (std::vector<bool>{labels->isChild(3, 0), labels->isDirectChild(3, 0), labels->isDirectChild(3, 2)}),
        (std::vector<bool>{true, false, true}));

    std::string before = g.parameters().toText();
    EXPECT_EQ(labels->addLabel(17, "Orphan", SbColor(0, 0, 0)), -1);
    EXPECT_EQ(g.parameters().toText(), before);

    EXPECT_EQ(labels->addLabel(0, "Axon", SbColor(0.5f, 0.5f, 0.5f)), 1);
    SbColor c;
    ASSERT_TRUE(labels->getLabelColor(1, c));
    EXPECT_EQ(c, SbColor(0.5f, 0.5f, 0.5f));
    EXPECT_EQ(labels->getNumLabels(), 5);

    // The root got "Id" 0 and a black colour, so the tree is consistent.
    KxMessageCapture capture;
    EXPECT_TRUE(HierarchicalLabels::isConsistent(labels->getRootBundle()));
    EXPECT_TRUE(capture.lines().empty());
}

TEST(HierarchicalLabelsTest, RelocateAndRemoveLabels) {
    KxSpatialGraph g;
    HierarchicalLabels* labels = makeNeuron(g);
    KxParamBundle* root = labels->getRootBundle();
    labels->relocateLabel(4, 1);  // same parent: Soma moves to Axon's place
    EXPECT_EQ(childNames(root), (std::vector<std::string>{"Soma", "Axon", "Dendrite"}));
    labels->relocateLabel(1, 3);  // other parent: Axon goes under Dendrite, before Apical
    EXPECT_EQ(childNames(root), (std::vector<std::string>{"Soma", "Dendrite"}));
    EXPECT_EQ(childNames(root->getBundle("Dendrite")), (std::vector<std::string>{"Axon", "Apical"}));
    EXPECT_EQ(labels->getParentId(1), 2);
    labels->relocateLabel(2, 3);  // into its own subtree: refused
    EXPECT_EQ(labels->getParentId(2), 0);

    DArray<int> removed;
    labels->removeLabel(2, removed);
    EXPECT_EQ(toInts(removed), (Ints{2, 1, 3}));
    EXPECT_EQ(childNames(root), (std::vector<std::string>{"Soma"}));
    labels->removeChildLabels(0);
    EXPECT_EQ(labels->getNumLabels(), 1);
}

TEST(HierarchicalLabelsTest, ConsistencyNamesEveryLabelWithoutIdOrColor) {
    KxParamBundle root("Group");
    root.setInt("Id", 0);
    root.setColor(Color(1, 1, 1));
    root.addBundle("NoId")->setColor(Color(0, 0, 0));
    KxParamBundle* bare = root.addBundle("Bare");
    bare->addBundle("Deep")->setInt("Id", 5);
    KxMessageCapture capture;
    EXPECT_FALSE(HierarchicalLabels::isConsistent(&root));
    EXPECT_EQ(capture.lines(), (std::vector<std::string>{
                                   "Error: label NoId has no id.", "Error: label Bare has no id.",
                                   "Error: label Bare has no color.", "Error: label Deep has no color."}));
    capture.clear();
    EXPECT_EQ(HierarchicalLabels::findLabel(&root, "NoId"), -1);
    EXPECT_EQ(capture.lines(), (std::vector<std::string>{"Error: Label NoId has no Id!"}));
}

TEST(HierarchicalLabelsTest, AssignIdsInPreOrder) {
    KxParamBundle root("Root");
    root.addBundle("A")->addBundle("A1");
    root.addBundle("B");
    EXPECT_EQ(KxSpatialGraph::assignLabelIds(&root, 0), 3);
    HierarchicalLabels labels(&root);
    EXPECT_EQ((Ints{labels.getLabelIdFromName("Root"), labels.getLabelIdFromName("A"),
                    labels.getLabelIdFromName("A1"), labels.getLabelIdFromName("B")}),
              (Ints{0, 1, 2, 3}));

    KxMessageCapture capture;
    EXPECT_TRUE(KxSpatialGraph::assignChildLabelId(&root, "B", 9));
    EXPECT_EQ(labels.getLabelIdFromName("B"), 9);
    EXPECT_FALSE(KxSpatialGraph::assignChildLabelId(&root, "C", 10));
    EXPECT_EQ(capture.lines(),
              (std::vector<std::string>{"Warning: label \"C\" not found. Skipping child labels."}));
}

TEST(HierarchicalLabelsTest, GraphLabelGroupOperations) {
    auto g = makeChain(3);
    // Points only: a point attribute; with vertices: none.
    g->addNewLabelGroup("Marks", false, false, true);
    EXPECT_NE(g->findEdgePointAttribute("Marks"), nullptr);
    g->addNewLabelGroup("Types", false, true, true);
    EXPECT_NE(g->findVertexAttribute("Types"), nullptr);
    EXPECT_EQ(g->findEdgePointAttribute("Types"), nullptr);

    HierarchicalLabels* neuron = makeNeuron(*g);
    EXPECT_EQ(g->addNewLabelGroup("Neuron", true, true, true), neuron);
    const GraphAttribute* edgeAttr = g->findEdgeAttribute("Neuron");
    EXPECT_TRUE(g->hasLabel(edgeAttr) && !g->hasLabel(nullptr));
    EXPECT_EQ((Ints{g->getLabelId(edgeAttr, "Soma"), g->getNumLabels(edgeAttr)}), (Ints{4, 5}));
    String name;
    EXPECT_TRUE(g->getLabelName(edgeAttr, 2, name));
    EXPECT_EQ(name, "Dendrite");

    EXPECT_EQ(childNames(&g->parameters()), (std::vector<std::string>{"Marks", "Types", "Neuron"}));
    g->setModified(false);
    EXPECT_TRUE(g->relocateLabelGroup("Neuron", "Marks"));
    EXPECT_TRUE(g->isModified());
    EXPECT_EQ(childNames(&g->parameters()), (std::vector<std::string>{"Neuron", "Marks", "Types"}));
    EXPECT_FALSE(g->relocateLabelGroup("Neuron", "Missing"));

    // A name another group holds is refused: two groups cannot share a name.
    std::string parameters = g->parameters().toText();
    g->changeLabelGroupName(neuron, "Types");
    EXPECT_EQ(g->getLabelGroup("Neuron"), neuron);
    EXPECT_STREQ(g->getLabelGroup("Types")->getLabelGroupName(), "Types");
    EXPECT_NE(g->findVertexAttribute("Neuron"), nullptr);
    EXPECT_EQ(g->parameters().toText(), parameters);

    g->addAttribute("Neuron", KxSpatialGraph::POINT, PrimType::INT32, 1);
    g->changeLabelGroupName(neuron, "Cell");
    EXPECT_EQ(g->getLabelGroup("Neuron"), nullptr);
    EXPECT_EQ(g->getLabelGroup("Cell"), neuron);
    EXPECT_STREQ(neuron->getLabelGroupName(), "Cell");
    EXPECT_TRUE(g->findVertexAttribute("Cell") && g->findEdgeAttribute("Cell"));
    EXPECT_NE(g->findEdgePointAttribute("Neuron"), nullptr);  // deliberately keeps its name

    g->deleteLabelGroup("Cell");
    EXPECT_EQ(g->getLabelGroup("Cell"), nullptr);
    EXPECT_EQ(g->parameters().getBundle("Cell"), nullptr);
    EXPECT_FALSE(g->findVertexAttribute("Cell") || g->findEdgeAttribute("Cell"));

    // A group bundle that arrives with the parameters is registered once.
    KxParamBundle* loaded = g->parameters().addBundle("Loaded");
    HierarchicalLabels* first = g->addExistingLabelGroup(loaded);
    EXPECT_EQ(g->addExistingLabelGroup(loaded), first);

    // Deleting a group's attribute keeps the group.
    g->deleteAttribute(g->findVertexAttribute("Types"));
    EXPECT_EQ(g->findVertexAttribute("Types"), nullptr);
    EXPECT_NE(g->getLabelGroup("Types"), nullptr);
}
