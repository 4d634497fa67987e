#include "korva/modules/KxPortDoIt.h"

KxPortDoIt::KxPortDoIt(KxModule* owner, const char* name, const char* label, const char* buttonLabel)
    : KxPortButtonList(owner, name, label, 1) {
    setItemLabel(0, buttonLabel);
}
