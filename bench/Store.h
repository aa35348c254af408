// What the benchmark programs share: a session, vectors of the global group, and an evaluation that is checked.
#pragma once

#include "torvelan/torvelan.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// Shows errors on standard error: a benchmark that fails must not look fast.
class Loud final : public MessageHandler {
public:
    void finalOutput(MessageLevel level, YString const & text) override;
};

// The session of the program and the context of its evaluations.
ScpParseContext const & context();

// Repeatable values between low and high.
std::vector<double> values(std::size_t n, unsigned seed, double low, double high);

// A vector of the global group, replacing one of the same name; its reference is 0, 1, 2, ... with `withReference`.
void setReal(char const * name, std::vector<double> const & data, bool withReference = false);
void setComplex(char const * name, std::vector<double> const & re, std::vector<double> const & im);
// The same values in divisions of equal length; each division of the reference counts from 0.
void setDivisions(char const * name, std::vector<double> const & data, std::size_t perDivision,
                  bool withReference = false);

// Evaluates through vec_EvalVecList and releases the result; the program ends when it fails.
void evaluate(char const * expr);
// Evaluates and gives element i of the result, whose length must be n.
complex elementOf(char const * expr, std::size_t n, std::size_t i);
// Ends the program unless two numbers agree within a relative tolerance.
void check(char const * what, double found, double wanted, double tolerance = 1e-14);

} // namespace bench
