#include "Import/CsdfHeader.h"

#include "Import/CsdfTokeniser.h"

namespace {

// What a word that begins with '#' means, in the header or among the nodes.
CsdfResult endOfBlock(std::string_view word, std::string_view next, std::string_view other, CsdfResult otherResult) {
    if (equalNoCase(word, next)) return CsdfResult::done;
    return equalNoCase(word, other) ? otherResult : CsdfResult::unknownBlock;
}

CsdfResult readEntries(CsdfTokeniser & tokeniser, CsdfHeader & header) {
    CsdfToken token;
    while (tokeniser.word(token)) {
        if (token.text.starts_with('#')) return endOfBlock(token.text, "#N", "#C", CsdfResult::noNodes);
        if (!token.isWord()) return CsdfResult::badHeader;
        YString const key(token.text);
        if (!tokeniser.word(token)) break;
        if (token.delimiter != '=') return CsdfResult::badHeader;
        if (!tokeniser.word(token)) break;
        if (!token.isWord()) return CsdfResult::badHeader;
        header[key] = YString(token.text);
    }
    return CsdfResult::ended;
}

} // namespace

CsdfResult readCsdfHeader(CsdfTokeniser & tokeniser, CsdfHeader & header, bool & begun) {
    CsdfToken token;
    if (!tokeniser.word(token)) return CsdfResult::ended;
    if (!equalNoCase(token.text, "#H")) return CsdfResult::noHeader;
    begun = true;
    return readEntries(tokeniser, header);
}

CsdfResult readCsdfNodes(CsdfTokeniser & tokeniser, YArray<std::string> & nodes) {
    constexpr std::string_view again = ";"; // before a further name of the node
    bool isFurther = false;
    CsdfToken token;
    while (tokeniser.word(token, again)) {
        if (token.text.starts_with('#')) return endOfBlock(token.text, "#C", "#N", CsdfResult::unexpectedNodes);
        if (!token.isWord() && nodes.empty()) return CsdfResult::badNode;
        if (!token.isWord())
            isFurther = true;
        else if (isFurther)
            nodes.back().append(again).append(token.text);
        else
            nodes.emplace_back(token.text);
        if (token.isWord()) isFurther = false;
    }
    return CsdfResult::ended;
}

YString const * findCsdfValue(CsdfHeader const & header, std::string_view key) {
    auto const entry = header.find(key);
    return entry != header.end() ? &entry->second : nullptr;
}
