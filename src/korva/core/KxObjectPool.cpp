#include "korva/core/KxObjectPool.h"

#include <cctype>

#include "korva/core/KxData.h"

KxObjectPool::KxObjectPool() = default;

KxObjectPool::~KxObjectPool() {
    observers_.clear();
    while (!objects_.empty()) {
        objects_.pop_back();
    }
}

KxObjectPool& KxObjectPool::instance() {
    static KxObjectPool pool;
    return pool;
}

bool KxObjectPool::isTaken(const std::string& label) const {
    return byLabel_.contains(label) || (reserved_ && reserved_(label.c_str()));
}

std::string KxObjectPool::makeUniqueLabel(const char* wanted) const {
    std::string label = wanted && *wanted ? wanted : "Data";
    if (!isTaken(label)) {
        return label;
    }
    // "name.ext" -> "name2.ext", "name3.ext", ...; digits that end the stem
    // are dropped first so that a clash with "tree2.swc" gives "tree3.swc"
    // rather than "tree22.swc".
    size_t dot = label.rfind('.');
    if (dot == 0 || dot == std::string::npos) {
        dot = label.size();
    }
    std::string ext = label.substr(dot);
    std::string stem = label.substr(0, dot);
    size_t digits = stem.size();
    while (digits > 1 && std::isdigit(static_cast<unsigned char>(stem[digits - 1]))) {
        --digits;
    }
    stem.resize(digits);
    for (int n = 2;; ++n) {
        std::string candidate = stem + std::to_string(n) + ext;
        if (!isTaken(candidate)) {
            return candidate;
        }
    }
}

const char* KxObjectPool::add(KxObject* object, const char* label) {
    if (!object) {
        return "";
    }
    if (contains(object)) {
        return object->getLabel();
    }
    std::string unique = makeUniqueLabel(label && *label ? label : object->getLabel());
    object->setLabel(unique.c_str());
    objects_.emplace_back(object);
    byLabel_.insert(unique, object);
    observers_.call(ADDED, object, "");
    return object->getLabel();
}

int KxObjectPool::indexOf(const KxObject* object) const {
    for (size_t i = 0; i < objects_.size(); ++i) {
        if (objects_[i].get() == object) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool KxObjectPool::contains(const KxObject* object) const {
    return object && find(object->getLabel()) == object;
}

KxObject* KxObjectPool::take(KxObject* object) {
    if (!contains(object)) {
        return nullptr;
    }
    observers_.call(REMOVED, object, "");
    // An observer may have removed it meanwhile.
    int i = indexOf(object);
    if (i < 0) {
        return nullptr;
    }
    byLabel_.remove(object->getLabel());
    KxObject* taken = objects_[static_cast<size_t>(i)].release();
    objects_.erase(objects_.begin() + i);
    return taken;
}

bool KxObjectPool::remove(KxObject* object) {
    KxObject* taken = take(object);
    delete taken;
    return taken != nullptr;
}

bool KxObjectPool::remove(const char* label) {
    return remove(find(label));
}

void KxObjectPool::clear() {
    while (!objects_.empty()) {
        remove(objects_.back().get());
    }
}

const char* KxObjectPool::rename(KxObject* object, const char* label) {
    if (!contains(object)) {
        return "";
    }
    std::string oldLabel = object->getLabel();
    if (label && oldLabel == label) {
        return object->getLabel();
    }
    byLabel_.remove(oldLabel);
    std::string unique = makeUniqueLabel(label);
    object->setLabel(unique.c_str());
    byLabel_.insert(unique, object);
    observers_.call(RENAMED, object, oldLabel.c_str());
    return object->getLabel();
}

KxObject* KxObjectPool::find(const char* label) const {
    KxObject* const* found = label ? byLabel_.lookup(label) : nullptr;
    return found ? *found : nullptr;
}

KxData* KxObjectPool::findData(const char* label) const {
    return dynamic_cast<KxData*>(find(label));
}
