#include "Import/TextColumns.h"

#include "Import/PlainPoint.h"
#include "Import/PointBlock.h"
#include "Import/TextNames.h"
#include "support/Numbers.h"
#include "support/Streams.h"
#include "torvelan/dvec.h"

#include <algorithm>
#include <optional>

namespace {

double toNumber(std::string_view token) {
    return sp_ConvertEngToReal(token, nullptr);
}

// A point alone, or before a word, is none.
bool isNumber(std::string_view token) {
    return looksLikeNumber(token) && (token.front() != '.' || looksLikeNumber(token.substr(1)));
}

bool takesPairs(dvec const & vector) {
    return vector.isComplex() && !equalNoCase(vector.name(), "FREQUENCY");
}

class ColumnReader {
public:
    ColumnReader(tvfstream & stream, YArray<dvec *> const & vectors, GapBudget & gaps)
        : stream_(stream), vectors_(vectors), gaps_(gaps), eachOnce_(isEachOnce(vectors)) {}

    ColumnsEnd read() {
        RowEnd end = RowEnd::next;
        while (end == RowEnd::next) {
            readPlainRows();
            end = readRow();
        }
        return end == RowEnd::newBlock    ? ColumnsEnd::newBlock
               : end == RowEnd::tooSparse ? ColumnsEnd::tooManyGaps
                                          : ColumnsEnd::finished;
    }

private:
    enum class RowEnd { next, fileEnd, newBlock, tooSparse };
    enum class Taken { value, notANumber, badPair };

    // So that rows may be gathered before they are appended.
    static bool isEachOnce(YArray<dvec *> vectors) {
        std::sort(vectors.begin(), vectors.end());
        return std::adjacent_find(vectors.begin(), vectors.end()) == vectors.end();
    }

    void readPlainRows() {
        if (!eachOnce_) return;
        if (std::all_of(vectors_.begin(), vectors_.end(), [](dvec const * v) { return v->isReal(); })) {
            gatherRows(real_, [this](std::string_view text, double * values) {
                return parsePlainRow(text, values, vectors_.size());
            });
        } else {
            findPairs();
            gatherRows(mixed_,
                       [this](std::string_view text, complex * values) { return parsePlainRow(text, values, kinds_); });
        }
    }

    void findPairs() {
        kinds_.clear();
        for (dvec const * vector : vectors_)
            kinds_.push_back(takesPairs(*vector) ? PlainColumn::pair : PlainColumn::number);
    }

    // Rows where they lie in the stream's buffer, as long as there is nothing unusual about them. They give what
    // readRow would, only sooner.
    template <class Element, class Parse> void gatherRows(std::optional<PointBlock<Element>> & block, Parse parse) {
        if (!block) block.emplace(vectors_);
        std::size_t rows = 0, bytes = 0;
        while (std::size_t const taken = parse(stream_.buffered(), block->room())) {
            stream_.skipBuffered(taken);
            block->addPoint();
            ++rows;
            bytes += taken;
        }
        if (rows >= rowsToJudgeBy && !foreseen_) expectRows(rows, bytes);
        block->flush();
    }

    // The rest of the file may go on like this. It may also be a hole, for which memory must not be wanted in earnest.
    void expectRows(std::size_t rows, std::size_t bytes) {
        constexpr double mostValues = 32 << 20; // from there on growing costs little
        std::int64_t const rest = static_cast<std::int64_t>(stream_.getFileSize()) - stream_.tellg();
        double const guess = static_cast<double>(rest) / static_cast<double>(bytes) * static_cast<double>(rows);
        double const more = std::min(guess, mostValues / static_cast<double>(vectors_.size()));
        for (dvec * vector : vectors_) vector->expectVals(static_cast<std::int64_t>(more) + rowsToJudgeBy);
        foreseen_ = true;
    }

