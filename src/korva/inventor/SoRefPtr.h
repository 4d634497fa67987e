#pragma once

// Holds a scene-graph node (or any SoBase) by reference count: refs what it
// stores, unrefs what it replaces and what it holds when it dies.
template <class T>
class SoRefPtr {
public:
    SoRefPtr() = default;
    SoRefPtr(T* node) { reset(node); }  // NOLINT: implicit like a plain pointer
    SoRefPtr(const SoRefPtr& other) { reset(other.node_); }
    ~SoRefPtr() { reset(nullptr); }
    SoRefPtr& operator=(const SoRefPtr& other) {
        if (this != &other) {
            reset(other.node_);
        }
        return *this;
    }
    SoRefPtr& operator=(T* node) {
        reset(node);
        return *this;
    }

    void reset(T* node) {
        if (node) {
            node->ref();  // before the unref: the new node may be owned by the old one
        }
        if (node_) {
            node_->unref();
        }
        node_ = node;
    }
    T* get() const { return node_; }
    T* operator->() const { return node_; }
    T& operator*() const { return *node_; }
    operator T*() const { return node_; }

private:
    T* node_ = nullptr;
};
