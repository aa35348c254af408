#include "DataFiles/ContinuedVectors.h"

#include "DataFiles/VectorFileAccess.h"
#include "torvelan/Exceptions.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

// Vectors over a reference, which may be the vector of others: a pass brings lengths one step further.
constexpr int mostPasses = 16;

std::int64_t startOf(VectorRep const & record, std::int64_t entry) {
    return elementCount(record.divisionIndex.entry(entry), record.type);
}

// Where the data would end if nothing were lost, as far as the record tells.
std::int64_t knownEnd(VectorRep const & record) {
    std::int64_t const entries = record.divisionIndex.count();
    return std::max(record.elements(), entries != 0 ? startOf(record, entries - 1) : 0);
}

bool contradict(VectorRep const & a, VectorRep const & b) {
    std::int64_t const both = std::min(a.divisionIndex.count(), b.divisionIndex.count());
    for (std::int64_t i = 0; i < both; ++i)
        if (startOf(a, i) != startOf(b, i)) return true;
    return false;
}

class FillingUp {
public:
    explicit FillingUp(std::uint64_t mostBytes) noexcept : left(mostBytes) {}

    // Whether there was anything to do.
    bool evenOut(VectorRep & a, VectorRep & b) {
        if (contradict(a, b)) return false;
        std::int64_t const end = std::max(knownEnd(a), knownEnd(b));
        if (!spend(a, b, end) || !spend(b, a, end)) return false;
        bool const changed = follow(a, b, end);
        return follow(b, a, end) || changed;
    }
    bool isExhausted() const noexcept { return exhausted; }

private:
    static std::int64_t missingEntries(VectorRep const & record, VectorRep const & model) {
        std::int64_t const first = std::max<std::int64_t>(record.divisionIndex.count(), 1);
        return std::max<std::int64_t>(model.divisionIndex.count() - first, 0);
    }

    // Before anything changes, what the record lacks: false when it is more than there may be.
    bool spend(VectorRep const & record, VectorRep const & model, std::int64_t end) {
        std::uint64_t const entryBytes =
            static_cast<std::uint64_t>(missingEntries(record, model)) * sizeof(std::uint64_t);
        auto const values = static_cast<std::uint64_t>(std::max<std::int64_t>(end - record.elements(), 0));
        std::uint64_t const width = elementWidth(record.type);
        exhausted = exhausted || entryBytes > left || values > (left - entryBytes) / width;
        if (!exhausted) left -= entryBytes + values * width;
        return !exhausted;
    }

    bool follow(VectorRep & record, VectorRep const & model, std::int64_t end) {
        bool changed = false;
        for (std::int64_t i = std::max<std::int64_t>(record.divisionIndex.count(), 1); i < model.divisionIndex.count();
             ++i) {
            record.divisionIndex.append(static_cast<std::uint64_t>(startOf(model, i)) * elementWidth(record.type));
            changed = true;
        }
        return fill(record, end) || changed;
    }

    bool fill(VectorRep & record, std::int64_t end) {
        std::int64_t const missing = end - record.elements();
        if (missing <= 0) return false;
        constexpr double lost = std::numeric_limits<double>::quiet_NaN();
        if (record.type == VD_COMPLEX)
            append(record, complex{lost, lost}, static_cast<std::size_t>(missing));
        else
            append(record, lost, static_cast<std::size_t>(missing));
        return true;
    }

    template <class Value> static void append(VectorRep & record, Value const & value, std::size_t count) {
        std::array<Value, 512> values;
        values.fill(value);
        Value const * const data = values.data();
        for (std::size_t n; count != 0; count -= n) {
            n = std::min(count, values.size());
            record.append(data, n);
        }
    }

    std::uint64_t left;
    bool exhausted = false;
};

bool isWhole(BaseVector const & vector) {
    return VectorFileAccess::view(vector) == VectorFileAccess::View();
}

// False when there is too much to do.
bool fillUp(Group & group, std::uint64_t mostBytes) {
    FillingUp filling(mostBytes);
    bool changed = true;
    for (int pass = 0; changed; ++pass) {
        if (pass == mostPasses) return false;
        changed = false;
        group.forEachVector([&](dvec & vector) {
            bool const isPair = !vector.ref.name().empty() && !vector.isString() && !vector.ref.isString();
            if (!isPair || !isWhole(vector) || !isWhole(vector.ref)) return;
            VectorRep & values = VectorFileAccess::record(vector);
            VectorRep & reference = VectorFileAccess::record(vector.ref);
            changed = filling.evenOut(values, reference) || changed;
        });
        if (filling.isExhausted()) return false;
    }
    return true;
}

} // namespace

bool fillUpVectors(Group & group, std::uint64_t mostBytes) {
    try {
        return fillUp(group, mostBytes);
    } catch (FatalException const &) { // what is not opened is told by a message
        return false;
    }
}
