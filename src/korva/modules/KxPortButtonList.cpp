#include "korva/modules/KxPortButtonList.h"

KxPortButtonList::KxPortButtonList(KxModule* owner, const char* name, const char* label, int numButtons)
    : KxPortToggleList(owner, name, label, numButtons) {}

void KxPortButtonList::untouch() {
    KxPortToggleList::untouch();
    releaseAll();
}
