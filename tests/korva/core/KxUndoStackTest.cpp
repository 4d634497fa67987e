#include "korva/core/KxUndoStack.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "korva/core/KxData.h"

namespace {

// Appends its letter to the data's label on exec and drops it on undo, so the
// label spells the edits in effect.
class AppendLetter : public KxUndoableCommand {
public:
    AppendLetter(KxData* data, char letter) : data_(data), letter_(letter) {}
    void exec() override {
        data_->setLabel((std::string(data_->getLabel()) + letter_).c_str());
        data_->touch(KxData::NEW_DATA);
        data_->fire();
    }
    void undo() override {
        std::string label = data_->getLabel();
        data_->setLabel(label.substr(0, label.size() - 1).c_str());
    }
    std::string description() const override { return std::string(1, letter_); }
    KxData* target() const override { return data_; }

private:
    KxData* data_;
    char letter_;
};

void push(KxUndoStack& stack, KxData& data, const char* letters) {
    for (const char* c = letters; *c; ++c) {
        stack.push(std::make_unique<AppendLetter>(&data, *c));
    }
}

}  // namespace

TEST(KxUndoStackTest, UndoRedoAndThePushThatClearsRedo) {
    KxData data;
    KxUndoStack stack;
    push(stack, data, "abc");
    EXPECT_EQ(stack.undo()->description(), "c");
    EXPECT_EQ(stack.undo()->description(), "b");
    EXPECT_EQ(stack.redo()->description(), "b");
    EXPECT_STREQ(data.getLabel(), "ab");
    push(stack, data, "d");
    EXPECT_EQ(stack.redo(), nullptr);
    EXPECT_STREQ(data.getLabel(), "abd");
    while (stack.undo()) {
    }
    EXPECT_STREQ(data.getLabel(), "");
    EXPECT_EQ(stack.redoCount(), 3);
}

TEST(KxUndoStackTest, DepthBoundDropsTheOldestEdits) {
    KxData data;
    KxUndoStack stack(2);
    push(stack, data, "abcd");
    EXPECT_EQ(stack.undoCount(), 2);
    while (stack.undo()) {
    }
    EXPECT_STREQ(data.getLabel(), "ab");
}

TEST(KxUndoStackTest, ChangesFromElsewhereAndRemovalForgetTheDataObjectsEdits) {
    KxData edited, other;
    auto stack = std::make_unique<KxUndoStack>();
    push(*stack, edited, "ab");
    push(*stack, other, "x");
    stack->undo();
    edited.touch(KxData::NEW_LABEL);
    edited.fire();
    EXPECT_EQ(stack->undoCount(), 2);
    edited.touch(KxData::NEW_DATA);
    edited.fire();
    EXPECT_EQ(stack->undoCount(), 0);
    EXPECT_EQ(stack->redoCount(), 1);
    stack->forget(&other);
    EXPECT_EQ(stack->redoCount(), 0);
    push(*stack, edited, "c");
    stack.reset();
    edited.touch(KxData::NEW_DATA);
    edited.fire();  // no listener of the dead stack is left behind
}
