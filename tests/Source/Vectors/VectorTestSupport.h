// What the tests of the vectors share: building vectors, looking at them, failing allocations.
#pragma once

#include "Vectors/BlockMemory.h"
#include "torvelan/Exceptions.h"
#include "torvelan/Vectors.h"

#include <cstdint>
#include <string>
#include <vector>

// A vector of one division.
inline BaseVector realVector(std::vector<double> const & values) {
    BaseVector v;
    for (double x : values) v.addVal(x);
    return v;
}

inline BaseVector complexVector(std::vector<complex> const & values) {
    BaseVector v;
    v.setComplexFlag();
    for (complex z : values) v.addVal(z);
    return v;
}

inline BaseVector stringVector(std::vector<std::string> const & values) {
    BaseVector v;
    v.setSize(static_cast<std::int64_t>(values.size()), VD_STRING);
    for (std::size_t i = 0; i < values.size(); ++i) v.setString(values[i].c_str(), static_cast<std::int64_t>(i));
    return v;
}

// A vector with these divisions.
inline BaseVector steppedVector(std::vector<std::vector<double>> const & divisions) {
    BaseVector v;
    for (std::size_t d = 0; d < divisions.size(); ++d) {
        if (d > 0) v.addDivision("");
        for (double x : divisions[d]) v.addVal(x);
    }
    return v;
}

inline std::vector<double> valuesOf(BaseVector const & v) {
    std::vector<double> values;
    for (std::int64_t i = 0; i < v.length(); ++i) values.push_back(v.getReal(i));
    return values;
}

inline std::vector<std::vector<double>> divisionsOf(BaseVector const & v) {
    std::vector<std::vector<double>> divisions(static_cast<std::size_t>(v.numDivisions()));
    for (std::int64_t d = 0; d < v.numDivisions(); ++d)
        for (std::int64_t i = 0; i < v.length(d); ++i)
            divisions[static_cast<std::size_t>(d)].push_back(v.getReal(i, d));
    return divisions;
}

inline std::vector<std::string> textsOf(BaseVector const & v) {
    std::vector<std::string> texts;
    for (std::int64_t i = 0; i < v.length(); ++i) texts.emplace_back(v.getString(i) ? v.getString(i) : "(null)");
    return texts;
}

// Lets allocations of element memory fail while it lives.
class FailingAllocations {
public:
    explicit FailingAllocations(std::uint64_t first = 1) { BlockMemory::failAt(first, true); }
    ~FailingAllocations() { BlockMemory::failAt(0); }
    FailingAllocations(FailingAllocations const &) = delete;
    FailingAllocations & operator=(FailingAllocations const &) = delete;
};
