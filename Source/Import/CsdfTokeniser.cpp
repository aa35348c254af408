#include "Import/CsdfTokeniser.h"

#include "support/System.h"

#include <algorithm>
#include <fast_float/fast_float.h>

namespace {

bool holds(std::string_view set, char c) noexcept {
    return set.find(c) != set.npos;
}

std::string_view cutAtNul(std::string_view text) noexcept {
    return text.substr(0, text.find('\0'));
}

} // namespace

void CsdfTokeniser::skipWhiteSpace() {
    do {
        std::string_view const ahead = stream_.buffered();
        auto const next = std::find_if_not(ahead.begin(), ahead.end(), isCsdfSpace);
        stream_.skipBuffered(static_cast<std::size_t>(next - ahead.begin()));
        if (next != ahead.end()) return;
    } while (stream_.peek() >= 0);
}

bool CsdfTokeniser::scan(CsdfToken & token, std::string_view delimiters) {
    token = {};
    skipWhiteSpace();
    int const first = stream_.peek();
    if (first < 0) return false;
    auto const c = static_cast<char>(first);
    if (holds(delimiters, c)) {
        token.delimiter = c;
        stream_.skipBuffered(1);
    } else if (c == '\'') {
        stream_.skipBuffered(1);
        token.touchesEnd = !gather(token, [](char x) { return x == '\''; });
        if (!token.touchesEnd) stream_.skipBuffered(1);
    } else {
        token.touchesEnd = !gather(token, [delimiters](char x) { return isCsdfSpace(x) || holds(delimiters, x); });
    }
    return true;
}

// A word up to, but without, what ends it; false when the input ended first.
template <class IsEnd> bool CsdfTokeniser::gather(CsdfToken & token, IsEnd isEnd) {
    gathered_.clear();
    for (bool isMore = true; isMore; isMore = stream_.peek() >= 0) {
        std::string_view const ahead = stream_.buffered();
        auto const length = static_cast<std::size_t>(std::find_if(ahead.begin(), ahead.end(), isEnd) - ahead.begin());
        bool const found = length != ahead.size();
        bool const isInOnePiece = found && gathered_.empty();
        if (isInOnePiece)
            token.text = cutAtNul(ahead.substr(0, length));
        else
            gathered_.append(ahead, 0, length);
        stream_.skipBuffered(length);
        if (isInOnePiece) return true;
        if (found) break;
    }
    token.text = cutAtNul(gathered_);
    return stream_.peek() >= 0;
}

void CsdfTokeniserImpl::yield() {
    sp_ProcessEvents();
}

double csdfNumber(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size())); // of a quoted word
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return 0;
    }
    double value = 0;
    fast_float::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}
