#pragma once

#include <memory>
#include <string>
#include <vector>

#include "korva/modules/KxModule.h"

class KxData;
class KxPortButtonList;

// A module that computes data objects: its results, kept in numbered slots.
// A result lives in the session's pool (the module does not own it); a slot
// whose object left the pool is empty. A module reuses its previous result
// when it is of the right kind (getReusableResult), else it makes a new one
// labelled from the input's label and a suffix (makeResultLabel).
class KxCompModule : public KxModule {
public:
    explicit KxCompModule(std::vector<std::string> dataTypes = {});

    const char* getTypeName() const override { return "KxCompModule"; }
    bool isOfType(const char* typeName) const override;

    // The slot's result, or null.
    KxData* getResult(int slot = 0) const;
    // Puts data (may be null) into the slot and, when it is not in the
    // session's pool yet, adds it under its own label (made unique).
    void setResult(int slot, KxData* data);
    void setResult(KxData* data) { setResult(0, data); }
    // The slot's result when it is of the class typeName, else null.
    KxData* getReusableResult(const char* typeName, int slot = 0) const;
    // Whether data is one of the module's results.
    bool isResult(const KxData* data) const;

    // The input's label composed with suffix (see composeLabel); the suffix
    // alone when nothing is connected.
    std::string makeResultLabel(const char* suffix) const;
    // "tree.swc" + "statistics" gives "tree.statistics" (the extension is
    // replaced by a word suffix); a suffix starting with another character is
    // appended to the label without its extension: "tree.swc" + "_labeled"
    // gives "tree_labeled".
    static std::string composeLabel(const char* label, const char* suffix);

    // Whether a saved state can recreate data by a console command of the
    // module; if so, command receives it. Modules with a create button answer
    // "{module} create;\n", others nothing.
    virtual bool canCreateData(const KxData* data, std::string& command) const;

    // Adds the console command `create` (see setCreateButton) to KxModule's.
    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    // Registers a module class that has a create button, with its `create` command.
    static void registerCreatingClass(const char* className, const char* package, KxObject* (*factory)());

protected:
    // Modules that compute on request name their apply button here: `create`
    // then presses it, computes at once and answers the label of result 0
    // (empty when there is none), and saved states recreate the results.
    void setCreateButton(KxPortButtonList* button) { createButton_ = button; }

private:
    struct Slot {
        KxData* data = nullptr;
        std::weak_ptr<const void> alive;
    };
    std::vector<Slot> results_;
    KxPortButtonList* createButton_ = nullptr;
};
