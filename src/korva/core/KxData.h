#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "korva/core/KxParamBundle.h"

struct Tcl_Interp;
class KxInfoTags;

// Base of every data object the host keeps in its object pool: a label, a
// parameter bundle, a modified flag, the command that loaded it and the format
// it was last saved in, and change notification. Editors mark what changed
// with touch() during a batch of edits and call fire() once at the end; fire
// tells every listener the accumulated mask and clears it.
class KxData {
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
    virtual ~KxData();
    KxData(const KxData&) = delete;
    KxData& operator=(const KxData&) = delete;

    // The registered class name, e.g. "KxSpatialGraph".
    virtual const char* getTypeName() const { return "KxData"; }
    // Whether the object is of the named class or derives from it. Subclasses
    // answer for their own name and ask their base otherwise.
    virtual bool isOfType(const char* typeName) const;

    const char* getLabel() const { return label_.c_str(); }
    // Sets the label as given; the object pool makes labels unique on registration.
    void setLabel(const char* label) { label_ = label ? label : ""; }

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
    // Does nothing when nothing was touched.
    void fire();
    int addListener(Listener listener);
    void removeListener(int id);

    // A console command addressed to this object: `{label} command args`.
    // Answers TCL_OK or TCL_ERROR with the reply in the interpreter's result.
    // The base understands "getLabel", "info", "parameters", "isModified".
    virtual int parse(Tcl_Interp* interp, int argc, char** argv);
    // Adds the object's report lines ("Data Class:", counts, ...).
    virtual void info(KxInfoTags& tags) const;
    // A new object with the same contents, or null if the class cannot copy itself.
    virtual KxData* duplicate() const { return nullptr; }

private:
    std::string label_;
    KxParamBundle parameters_;
    bool modified_ = false;
    std::string loadCmd_;
    std::string saveInfo_;
    unsigned int touched_ = 0;
    std::vector<std::pair<int, Listener>> listeners_;
    int nextListenerId_ = 1;
};
