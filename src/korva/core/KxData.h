#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "korva/base/CallbackList.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxParamBundle.h"

// Base of every data object the host keeps in its object pool: a label, a
// parameter bundle, a modified flag, the command that loaded it and the format
// it was last saved in, and change notification. Editors mark what changed
// with touch() during a batch of edits and call fire() once at the end; fire
// tells every listener the accumulated mask and clears it.
class KxData : public KxObject {
public:
    enum TouchMask : unsigned int {
        NEW_DATA = 1u,
        NEW_PARAMETERS = 2u,
        NEW_TRANSFORM = 4u,
        NEW_LABEL = 8u,
        ALL_PARTS = ~0u,
    };
    using Listener = std::function<void(KxData& data, unsigned int mask)>;

    KxData();
    ~KxData() override;

    const char* getTypeName() const override { return "KxData"; }
    bool isOfType(const char* typeName) const override;

    KxParamBundle& parameters() { return parameters_; }
    const KxParamBundle& parameters() const { return parameters_; }

    bool isModified() const { return modified_; }
    void setModified(bool modified) { modified_ = modified; }

    const char* getLoadCmd() const { return loadCmd_.c_str(); }
    void setLoadCmd(const char* filename) { loadCmd_ = filename ? filename : ""; }
    const char* getSaveInfoParam() const { return saveInfo_.c_str(); }
    void setSaveInfoParam(const char* format) { saveInfo_ = format ? format : ""; }

    // Marks parts as changed (and the object as modified) without telling anyone yet.
    void touch(unsigned int mask = ALL_PARTS);
    unsigned int getTouchMask() const { return touched_; }
    // Tells every listener what was touched since the last fire, then clears the mask.
    // Does nothing when nothing was touched. A listener removed during a fire is
    // not called any more; one added during a fire hears the next one.
    void fire();
    int addListener(Listener listener) { return listeners_.add(std::move(listener)); }
    void removeListener(int id) { listeners_.remove(id); }

    // Adds "parameters" (the bundle's text form), "setParameters TEXT" (replaces
    // the bundle, touches and fires NEW_PARAMETERS) and "isModified" to the
    // commands of KxObject.
    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    // A new object with the same contents, or null if the class cannot copy itself.
    virtual KxData* duplicate() const { return nullptr; }

protected:
    // Called after setParameters replaced the whole bundle: a class that keeps
    // pointers into it (the sub-bundles of the old one are gone) finds them anew.
    virtual void parametersReplaced() {}

private:
    KxParamBundle parameters_;
    bool modified_ = false;
    std::string loadCmd_;
    std::string saveInfo_;
    unsigned int touched_ = 0;
    CallbackList<void(KxData&, unsigned int)> listeners_;
};
