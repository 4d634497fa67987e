#pragma once

#include <string>
#include <vector>

#include "korva/core/KxObject.h"
#include "korva/modules/KxConnection.h"

class KxPort;

// Base of the host's modules: an object of the session's pool with ports,
// among them the input connection "data". When ports or inputs change the
// module is fired: update() (adjust ports to the input), then compute(),
// then every port's "new" flag is cleared and its buttons released.
// Console (the default parse): `{module} {port} setValue ...` / getValue /
// what the port adds, which fires the module when a value changed;
// `{module} {connection} connect {object}`; `{module} fire`; `help` adds
// the commands of every port to those of the class.
// savePorts() writes the console lines that restore the ports.
class KxModule : public KxObject {
    // Declared before portData, which registers itself here when it is built.
    std::vector<KxPort*> ports_;
    bool firing_ = false;

public:
    // dataTypes: the classes or interfaces the "data" input accepts (empty: any data).
    explicit KxModule(std::vector<std::string> dataTypes = {});
    ~KxModule() override;

    const char* getTypeName() const override { return "KxModule"; }
    bool isOfType(const char* typeName) const override;

    int getNumPorts() const { return static_cast<int>(ports_.size()); }
    KxPort* getPort(int i) const { return ports_[static_cast<size_t>(i)]; }
    KxPort* findPort(const char* name) const;

    // update(), compute(), then the ports are untouched. A fire from inside
    // update() or compute() (the module touching its own input) is ignored.
    void fire();

    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    // Appends the lines that restore the ports: connections first, so that
    // values set after them are not reset by a new input.
    virtual void savePorts(std::string& out) const;

    // Called by the ports' constructors and destructors.
    void addPort(KxPort* port) { ports_.push_back(port); }
    void removePort(KxPort* port);

    // Registers the module classes and their console commands with the class registry.
    static void registerClasses();

    KxConnection portData;

protected:
    // Adjusts ports to the input (item lists, visibility) before compute().
    virtual void update() {}
    virtual void compute() {}

private:
    bool anyPortNew() const;
};
