#include "Store.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace bench {

namespace {

[[noreturn]] void giveUp(std::string const & what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

dvec * freshVector(char const * name) {
    XYVector * old = nullptr;
    if (vec_GetVector(YString(), YString(name), &old) == VEC_OK) {
        NullMessageHandler silence;
        (void)vec_DestroyVector(YString(name), silence, true);
    }
    return new dvec(YString(name), nullptr, PT_UNKNOWN);
}

} // namespace

void Loud::finalOutput(MessageLevel, YString const & text) {
    std::fprintf(stderr, "%s\n", text.c_str());
}

ScpParseContext const & context() {
    static EngineSession const session;
    static ScpParseContext const instance{std::make_shared<Loud>()};
    return instance;
}

std::vector<double> values(std::size_t n, unsigned seed, double low, double high) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> between(low, high);
    std::vector<double> data(n);
    for (double & x : data) x = between(random);
    return data;
}

void setReal(char const * name, std::vector<double> const & data, bool withReference) {
    context();
    dvec * vector = freshVector(name);
    auto const n = static_cast<std::int64_t>(data.size());
    vector->setSize(n, VD_REAL);
    std::copy(data.begin(), data.end(), vector->writableRealData());
    if (withReference) {
        vector->ref.setSize(n, VD_REAL);
        double * x = vector->ref.writableRealData();
        for (std::int64_t i = 0; i < n; ++i) x[i] = static_cast<double>(i);
    }
    vector->enterGroup();
}

void setComplex(char const * name, std::vector<double> const & re, std::vector<double> const & im) {
    context();
    dvec * vector = freshVector(name);
    vector->setSize(static_cast<std::int64_t>(re.size()), VD_COMPLEX);
    complex * z = vector->writableComplexData();
    for (std::size_t i = 0; i < re.size(); ++i) z[i] = {re[i], im[i]};
    vector->enterGroup();
}

void setDivisions(char const * name, std::vector<double> const & data, std::size_t perDivision, bool withReference) {
    context();
    dvec * vector = freshVector(name);
    auto const append = [perDivision](NamedVector & to, std::size_t i, double value) {
        if (i > 0 && i % perDivision == 0) to.addDivision(YString());
        (void)to.addVal(value);
    };
    for (std::size_t i = 0; i < data.size(); ++i) {
        append(*vector, i, data[i]);
        if (withReference) append(vector->ref, i, static_cast<double>(i % perDivision));
    }
    vector->enterGroup();
}

void evaluate(char const * expr) {
    static YArray<XYVector *> result;
    result.clear();
    if (vec_EvalVecList(expr, &result, context(), YString(), false) != VEC_OK) giveUp(std::string(expr) + " failed");
    for (XYVector * vector : result) vec_ReleaseVector(vector);
}

complex elementOf(char const * expr, std::size_t n, std::size_t i) {
    YArray<XYVector *> result;
    if (vec_EvalVecList(expr, &result, context(), YString(), false) != VEC_OK) giveUp(std::string(expr) + " failed");
    XYVector * vector = result.front();
    if (vector->totalLength() != static_cast<std::int64_t>(n)) giveUp(std::string(expr) + " has another length");
    auto const k = static_cast<std::int64_t>(i);
    complex const value{vector->getReal(k), vector->getImag(k)};
    vec_ReleaseVector(vector);
    return value;
}

void check(char const * what, double found, double wanted, double tolerance) {
    if (std::fabs(found - wanted) <= tolerance * std::fabs(wanted)) return;
    giveUp(std::string(what) + ": found " + std::to_string(found) + ", wanted " + std::to_string(wanted));
}

} // namespace bench
