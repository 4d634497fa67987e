#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "korva/base/CallbackList.h"
#include "korva/base/HashTable.h"

class KxObject;
class KxData;

// The host's object pool: owns every data object and module of a session under
// a unique label, in the order they were added. A label that is taken (by
// another object, or by a name the reserved-name check refuses, such as a Tcl
// command) is made unique by a number before the extension: "tree.swc",
// "tree2.swc", "tree3.swc". Observers hear of every addition, removal and
// renaming; the Tcl glue creates and deletes object commands this way.
class KxObjectPool {
public:
    enum Event { ADDED, REMOVED, RENAMED };
    // Called after an addition or a renaming and before a removal deletes the
    // object; for RENAMED, oldLabel is the previous label (empty otherwise).
    using Observer = std::function<void(Event event, KxObject* object, const char* oldLabel)>;
    using ReservedCheck = std::function<bool(const char* label)>;

    KxObjectPool();
    // Deletes the objects without telling the observers.
    ~KxObjectPool();
    KxObjectPool(const KxObjectPool&) = delete;
    KxObjectPool& operator=(const KxObjectPool&) = delete;

    // The session's pool, used by readers, modules and the console.
    static KxObjectPool& instance();

    // Takes ownership of object and registers it under label (or under its own
    // label when label is null or empty; "Data" when both are empty), made
    // unique. Answers the label it got. Adding an object twice does nothing.
    const char* add(KxObject* object, const char* label = nullptr);
    // Removes and deletes the object; false if it is not in the pool.
    bool remove(KxObject* object);
    bool remove(const char* label);
    // Removes the object from the pool without deleting it; the caller owns it.
    // Null if it is not in the pool.
    KxObject* take(KxObject* object);
    // Removes and deletes every object, the newest first.
    void clear();
    // Gives the object a new label, made unique; answers the label it got.
    const char* rename(KxObject* object, const char* label);

    KxObject* find(const char* label) const;
    // The data object of that label, or null if there is none or it is not data.
    KxData* findData(const char* label) const;
    bool contains(const KxObject* object) const;

    // Objects in the order they were added.
    int size() const { return static_cast<int>(objects_.size()); }
    KxObject* get(int i) const { return objects_[static_cast<size_t>(i)].get(); }

    // The label that add() would give for the wanted one, without adding anything.
    std::string makeUniqueLabel(const char* wanted) const;

    int addObserver(Observer observer) { return observers_.add(std::move(observer)); }
    void removeObserver(int id) { observers_.remove(id); }
    // Names for which check answers true count as taken.
    void setReservedCheck(ReservedCheck check) { reserved_ = std::move(check); }

private:
    bool isTaken(const std::string& label) const;
    int indexOf(const KxObject* object) const;

    std::vector<std::unique_ptr<KxObject>> objects_;
    HashTable<std::string, KxObject*> byLabel_;
    CallbackList<void(Event, KxObject*, const char*)> observers_;
    ReservedCheck reserved_;
};

#define theObjectPool (&KxObjectPool::instance())
