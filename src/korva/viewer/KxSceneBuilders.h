#pragma once

#include <functional>
#include <string>

#include "korva/base/HashTable.h"

class KxObject;
class SoNode;

// What a caller asks of a default scene beyond the object itself.
struct KxSceneOptions {
    // Colour by the data of this name (an attribute or label group, as the
    // class understands it); empty: the class's constant colour.
    std::string colorBy;
    // Size by the data of this name (for a graph: the tubes' radii); empty: the class's default.
    std::string scaleBy;
    // Show the object's nodes (for a graph: its vertices as spheres).
    bool showNodes = false;
};

// Default scenes of data objects, by class name: how `korva render` shows an
// object without a display module. Packages register a builder for each of
// their displayable classes in their init function.
class KxSceneBuilders {
public:
    // Returns a new scene (reference count 0), or null after an "Error: "
    // line when the options ask for something the object does not have.
    using Builder = std::function<SoNode*(KxObject*, const KxSceneOptions&)>;

    static KxSceneBuilders& instance();

    // Replaces any builder registered for the class.
    void registerBuilder(const char* typeName, Builder builder);
    bool hasBuilder(const KxObject* object) const;
    // A new scene showing the object (reference count 0), or null when no
    // builder knows its class or the builder fails.
    SoNode* build(KxObject* object, const KxSceneOptions& options = {}) const;

private:
    HashTable<std::string, Builder> builders_;
};

#define theSceneBuilders (&KxSceneBuilders::instance())
