#pragma once

#include <memory>
#include <string>

struct Tcl_Interp;
class KxInfoTags;

// Base of everything the object pool holds (data objects and, later, modules):
// a label, a class name, a console command handler and an info report. The pool
// owns its objects and makes their labels unique; setLabel itself does not.
class KxObject {
public:
    KxObject() = default;
    virtual ~KxObject();
    KxObject(const KxObject&) = delete;
    KxObject& operator=(const KxObject&) = delete;

    // The registered class name, e.g. "KxSpatialGraph".
    virtual const char* getTypeName() const { return "KxObject"; }
    // Whether the object is of the named class or derives from it. Subclasses
    // answer for their own name and ask their base otherwise.
    virtual bool isOfType(const char* typeName) const;

    const char* getLabel() const { return label_.c_str(); }
    // Sets the label as given; objects in a pool are renamed through KxObjectPool::rename.
    void setLabel(const char* label) { label_ = label ? label : ""; }

    // A console command addressed to this object: `{label} command args`.
    // Answers TCL_OK or TCL_ERROR with the reply in the interpreter's result.
    // The base understands "getLabel", "getTypeName", "info" and "help", which
    // lists the commands the class registry knows for the object's classes.
    virtual int parse(Tcl_Interp* interp, int argc, char** argv);
    // Adds the object's report lines ("Data Class:", counts, ...).
    virtual void info(KxInfoTags& tags) const;

    // A token that expires when the object is deleted: whoever keeps a plain
    // pointer to an object it does not own (a connection, a result slot)
    // checks it before using the pointer.
    std::weak_ptr<const void> lifetime() const { return alive_; }
    // An interface the object offers besides its classes (e.g. a graph's
    // read-only interface), or null. The base offers none.
    virtual void* getInterface(const char* /*name*/) const { return nullptr; }

protected:
    // Prints and fails with "Error: Object {label} has no command "cmd"; ...":
    // what parse does with a command nobody understood.
    int unknownCommand(Tcl_Interp* interp, const char* cmd) const;

private:
    std::string label_;
    std::shared_ptr<const void> alive_ = std::make_shared<int>(0);
};
