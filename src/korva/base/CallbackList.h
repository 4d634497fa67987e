#pragma once

#include <functional>
#include <utility>
#include <vector>

// Callbacks registered under ids: listeners of a data object, observers of the
// object pool, taps of the message console. call() reaches the callbacks that
// were registered when it began and are still registered when their turn
// comes: a callback may add or remove callbacks (an owner may die in one);
// those added during a call hear the next one.
template <class Signature>
class CallbackList {
public:
    using Callback = std::function<Signature>;

    // Answers an id for remove().
    int add(Callback callback) {
        int id = nextId_++;
        callbacks_.emplace_back(id, std::move(callback));
        return id;
    }
    void remove(int id) {
        for (auto it = callbacks_.begin(); it != callbacks_.end(); ++it) {
            if (it->first == id) {
                callbacks_.erase(it);
                return;
            }
        }
    }
    void clear() { callbacks_.clear(); }
    bool isEmpty() const { return callbacks_.empty(); }

    template <class... Args>
    void call(Args&&... args) const {
        std::vector<int> ids;
        for (const auto& entry : callbacks_) {
            ids.push_back(entry.first);
        }
        for (int id : ids) {
            for (const auto& entry : callbacks_) {
                if (entry.first == id) {
                    Callback callback = entry.second;  // the list may change inside the call
                    callback(args...);
                    break;
                }
            }
        }
    }

private:
    std::vector<std::pair<int, Callback>> callbacks_;
    int nextId_ = 1;
};
