#pragma once

#include <string>
#include <vector>

#include "korva/modules/KxPort.h"

// A row of mixed items: float fields (shown with a printf format and a field
// width) and push buttons. Items are addressed by index; each keeps its own
// "new" flag, so a module can tell which field or button changed. Buttons are
// released when the owner has computed. Console: setValue INDEX VALUE (a
// non-zero value presses a button), getValue ?index?; float fields are
// saved as setValue lines, buttons never.
class KxPortGeneric : public KxPort {
public:
    KxPortGeneric(KxModule* owner, const char* name, const char* label);

    // Append items; answer their index.
    int addFloatField(float value, const char* format = "%g", int width = 8);
    int addButton(const char* label);

    int getNumItems() const { return static_cast<int>(items_.size()); }
    bool isButton(int i) const { return item(i).button; }
    float getFloat(int i) const { return item(i).value; }
    void setFloat(int i, float value);
    const char* getFormat(int i) const { return item(i).format.c_str(); }
    int getWidth(int i) const { return item(i).width; }
    const char* getItemLabel(int i) const { return item(i).label.c_str(); }
    // Presses (or releases) button i.
    void setButton(int i, bool down);
    bool wasHit(int i) const { return item(i).button && item(i).value != 0.0f; }
    bool isItemNew(int i) const { return item(i).isNew; }
    void setItemNew(int i, bool isNew = true);

    // The field's value as the user sees it (through its format).
    std::string formatField(int i) const;

    void untouch() override;
    void save(std::string& out, const char* moduleLabel) const override;

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "index value"; }

private:
    struct Item {
        bool button = false;
        float value = 0.0f;  // a button's value is 1 while it is pressed
        std::string format;
        int width = 0;
        std::string label;
        bool isNew = false;
    };
    const Item& item(int i) const { return items_[static_cast<size_t>(i)]; }

    std::vector<Item> items_;
};
