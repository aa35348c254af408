// A vector as a test sees it: plain values in plain divisions, with operations written as naive loops.
#pragma once

#include "torvelan/torvelan.h"

#include <complex>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct Model {
    using Value = std::complex<double>;
    using Division = std::vector<Value>;

    bool isComplex = false;
    std::vector<Division> divisions;
    std::vector<std::vector<double>> reference; // as many divisions, or empty: no reference

    bool isScalar() const { return divisions.size() == 1 && divisions[0].size() == 1; }
};

// A result, or a refusal of one element.
using Answer = std::optional<Model::Value>;
using UnaryLoop = std::function<Answer(Model::Value)>;
using BinaryLoop = std::function<Answer(Model::Value, Model::Value)>;

// Division by division; a division with a refused element is dropped when there are several, nullopt when it was all.
std::optional<Model> applied(Model const & a, bool complexResult, UnaryLoop const & loop);
// The same for two operands, of equal shape, or one with a single element for everything or for each division. The
// reference is that of the first operand that has one.
std::optional<Model> applied(Model const & a, Model const & b, bool complexResult, BinaryLoop const & loop);

// Enters a vector of the global group.
dvec * enterModel(char const * name, Model const & model);
// Empty when a vector shows what the model says, numbers within `ulps` units in the last place, else what differs.
std::string differenceFrom(XYVector const & vector, Model const & model, double ulps);
