#include "korva/viewer/KxSceneBuilders.h"

#include "korva/core/KxObject.h"

KxSceneBuilders& KxSceneBuilders::instance() {
    static KxSceneBuilders builders;
    return builders;
}

void KxSceneBuilders::registerBuilder(const char* typeName, Builder builder) {
    builders_.set(typeName, std::move(builder));
}

bool KxSceneBuilders::hasBuilder(const KxObject* object) const {
    return object && builders_.contains(object->getTypeName());
}

SoNode* KxSceneBuilders::build(KxObject* object, const KxSceneOptions& options) const {
    if (!object) {
        return nullptr;
    }
    const Builder* builder = builders_.lookup(object->getTypeName());
    return builder ? (*builder)(object, options) : nullptr;
}
