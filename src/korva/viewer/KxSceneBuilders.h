#pragma once

#include <functional>
#include <string>

#include "korva/base/HashTable.h"

class KxObject;
class SoNode;

// Default scenes of data objects, by class name: how `korva render` shows an
// object without a display module. Packages register a builder for each of
// their displayable classes in their init function.
class KxSceneBuilders {
public:
    // Returns a new scene (reference count 0) or null.
    using Builder = std::function<SoNode*(KxObject*)>;

    static KxSceneBuilders& instance();

    // Replaces any builder registered for the class.
    void registerBuilder(const char* typeName, Builder builder);
    bool hasBuilder(const KxObject* object) const;
    // A new scene showing the object (reference count 0), or null when no
    // builder knows its class or the builder fails.
    SoNode* build(KxObject* object) const;

private:
    HashTable<std::string, Builder> builders_;
};

#define theSceneBuilders (&KxSceneBuilders::instance())
