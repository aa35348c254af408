#include "Evaluation/Tokeniser.h"

#include "Evaluation/Operators.h"
#include "Evaluation/ParseState.h"
#include "support/Numbers.h"

#include <array>
#include <string>

namespace {

enum CharClass : unsigned char {
    classSingle = 1,
    classPairFirst = 2,
    classPairSecond = 4,
    classDigit = 8,
    className = 16,
};

struct Pair {
    char first, second;
    int token;
};

constexpr Pair pairs[] = {
    {'!', '=', TOKEN_NE}, {'<', '>', TOKEN_NE}, {'=', '=', TOKEN_EQ},  {'<', '=', TOKEN_LE},
    {'>', '=', TOKEN_GE}, {'|', '|', TOKEN_OR}, {'&', '&', TOKEN_AND},
};

struct Keyword {
    std::string_view word;
    int token;
};

constexpr Keyword keywords[] = {{"AND", TOKEN_AND}, {"NOT", '!'}, {"OR", TOKEN_OR}};

constexpr std::array<unsigned char, 256> makeClassTable() {
    std::array<unsigned char, 256> table{};
    auto mark = [&table](char c, CharClass bit) { table[static_cast<unsigned char>(c)] |= bit; };
    for (char c : std::string_view("-+,*%/^[]()!=<>&")) mark(c, classSingle);
    for (Pair const & pair : pairs) {
        mark(pair.first, classPairFirst);
        mark(pair.second, classPairSecond);
    }
    for (char c = '0'; c <= '9'; ++c) mark(c, classDigit);
    for (unsigned c = 0x21; c <= 0xFD; ++c)
        if (c != 0x7F && table[c] == 0) table[c] = className;
    return table;
}

constexpr std::array<unsigned char, 256> classTable = makeClassTable();

unsigned char classOf(char c) noexcept {
    return classTable[static_cast<unsigned char>(c)];
}

bool isBlank(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool takePair(ParseState & state, int * token) {
    char const * p = state.position;
    if ((classOf(p[1]) & classPairSecond) == 0) return false;
    for (Pair const & pair : pairs) {
        if (p[0] != pair.first || p[1] != pair.second) continue;
        state.position += 2;
        *token = pair.token;
        return true;
    }
    return false;
}

// A quoted string: two quotes in a row stand for one, and the end of the text ends it without complaint.
Token * takeString(ParseState & state) {
    char const * p = state.position + 1;
    std::string content;
    for (; *p != '\0'; ++p) {
        if (*p == '\'') {
            if (p[1] != '\'') break;
            ++p;
        }
        content += *p;
    }
    state.position = *p == '\'' ? p + 1 : p;
    Token * token = EvaluationDepth::newToken();
    token->text = YString(content);
    return token;
}

Token * takeNumber(ParseState & state) {
    char * p = const_cast<char *>(state.position);
    bool failed = false;
    double number = sp_GetEngToken(&p, &failed);
    if (failed) return nullptr;
    state.position = p;
    Token * token = EvaluationDepth::newToken();
    token->number = number;
    return token;
}

// A word, or a name of empty text and one character skipped, so that no character can stop the tokeniser.
int takeWord(ParseState & state, Token ** value) {
    char const * start = state.position;
    char const * p = start;
    while ((classOf(*p) & (classDigit | className)) != 0) ++p;
    std::string_view word(start, static_cast<std::size_t>(p - start));
    for (Keyword const & keyword : keywords) {
        if (!equalNoCase(word, keyword.word)) continue;
        state.position = p;
        return keyword.token;
    }
    state.position = word.empty() ? p + 1 : p;
    *value = EvaluationDepth::newToken();
    (*value)->text = YString(word);
    return TOKEN_NAME;
}

int scanToken(ParseState & state, Token ** value) {
    while (isBlank(*state.position)) ++state.position;
    char const c = *state.position;
    if (c == '\0') return -1;
    unsigned char const f = classOf(c);
    int token = 0;
    if (f == classSingle || ((f & classPairFirst) != 0 && !takePair(state, &token) && (f & classSingle) != 0)) {
        ++state.position;
        return static_cast<unsigned char>(c);
    }
    if (token != 0) return token;
    if (c == '\'') {
        *value = takeString(state);
        return TOKEN_STRING;
    }
    if ((*value = takeNumber(state)) != nullptr) return TOKEN_NUMBER;
    return takeWord(state, value);
}

bool isValue(int token) noexcept {
    return token == TOKEN_NUMBER || token == TOKEN_STRING || token == TOKEN_NAME;
}

bool wantsComma(int last, int next) noexcept {
    if (last == TOKEN_STRING || last == TOKEN_NUMBER || last == ')') return isValue(next) || next == '(';
    return last == TOKEN_NAME && isValue(next);
}

int takePending(ParseState & state, Token ** value) {
    int token = state.pendingToken;
    *value = state.pendingValue;
    state.pendingToken = 0;
    state.pendingValue = nullptr;
    return token;
}

} // namespace

int getToken(ParseState & state, Token ** value) {
    *value = nullptr;
    if (state.pendingToken != 0) return state.lastToken = takePending(state, value);
    int token = scanToken(state, value);
    if (state.equalsIsComparison && token == '=') token = TOKEN_EQ;
    if (!wantsComma(state.lastToken, token)) return state.lastToken = token;
    state.pendingToken = token;
    state.pendingValue = *value;
    *value = nullptr;
    return state.lastToken = ',';
}
