#pragma once

#include <string>

struct Tcl_Interp;
class KxModule;

// A parameter of a module: an internal name (the console word), a label for
// the user interface, a visibility flag and a "new" flag that is set when
// the value changes and cleared after the module has computed. The console
// reaches a port as `{module} {port} command args`; every port answers
// setValue and getValue (items are addressed by a 0-based index where a
// port has several), and save() writes the lines that restore its value.
class KxPort {
public:
    // Registers the port with its owner (may be null for a port used alone).
    KxPort(KxModule* owner, const char* name, const char* label);
    virtual ~KxPort();
    KxPort(const KxPort&) = delete;
    KxPort& operator=(const KxPort&) = delete;

    const char* getName() const { return name_.c_str(); }
    const char* getLabel() const { return label_.c_str(); }
    void setLabel(const char* label) { label_ = label ? label : ""; }
    bool isVisible() const { return visible_; }
    void setVisible(bool visible) { visible_ = visible; }
    void show() { visible_ = true; }
    void hide() { visible_ = false; }
    // Whether the value changed since the owner last computed.
    bool isNew() const { return new_; }
    void touch() { new_ = true; }
    // Clears the "new" flag; momentary ports (buttons) also release their buttons.
    virtual void untouch() { new_ = false; }
    KxModule* getOwner() const { return owner_; }

    // `{module} {port} ...` with argv[0] the port's name: setValue, getValue
    // and what the port adds. Fails with a usage line for anything else.
    virtual int parse(Tcl_Interp* interp, int argc, char** argv);
    // The port's console commands, e.g. "factor setValue value | getValue ?index?".
    virtual std::string usage() const;
    // Appends the console lines that restore the port ("{module} {port} setValue ...\n");
    // ports without a lasting value write nothing.
    virtual void save(std::string& out, const char* moduleLabel) const;

    // Locale-independent shortest text of a float that reads back exactly.
    static std::string formatFloat(float value);

protected:
    // argv holds the words after "setValue" / "getValue".
    virtual int parseSetValue(Tcl_Interp* interp, int argc, char** argv) = 0;
    virtual int parseGetValue(Tcl_Interp* interp, int argc, char** argv) const = 0;
    // The usage of setValue after the word itself, e.g. "index 0|1".
    virtual const char* setValueUsage() const = 0;

    // Fails with "USAGE: {port} setValue <usage>".
    int setValueUsageError(Tcl_Interp* interp) const;
    // Reads argv[i] as an index in 0..count-1 or fails with an "Error: " line.
    static bool readIndex(Tcl_Interp* interp, const char* word, int count, int& index);
    static bool readFloat(Tcl_Interp* interp, const char* word, float& value);
    static bool readInt(Tcl_Interp* interp, const char* word, int& value);
    // Splits "?index? v1 .. vN" (numValues words after an optional item index
    // in 0..count-1; index 0 when it is left out). False after a usage or
    // "Error: " reply; values then points at the value words.
    bool readItemCall(Tcl_Interp* interp, int argc, char** argv, int count, int numValues, int& index,
                      char**& values) const;
    // "?index?" of getValue; false after a usage or "Error: " reply.
    bool readItemIndex(Tcl_Interp* interp, int argc, char** argv, int count, int& index) const;
    // Answers a number.
    static int replyFloat(Tcl_Interp* interp, float value);
    static int replyInt(Tcl_Interp* interp, int value);
    // "{module} {port} setValue <values>\n".
    void appendSetValueLine(std::string& out, const char* moduleLabel, const std::string& values) const;

private:
    KxModule* owner_;
    std::string name_;
    std::string label_;
    bool visible_ = true;
    bool new_ = false;
};
