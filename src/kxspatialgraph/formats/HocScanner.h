#pragma once

#include <cstddef>
#include <memory>
#include <string>

// Tokens of the HOC subset that describes neuron morphologies, from a flex
// scanner (hocscanner.l) reading a caller's buffer. Blanks, "//" comments and
// "/* */" comments are skipped; a section reference such as "dend[3]" or
// "dend[ 3.]" is one identifier token; characters outside the subset are
// collected in echo() and skipped. The text is copied, so it need not stay.
class HocScanner {
public:
    // Tags handed to the parser.
    enum Tag {
        SCAN_ERROR = -1,  // a comment without its "*/"
        END = 0,
        OPEN = 1,
        CLOSE = 2,
        COMMA = 3,
        ASSIGN = 4,
        NUMBER = 5,
        PT3DADD = 6,
        ACCESS = 7,
        CREATE = 8,
        PT3DCLEAR = 9,
        IDENTIFIER = 10,
        NEWLINE = 11,
        CONNECT = 12,
        SEMICOLON = 13,
        BLOCK_END = 17,
        BLOCK_BEGIN = 18,
        BRACKET = 21,
    };

    // What the generated scanner fills in besides the tag.
    struct State {
        int line = 1;       // counts the newlines passed, from 1
        int tokenLine = 1;  // the line the last token started on
        double number = 0;  // the value of the last NUMBER
        std::string echo;   // skipped characters outside the subset
    };

    HocScanner(const char* text, size_t length);
    ~HocScanner();
    HocScanner(const HocScanner&) = delete;
    HocScanner& operator=(const HocScanner&) = delete;

    // The next tag; END at the end of the text and from then on.
    int next();
    // The text of the last token (an identifier's name and index).
    std::string text() const;
    double number() const { return state_.number; }
    int line() const { return state_.tokenLine; }
    const std::string& echo() const { return state_.echo; }
    // How much of the text lies before the last token, from 0 to 1.
    float fractionRead() const;

private:
    State state_;
    std::unique_ptr<char[]> buffer_;
    size_t size_;
    void* scanner_ = nullptr;
    bool ended_ = false;
};
