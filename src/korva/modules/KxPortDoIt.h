#pragma once

#include "korva/modules/KxPortButtonList.h"

// The apply button of a compute module: one button, labelled "Apply" unless
// given another label. Modules that compute only on request test wasHit().
class KxPortDoIt : public KxPortButtonList {
public:
    KxPortDoIt(KxModule* owner, const char* name, const char* label = "Action",
               const char* buttonLabel = "Apply");
};
