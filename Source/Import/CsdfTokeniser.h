// Words and numbers of CSDF files.
#pragma once

#include "support/Streams.h"

#include <string>
#include <string_view>

// A word, or a single delimiter. The text is valid until the next token is read; a NUL ends it.
struct CsdfToken {
    std::string_view text;   // empty for a delimiter
    char delimiter = '\0';   // that of a word
    bool touchesEnd = false; // the input ended with it, so there may have been more of it

    bool isWord() const noexcept { return delimiter == '\0'; }
};

// White space separates words, and each delimiter is a token of its own. In apostrophes, at the start of a word,
// neither means anything; the word goes to the next apostrophe, or to the end.
class CsdfTokeniser {
public:
    static constexpr std::string_view allDelimiters = "=;:/", valueDelimiters = ":/";
    static constexpr int tokensBetweenYields = 100000;

    explicit CsdfTokeniser(tvfstream & stream) : stream_(stream) {}
    virtual ~CsdfTokeniser() = default;
    CsdfTokeniser(CsdfTokeniser const &) = delete;
    CsdfTokeniser & operator=(CsdfTokeniser const &) = delete;

    // The next token, counted for the yields; false, and an empty word, at the end.
    bool word(CsdfToken & token, std::string_view delimiters = allDelimiters) {
        count(1);
        return scan(token, delimiters);
    }
    // The same with the delimiters of values, and not counted.
    bool number(CsdfToken & token) { return scan(token, valueDelimiters); }
    void skipWhiteSpace();
    bool isAtEnd() { return stream_.peek() < 0; }

    // For readers that look ahead: what is next to come, as far as it is in memory, and going over n characters of it
    // that hold so many words to be counted.
    std::string_view ahead() const noexcept { return stream_.buffered(); }
    void skipAhead(std::size_t n, int words) {
        stream_.skipBuffered(n);
        count(words);
    }

private:
    // Called between tokens every so often, that others may have their turn. The store may be another one then.
    virtual void yield() = 0;
    void count(int words) {
        counted_ += words;
        if (counted_ < tokensBetweenYields) return;
        counted_ = 0;
        yield();
    }
    bool scan(CsdfToken & token, std::string_view delimiters);
    template <class IsEnd> bool gather(CsdfToken & token, IsEnd isEnd);

    tvfstream & stream_;
    std::string gathered_; // a word that did not lie in one piece
    int counted_ = 0;      // words since the last yield
};

// Lets the host process its events.
class CsdfTokeniserImpl final : public CsdfTokeniser {
public:
    using CsdfTokeniser::CsdfTokeniser;

private:
    void yield() override;
};

inline bool isCsdfSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// As atof: what begins a text as a number, else 0.
double csdfNumber(std::string_view text) noexcept;
