#pragma once

#include <cstddef>
#include <string>

// Tokens of the host's brace-structured text forms (parameter bundles, the
// KorvaMesh header, package resource files): bare words, double-quoted strings with \" \\ \n \r \t
// escapes, and the braces { and }. Blanks separate tokens; '#' at the start of
// a token begins a comment that runs to the end of the line. The scanner
// reads from a caller's buffer and never past its end.
class KxTextScanner {
public:
    enum Token { END, WORD, QUOTED, OPEN, CLOSE, BAD };

    KxTextScanner(const char* text, size_t length) : begin_(text), p_(text), end_(text + length) {}

    // The next token; value holds a word's text or a quoted string's contents.
    // BAD: a quoted string without its closing quote.
    Token next(std::string& value);
    // The kind of the next token, without consuming it (QUOTED for any quote).
    Token peek();
    // Skips blanks and comments; the position of the next token.
    const char* skipBlanks();

    const char* position() const { return p_; }
    void setPosition(const char* p) { p_ = p; }
    const char* end() const { return end_; }
    // Line number (from 1) of a position in the text.
    int lineAt(const char* p) const;
    int line() const { return lineAt(p_); }

    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
    // Appends s as a quoted string that next() reads back as s.
    static void appendQuoted(std::string& out, const std::string& s);

private:
    const char* begin_;
    const char* p_;
    const char* end_;
};