    RowEnd readRow() {
        if (!stream_.getline(&line_)) return RowEnd::fileEnd;
        rest_ = line_;
        for (std::size_t column = 0; column < vectors_.size(); ++column) {
            std::string_view const token = nextToken();
            if (token.empty()) return column == 0 ? RowEnd::next : endShortRow(column);
            Taken const taken = takeValue(*vectors_[column], token);
            if (taken == Taken::badPair) return RowEnd::fileEnd;
            if (taken == Taken::notANumber) return endBlock(column);
        }
        return endRow();
    }

    RowEnd endRow() const { return stream_.eof() || stream_.fail() ? RowEnd::fileEnd : RowEnd::next; }

    RowEnd endShortRow(std::size_t column) { return fill(column) ? endRow() : RowEnd::tooSparse; }

    // The line will be read again, as the first of the next block. One that the end of the file has cut off has no
    // line end to go back over, and the stream stands before the one of the line above then.
    RowEnd endBlock(std::size_t column) {
        stream_.seekg(-static_cast<std::int64_t>(line_.size()) - 1, 1);
        return column == 0 || fill(column) ? RowEnd::newBlock : RowEnd::tooSparse;
    }

    // The row from here on with zeros. False, and nothing done, when too much has been filled already.
    bool fill(std::size_t column) {
        std::size_t const count = vectors_.size() - column;
        if (count > gaps_.left) return false;
        gaps_.left -= count;
        for (; column < vectors_.size(); ++column) vectors_[column]->addVal(0.0);
        return true;
    }

    std::string_view nextToken() {
        std::string_view token;
        sp_GetToken(rest_, textSeparators, token);
        return token;
    }

    Taken takeValue(dvec & vector, std::string_view token) {
        if (token.front() == '(' || takesPairs(vector)) return takePair(vector, token) ? Taken::value : Taken::badPair;
        if (!isNumber(token)) return Taken::notANumber;
        vector.addVal(toNumber(token));
        return Taken::value;
    }

    // "(1,2)", "( 1 2 )" and the like, or without parentheses.
    bool takePair(dvec & vector, std::string_view token) {
        bool const opened = token.front() == '(';
        if (opened) token.remove_prefix(1);
        if (token.empty()) token = nextToken();
        complex value;
        value.re = toNumber(token);
        token = nextToken();
        value.im = toNumber(token);
        if (opened && !token.ends_with(')') && nextToken() != ")") return false;
        if (!vector.becomeComplex()) return false;
        vector.addVal(value);
        return true;
    }

    static constexpr std::size_t rowsToJudgeBy = 1000;

    tvfstream & stream_;
    YArray<dvec *> const & vectors_;
    GapBudget & gaps_;
    bool const eachOnce_;
    std::optional<PointBlock<double>> real_;
    std::optional<PointBlock<complex>> mixed_; // when a vector is complex
    YArray<PlainColumn> kinds_;                // of the vectors then
    bool foreseen_ = false;                    // memory has been taken for the rest of the file
    YString line_;
    std::string_view rest_; // of the line
};

} // namespace

GapBudget::GapBudget(tvfstream const & stream) {
    constexpr std::uint64_t always = std::uint64_t{4} << 20, forEachByte = 4;
    left = always + forEachByte * stream.getFileSize();
}

ColumnsEnd readTextColumns(tvfstream & stream, YArray<dvec *> const & vectors, GapBudget & gaps) {
    return ColumnReader(stream, vectors, gaps).read();
}

ColumnsEnd readTextColumns(tvfstream & stream, YArray<dvec *> const & vectors) {
    GapBudget gaps(stream);
    return readTextColumns(stream, vectors, gaps);
}

void readAllNumbers(tvfstream & stream, dvec & vector) {
    constexpr std::size_t most = 4096;
    YArray<double> values(most);
    YString line;
    do {
        std::string_view rest = line, token;
        while (sp_GetToken(rest, textSeparators, token))
            if (looksLikeNumber(token)) vector.addVal(toNumber(token));
        PlainNumbers run;
        while ((run = parsePlainNumbers(stream.buffered(), values.data(), most)).count != 0) {
            stream.skipBuffered(run.taken);
            vector.addVals(values.data(), run.count);
        }
    } while (stream.getline(&line));
}
