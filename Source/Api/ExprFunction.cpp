// Expr: a text in which vectors stand under names of any kind, as an expression.

#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"
#include "Groups/GroupStore.h"

namespace {

constexpr std::string_view specials = "\"&+-*/^<>' @{}[]%!()";

bool isPlain(std::string_view word) noexcept {
    return word.find_first_of(specials) == std::string_view::npos;
}

std::string quoted(std::string_view name) {
    return "Vec('" + std::string(name) + "')";
}

// The name behind a pseudonym of the current group; any other name as it is.
std::string resolved(std::string_view word) {
    Group const * const current = nameSpace().current;
    std::string name(current != nullptr ? current->resolvePseudonym(YString(word)).view() : word);
    return isPlain(name) ? name : quoted(name);
}

std::string expressionWord(std::string_view word, bool legacy) {
    if (word.size() == 1 && !isPlain(word)) return std::string(word);
    if (!isPlain(word)) return quoted(word);
    if (legacy && word.front() == ':') return ":" + resolved(word.substr(1));
    return resolved(word);
}

FUNC_ERROR expr(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    constexpr std::string_view blanks = " \t";
    std::string_view rest = textOf(args, 0);
    bool const legacy = equalNoCase(textOf(args, 1), "legacy");
    std::string out;
    for (;;) {
        std::size_t const start = rest.find_first_not_of(blanks);
        if (start == std::string_view::npos) break;
        rest.remove_prefix(start);
        std::size_t const length = std::min(rest.find_first_of(blanks), rest.size());
        if (!out.empty()) out += ' ';
        out += expressionWord(rest.substr(0, length), legacy);
        rest.remove_prefix(length);
    }
    giveStrings(result, {out});
    return FUNC_OK;
}

constexpr FunctionRow rows[] = {
    {"Expr", handlerOf<expr>, 1, 2, {ARG_STRING, ARG_STRING}, {}, "Words as an expression, odd names in quotes"},
};

FunctionFamily const family(rows);

} // namespace
