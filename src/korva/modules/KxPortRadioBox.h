#pragma once

#include <string>
#include <vector>

#include "korva/modules/KxPort.h"

// A choice of one item out of several labelled ones. Console: setValue INDEX,
// getValue (the chosen index); saved as one setValue line.
class KxPortRadioBox : public KxPort {
public:
    KxPortRadioBox(KxModule* owner, const char* name, const char* label, int numItems);

    int getNumItems() const { return static_cast<int>(labels_.size()); }
    // Keeps the choice when it is still in range, else chooses item 0.
    void setNumItems(int n);
    const char* getItemLabel(int i) const { return labels_[static_cast<size_t>(i)].c_str(); }
    void setItemLabel(int i, const char* label) { labels_[static_cast<size_t>(i)] = label ? label : ""; }
    // The chosen item; 0 for a port without items.
    int getValue() const { return value_; }
    // Marks the port new when the choice changes; an index out of range is ignored.
    void setValue(int index);

    void save(std::string& out, const char* moduleLabel) const override;

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "index"; }

private:
    std::vector<std::string> labels_;
    int value_ = 0;
};
