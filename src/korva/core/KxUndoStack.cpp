#include "korva/core/KxUndoStack.h"

#include <algorithm>
#include <utility>

#include "korva/core/KxData.h"

KxUndoStack::KxUndoStack(int maxDepth) : maxDepth_(std::max(1, maxDepth)) {}

KxUndoStack::~KxUndoStack() {
    clear();
}

void KxUndoStack::push(std::unique_ptr<KxUndoableCommand> command) {
    redo_.clear();
    run(*command, true);
    watch(command->target());
    undo_.push_back(std::move(command));
    trim();
    unwatchUnused();
}

const KxUndoableCommand* KxUndoStack::undo() {
    return step(undo_, redo_, false);
}

const KxUndoableCommand* KxUndoStack::redo() {
    return step(redo_, undo_, true);
}

const KxUndoableCommand* KxUndoStack::step(std::deque<Entry>& from, std::deque<Entry>& to, bool forward) {
    if (from.empty()) {
        return nullptr;
    }
    Entry command = std::move(from.back());
    from.pop_back();
    run(*command, forward);
    to.push_back(std::move(command));
    return to.back().get();
}

void KxUndoStack::setMaxDepth(int maxDepth) {
    maxDepth_ = std::max(1, maxDepth);
    trim();
    unwatchUnused();
}

void KxUndoStack::forget(const KxData* data) {
    auto edits = [data](const Entry& c) { return c->target() == data; };
    undo_.erase(std::remove_if(undo_.begin(), undo_.end(), edits), undo_.end());
    redo_.erase(std::remove_if(redo_.begin(), redo_.end(), edits), redo_.end());
    unwatchUnused();
}

void KxUndoStack::clear() {
    undo_.clear();
    redo_.clear();
    unwatchUnused();
}

void KxUndoStack::run(KxUndoableCommand& command, bool forward) {
    running_ = true;
    if (forward) {
        command.exec();
    } else {
        command.undo();
    }
    running_ = false;
}

void KxUndoStack::trim() {
    while (static_cast<int>(undo_.size()) > maxDepth_) {
        undo_.pop_front();
    }
}

void KxUndoStack::watch(KxData* data) {
    if (!data || watched_.count(data)) {
        return;
    }
    watched_[data] = data->addListener([this](KxData& changed, unsigned int mask) {
        if (!running_ && (mask & KxData::NEW_DATA)) {
            forget(&changed);
        }
    });
}

void KxUndoStack::unwatchUnused() {
    for (auto it = watched_.begin(); it != watched_.end();) {
        KxData* data = it->first;
        auto edits = [data](const Entry& c) { return c->target() == data; };
        bool used =
            std::any_of(undo_.begin(), undo_.end(), edits) || std::any_of(redo_.begin(), redo_.end(), edits);
        if (used) {
            ++it;
        } else {
            data->removeListener(it->second);
            it = watched_.erase(it);
        }
    }
}
