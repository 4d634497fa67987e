#include "KxTestNote.h"

#include <cstring>

#include "korva/core/KxInfoTags.h"

bool KxTestNote::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxTestNote") == 0 || KxData::isOfType(typeName);
}

void KxTestNote::info(KxInfoTags& tags) const {
    KxData::info(tags);
    String text;
    parameters().findString("text", text);
    tags.add("Text:", "%s", text.getString());
}
