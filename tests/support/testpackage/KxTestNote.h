#pragma once

#include "korva/core/KxData.h"

// The data class of the test package: a note whose text lives in the
// parameter "text". Files of the format "Test note" (extension .note) hold
// the line "KXNOTE" and then the text.
class KxTestNote : public KxData {
public:
    const char* getTypeName() const override { return "KxTestNote"; }
    bool isOfType(const char* typeName) const override;
    void info(KxInfoTags& tags) const override;
};
