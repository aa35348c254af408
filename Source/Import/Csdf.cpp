#include "Import/Csdf.h"

#include "Import/CsdfHeader.h"
#include "Import/CsdfRows.h"
#include "Import/CsdfTokeniser.h"
#include "Import/GroupBeingRead.h"
#include "Import/OutputFile.h"
#include "Import/SignalName.h"
#include "Import/UniqueNames.h"
#include "support/Numbers.h"

#include <algorithm>
#include <limits>

namespace {

int nextGroupNumber = 1;

struct ReasonRow {
    CsdfResult result;
    char const * reason;
};

constexpr ReasonRow reasonRows[] = {
    {CsdfResult::noHeader, "No header found"},
    {CsdfResult::badHeader, "Bad format in header"},
    {CsdfResult::noNodes, "Node names block missing"},
    {CsdfResult::unknownBlock, "Unknown block header"},
    {CsdfResult::badNode, "Illegal character found in node name"},
    {CsdfResult::unexpectedNodes, "Unexpected node names block"},
    {CsdfResult::wrongNodeCount, "Number of nodes found does not match header"},
    {CsdfResult::badData, "Bad format in data block"},
    {CsdfResult::missingData, "Missing data for some vectors. Torvelan currently does not support this feature"},
};

// A node that is called in no known form keeps its name.
SignalName signalOfNode(std::string_view names) {
    SignalName signal;
    if (!convertSignalName(names, signal)) signal.name = YString(names.substr(0, names.find(';')));
    return signal;
}

YString withoutCommas(YString const & name) {
    std::string text(name.view());
    std::replace(text.begin(), text.end(), ',', '_');
    return YString(text);
}

class SectionReader {
public:
    SectionReader(CsdfTokeniser & tokeniser, Group * group, OutputFile & output, std::int64_t bufferBytes)
        : tokeniser_(tokeniser), group_(group), output_(output), uniqueName_(*group), bufferBytes_(bufferBytes) {}

    CsdfResult read() {
        CsdfResult const result = readBlocks();
        for (auto vector = made_.rbegin(); vector != made_.rend(); ++vector) (*vector)->shrinkReal();
        if (result == CsdfResult::ended) return begun_ ? CsdfResult::unfinished : CsdfResult::nothing;
        return result;
    }

private:
    CsdfResult readBlocks() {
        CsdfResult result = readCsdfHeader(tokeniser_, header_, begun_);
        if (begun_ && (result == CsdfResult::done || result == CsdfResult::ended)) nameGroup();
        YArray<std::string> nodes;
        if (result == CsdfResult::done) result = readCsdfNodes(tokeniser_, nodes);
        if (result != CsdfResult::done) return result;
        if (!countIsRight(nodes.size())) return CsdfResult::wrongNodeCount;
        makeVectors(nodes);
        output_.attachTo(*group_);
        return readCsdfRows(tokeniser_, vectors_);
    }

    void nameGroup() {
        YString const * const title = value("TITLE");
        YString const * const date = value("DATE");
        group_->title = title != nullptr ? *title : YString("Unknown");
        group_->date = date != nullptr ? *date : YString();
        group_->name = YString::joined("csdf_", {YString(nextGroupNumber++)});
    }

    bool countIsRight(std::size_t nodes) const {
        YString const * const announced = value("NODES");
        return announced == nullptr || parseInt(*announced) == static_cast<std::int64_t>(nodes);
    }

    void makeVectors(YArray<std::string> const & nodes) {
        auto const share = bufferBytes_ / (static_cast<std::int64_t>(nodes.size()) + 1);
        constexpr std::int64_t most = std::numeric_limits<int>::max();
        vectorBytes_ = static_cast<int>(std::clamp<std::int64_t>(share, 0, most));
        if (YString const * const name = value("SWEEPVAR")) vectors_.sweep = {makeVector(plainSignalName(*name))};
        YString const * const answer = value("COMPLEXVALUES");
        vectors_.isComplex = answer != nullptr && equalNoCase(*answer, "YES");
        for (std::string const & names : nodes) makeNodeVector(signalOfNode(names));
    }

    dvec * makeVector(SignalName const & signal) {
        auto * const vector = new dvec(uniqueName_(withoutCommas(signal.name)), group_, signal.type);
        made_.push_back(vector);
        vector->enterGroup();
        vector->setBufferSize(vectorBytes_);
        return vector;
    }

    void makeNodeVector(SignalName const & signal) {
        dvec * const vector = makeVector(signal);
        vectors_.nodes.push_back(vector);
        if (!vectors_.sweep.empty()) vector->ref = *vectors_.sweep.front();
        if (vectors_.isComplex) vector->setComplexFlag();
    }

    YString const * value(std::string_view key) const { return findCsdfValue(header_, key); }

    CsdfTokeniser & tokeniser_;
    Group * const group_;
    OutputFile & output_;
    UniqueNames uniqueName_;
    std::int64_t const bufferBytes_; // for all vectors
    int vectorBytes_ = 0;            // for each
    bool begun_ = false;
    CsdfHeader header_;
    YArray<dvec *> made_; // in order; the group owns them
    CsdfVectors vectors_;
};

} // namespace

char const * csdfReason(CsdfResult result) noexcept {
    for (ReasonRow const & row : reasonRows)
        if (row.result == result) return row.reason;
    return "Unknown";
}

CsdfResult readCsdfSection(CsdfTokeniser & tokeniser, Group * group, OutputFile & output, std::int64_t bufferBytes,
                           MessageHandler & messages) {
    CsdfResult const result = SectionReader(tokeniser, group, output, bufferBytes).read();
    if (result == CsdfResult::done || result == CsdfResult::unfinished) {
        output.finish();
        listAsRead(group, messages);
    }
    tokeniser.skipWhiteSpace();
    return result;
}
