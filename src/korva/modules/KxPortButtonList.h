#pragma once

#include "korva/modules/KxPortToggleList.h"

// A row of push buttons. A press (setValue ?index? 1, or hit()) marks the
// port new; the buttons are released when the owner has computed, so a
// button counts as hit during exactly one update()/compute(). Nothing is saved.
class KxPortButtonList : public KxPortToggleList {
public:
    KxPortButtonList(KxModule* owner, const char* name, const char* label, int numButtons);

    void hit(int i = 0) { setValue(i, 1); }
    bool wasHit(int i = 0) const { return getValue(i) != 0; }

    void untouch() override;
    void save(std::string& /*out*/, const char* /*moduleLabel*/) const override {}
};
