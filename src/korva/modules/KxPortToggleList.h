#pragma once

#include <string>
#include <vector>

#include "korva/modules/KxPort.h"

// A row of on/off toggles, each with its own label. Console: setValue
// ?index? 0|1, getValue ?index?; saved as one setValue line per toggle.
class KxPortToggleList : public KxPort {
public:
    KxPortToggleList(KxModule* owner, const char* name, const char* label, int numItems);

    int getNumItems() const { return static_cast<int>(values_.size()); }
    // Keeps the values of items that remain; new items are off and unlabelled.
    void setNumItems(int n);
    const char* getItemLabel(int i) const { return labels_[static_cast<size_t>(i)].c_str(); }
    void setItemLabel(int i, const char* label) { labels_[static_cast<size_t>(i)] = label ? label : ""; }
    int getValue(int i = 0) const { return values_[static_cast<size_t>(i)]; }
    // Marks the port new when the value changes.
    void setValue(int i, int value);

    void save(std::string& out, const char* moduleLabel) const override;

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "?index? 0|1"; }
    // Sets every value to 0 without marking the port new.
    void releaseAll();

private:
    std::vector<std::string> labels_;
    std::vector<int> values_;
};
