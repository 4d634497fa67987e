#pragma once

#include <memory>
#include <string>
#include <vector>

#include "korva/modules/KxPort.h"

class KxObject;

// A port that connects a module to an object of the session's pool: the
// module's input "data" or a named connection. It accepts only objects of
// the listed classes or offering one of the listed interfaces (an empty
// list accepts any data object). When the source fires a change, or leaves
// the pool, the connection is marked new and the owner recomputes; a source
// that leaves the pool disconnects. Console: connect OBJECT, disconnect,
// getValue (the source's label, or empty); saved as a connect line.
class KxConnection : public KxPort {
public:
    KxConnection(KxModule* owner, const char* name, const char* label, std::vector<std::string> accepted);
    ~KxConnection() override;

    bool accepts(const KxObject* object) const;
    // Connects to source (null disconnects). Fails with an "Error: " line when
    // the source is not accepted. Marks the port new when the source changes.
    bool connect(KxObject* source);
    void disconnect() { connect(nullptr); }
    // The connected object, or null.
    KxObject* getSource() const;
    template <class T>
    T* getSource() const {
        return dynamic_cast<T*>(getSource());
    }
    // Whether the connection got another source (not just a change of the
    // same one) since the owner last computed.
    bool isNewSource() const { return newSource_; }
    void untouch() override;
    // The named interface of the source (see KxObject::getInterface), or null.
    void* getSourceInterface(const char* name) const;

    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    std::string usage() const override;
    void save(std::string& out, const char* moduleLabel) const override;

protected:
    int parseSetValue(Tcl_Interp* interp, int argc, char** argv) override;
    int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const override;
    const char* setValueUsage() const override { return "object"; }

private:
    void attach(KxObject* source);
    void detach();
    void sourceChanged();
    std::string acceptedText() const;

    std::vector<std::string> accepted_;
    KxObject* source_ = nullptr;
    std::weak_ptr<const void> sourceAlive_;
    int listenerId_ = -1;
    bool newSource_ = false;
    int poolObserverId_ = -1;
};
