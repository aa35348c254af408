#include "Import/TextData.h"

#include "Groups/GroupStore.h"
#include "Import/TextColumns.h"
#include "Import/TextHeader.h"
#include "Import/TextNames.h"
#include "Import/UniqueNames.h"
#include "support/Streams.h"

#include <algorithm>
#include <numeric>

namespace {

enum class BlockEnd {
    finished = 0,
    another = 1, // a block follows
    badFormat = 3,
};

class TextReader {
public:
    TextReader(tvfstream & stream, Group * group, bool keepColons)
        : stream_(stream), group_(group), keepColons_(keepColons), names_(*group), gaps_(stream) {}

    BlockEnd readBlock() {
        TextHeader const header = readTextHeader(stream_);
        if (!header.label.empty()) group_->addLabel(header.label);
        YArray<dvec *> vectors; // in file order
        makeVectors(header, vectors);
        if (stream_.eof()) return BlockEnd::badFormat;
        ColumnsEnd const end = vectors.empty() ? readNumbers(vectors) : readTextColumns(stream_, vectors, gaps_);
        if (vectors.size() == 1) giveIndex(*vectors.front());
        return end == ColumnsEnd::newBlock      ? BlockEnd::another
               : end == ColumnsEnd::tooManyGaps ? BlockEnd::badFormat
                                                : BlockEnd::finished;
    }

private:
    void makeVectors(TextHeader const & header, YArray<dvec *> & vectors) {
        std::string_view rest = header.firstLine, token;
        while (sp_GetToken(rest, textSeparators, token, '"') && !looksLikeNumber(token)) {
            TextName const named = textName(withoutColons(token, keepColons_));
            vectors.push_back(header.continues() ? continuedVector(named.name) : newVector(named.name, named.type));
            if (!header.continues() && vectors.size() > 1) vectors.back()->ref = *vectors.front();
        }
    }

    dvec * newVector(YString const & name, PhysType type) {
        auto * vector = new dvec(names_(name), group_, type);
        vector->enterGroup();
        return vector;
    }

    // One that the group does not have stays outside of it, and goes with the other temporaries.
    dvec * continuedVector(YString const & name) {
        dvec * vector = group_->find(name);
        if (vector == nullptr) return new dvec(name, group_, PT_UNKNOWN);
        vector->addDivision(group_->name);
        return vector;
    }

    // A file without names is one vector, from its very start.
    ColumnsEnd readNumbers(YArray<dvec *> & vectors) {
        stream_.seekg(0);
        vectors.push_back(newVector("Data", PT_UNKNOWN));
        readAllNumbers(stream_, *vectors.front());
        return ColumnsEnd::finished;
    }

    // The values are counted from 0, in each division. An index that is there already goes on.
    void giveIndex(dvec & vector) const {
        YString const name("Index");
        std::int64_t const last = vector.numDivisions() - 1;
        bool const goesOn = last > 0 && vector.ref.name() == name && vector.ref.numDivisions() == last;
        if (!goesOn) vector.ref = NamedVector(name);
        for (std::int64_t division = goesOn ? last : 0; division <= last; ++division) {
            if (division != 0) vector.ref.addDivision(group_->name);
            appendCount(vector.ref, vector.length(division));
        }
    }

    static void appendCount(NamedVector & index, std::int64_t n) {
        constexpr std::int64_t most = 1024;
        double values[most];
        index.expectVals(n);
        for (std::int64_t done = 0; done < n; done += most) {
            std::int64_t const count = std::min(most, n - done);
            std::iota(values, values + count, static_cast<double>(done));
            index.addVals(values, static_cast<std::size_t>(count));
        }
    }

    tvfstream & stream_;
    Group * group_;
    bool keepColons_;
    UniqueNames names_;
    GapBudget gaps_;
};

} // namespace

bool readTextData(tvfstream & stream, Group * group, bool keepColons, MessageHandler & messages) {
    nameSpace().current = group;
    TextReader reader(stream, group, keepColons);
    BlockEnd end;
    do end = reader.readBlock();
    while (end == BlockEnd::another);
    if (end == BlockEnd::badFormat) messages.error("Bad format in ASCII data file");
    return end == BlockEnd::finished;
}
