#pragma once

#include "korva/modules/KxPortRadioBox.h"

// A choice of one item shown as a drop-down menu; the same value and
// console commands as a radio box.
class KxPortMenu : public KxPortRadioBox {
public:
    using KxPortRadioBox::KxPortRadioBox;
};
