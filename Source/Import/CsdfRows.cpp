#include "Import/CsdfRows.h"

#include "Import/CsdfTokeniser.h"
#include "Import/PlainCsdfRow.h"
#include "Import/PointBlock.h"
#include "support/Numbers.h"

#include <cstdlib>

namespace {

// The digits have no prefix, and count from 1.
long parseIndex(std::string_view text) {
    std::string const digits(text);
    return std::strtol(digits.c_str(), nullptr, 16);
}

template <class Element> class RowReader {
public:
    RowReader(CsdfTokeniser & tokeniser, CsdfVectors const & vectors)
        : tokeniser_(tokeniser), vectors_(vectors), sweeps_(vectors.sweep), block_(vectors.nodes) {}

    CsdfResult read() {
        CsdfResult result = CsdfResult::ended;
        do {
            while (readPlainRow()) {
            }
            sweeps_.flush();
            block_.flush();
            result = readRow();
        } while (result == CsdfResult::done && equalNoCase(token_.text, "#C"));
        if (result != CsdfResult::done) return result;
        return token_.text == "#" || token_.text == "#;" ? result : CsdfResult::badData;
    }

private:
    // A whole row where it lies in memory, when there is nothing unusual about it. It gives what the tokens would, only
    // sooner.
    bool readPlainRow() {
        double sweep = 0;
        PlainCsdfRow const row = parsePlainCsdfRow(tokeniser_.ahead(), sweep, block_.room(), vectors_.nodes.size());
        if (row.taken == 0) return false;
        tokeniser_.skipAhead(row.taken, row.words);
        sweeps_.add(sweep);
        block_.addPoint();
        return true;
    }

    // One row, and the word behind it. Words that the end of the input has cut do not count.
    CsdfResult readRow() {
        if (!tokeniser_.word(token_)) return CsdfResult::ended;
        if (!token_.isWord()) return CsdfResult::badData;
        if (!token_.touchesEnd)
            for (dvec * sweep : vectors_.sweep) sweep->addVal(csdfNumber(token_.text));
        if (!tokeniser_.word(token_, CsdfTokeniser::valueDelimiters)) return CsdfResult::ended;
        std::int64_t const count = token_.isWord() ? parseInt(token_.text) : 0;
        if (count < 1 || count > nodeCount()) return CsdfResult::badData;
        if (!tokeniser_.number(token_)) return CsdfResult::ended;
        for (std::int64_t i = 0; i < count; ++i) {
            CsdfResult const result = readValue(i, i == count - 1);
            if (result != CsdfResult::done) return result;
        }
        return token_.isWord() ? CsdfResult::done : CsdfResult::badData;
    }

    // The value whose first token is in hand; the token behind it is in hand afterwards.
    CsdfResult readValue(std::int64_t index, bool isLast) {
        Element value{};
        bool isWhole = false;
        CsdfResult const result = takeNumbers(value, isWhole);
        if (result != CsdfResult::done) return result;
        bool isMore = next(isLast);
        if (isMore && token_.delimiter == ':') {
            isMore = next(isLast);
            CsdfResult const checked = isMore ? checkIndex(index) : CsdfResult::done;
            if (checked != CsdfResult::done) return checked;
            isMore = isMore && next(isLast);
        }
        if (isWhole) vectors_.nodes[static_cast<std::size_t>(index)]->addVal(value);
        return isMore ? CsdfResult::done : CsdfResult::ended;
    }

    CsdfResult takeNumber(double & value, bool & isWhole) {
        if (!token_.isWord()) return CsdfResult::badData;
        value = csdfNumber(token_.text);
        isWhole = !token_.touchesEnd;
        return CsdfResult::done;
    }
    CsdfResult takeNumbers(double & value, bool & isWhole) { return takeNumber(value, isWhole); }
    CsdfResult takeNumbers(complex & value, bool & isWhole) {
        CsdfResult const result = takeNumber(value.re, isWhole);
        if (result != CsdfResult::done) return result;
        if (!tokeniser_.number(token_)) return CsdfResult::ended;
        if (token_.delimiter != '/') return CsdfResult::badData;
        if (!tokeniser_.number(token_)) return CsdfResult::ended;
        return takeNumber(value.im, isWhole);
    }

    bool next(bool isLast) {
        return isLast ? tokeniser_.word(token_, CsdfTokeniser::valueDelimiters) : tokeniser_.number(token_);
    }

    CsdfResult checkIndex(std::int64_t index) const {
        if (token_.touchesEnd) return CsdfResult::done;
        long const given = token_.isWord() ? parseIndex(token_.text) : 0;
        if (given < 1 || given > nodeCount()) return CsdfResult::badData;
        return given == index + 1 ? CsdfResult::done : CsdfResult::missingData;
    }

    std::int64_t nodeCount() const noexcept { return static_cast<std::int64_t>(vectors_.nodes.size()); }

    CsdfTokeniser & tokeniser_;
    CsdfVectors const & vectors_;
    PointBlock<double> sweeps_;
    PointBlock<Element> block_; // whole rows
    CsdfToken token_;
};

} // namespace

CsdfResult readCsdfRows(CsdfTokeniser & tokeniser, CsdfVectors const & vectors) {
    return vectors.isComplex ? RowReader<complex>(tokeniser, vectors).read()
                             : RowReader<double>(tokeniser, vectors).read();
}
