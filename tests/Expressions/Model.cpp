#include "Model.h"

#include <cmath>
#include <limits>
#include <sstream>

namespace {

std::optional<Model::Division> loopOver(Model::Division const & a, UnaryLoop const & loop) {
    Model::Division out;
    for (Model::Value const & x : a) {
        Answer const y = loop(x);
        if (!y) return std::nullopt;
        out.push_back(*y);
    }
    return out;
}

Model::Value element(Model const & m, std::size_t division, std::size_t i) {
    Model::Division const & values = m.divisions[m.divisions.size() == 1 ? 0 : division];
    return values[values.size() == 1 ? 0 : i];
}

std::optional<Model> nothingIfEmpty(Model result) {
    if (result.divisions.empty()) return std::nullopt;
    return result;
}

bool near(double found, double wanted, double ulps) {
    if (std::isnan(wanted) || std::isnan(found)) return std::isnan(wanted) && std::isnan(found);
    if (found == wanted) return true;
    return std::fabs(found - wanted) <= ulps * std::numeric_limits<double>::epsilon() * std::fabs(wanted);
}

bool near(Model::Value found, Model::Value wanted, double ulps) {
    if (near(found.real(), wanted.real(), ulps) && near(found.imag(), wanted.imag(), ulps)) return true;
    return std::abs(found - wanted) <= ulps * std::numeric_limits<double>::epsilon() * std::abs(wanted);
}

} // namespace

std::optional<Model> applied(Model const & a, bool complexResult, UnaryLoop const & loop) {
    Model result;
    result.isComplex = complexResult;
    for (std::size_t d = 0; d < a.divisions.size(); ++d) {
        auto out = loopOver(a.divisions[d], loop);
        if (!out) continue;
        result.divisions.push_back(*out);
        if (!a.reference.empty()) result.reference.push_back(a.reference[d]);
    }
    return nothingIfEmpty(result);
}

std::optional<Model> applied(Model const & a, Model const & b, bool complexResult, BinaryLoop const & loop) {
    Model pairs; // element (i, d) of both, side by side, so that the unary loop does the rest
    std::vector<std::vector<Model::Value>> right;
    std::size_t const divisions = std::max(a.divisions.size(), b.divisions.size());
    Model const & shape = a.reference.empty() ? b : a;
    for (std::size_t d = 0; d < divisions; ++d) {
        auto lengthIn = [d](Model const & m) { return m.divisions[m.divisions.size() == 1 ? 0 : d].size(); };
        std::size_t const n = std::max(lengthIn(a), lengthIn(b));
        Model::Division left;
        right.emplace_back();
        for (std::size_t i = 0; i < n; ++i) {
            left.push_back(element(a, d, i));
            right.back().push_back(element(b, d, i));
        }
        pairs.divisions.push_back(left);
    }
    pairs.reference = shape.reference;
    Model result;
    result.isComplex = complexResult;
    for (std::size_t d = 0; d < divisions; ++d) {
        std::size_t i = 0;
        auto out = loopOver(pairs.divisions[d], [&](Model::Value x) { return loop(x, right[d][i++]); });
        if (!out) continue;
        result.divisions.push_back(*out);
        if (!pairs.reference.empty()) result.reference.push_back(pairs.reference[d]);
    }
    return nothingIfEmpty(result);
}

dvec * enterModel(char const * name, Model const & model) {
    auto * vector = new dvec(YString(name), nullptr, PT_UNKNOWN);
    if (model.isComplex) vector->setComplexFlag();
    for (std::size_t d = 0; d < model.divisions.size(); ++d) {
        if (d > 0) vector->addDivision(YString());
        if (d > 0 && !model.reference.empty()) vector->ref.addDivision(YString());
        for (Model::Value const & x : model.divisions[d])
            (void)(model.isComplex ? vector->addVal(complex{x.real(), x.imag()}) : vector->addVal(x.real()));
        if (model.reference.empty()) continue;
        for (double x : model.reference[d]) (void)vector->ref.addVal(x);
    }
    vector->enterGroup();
    return vector;
}

std::string differenceFrom(XYVector const & vector, Model const & model, double ulps) {
    std::ostringstream out;
    out.precision(17);
    if (vector.isComplex() != model.isComplex) out << "kind " << int(vector.type());
    if (vector.numDivisions() != std::int64_t(model.divisions.size())) out << vector.numDivisions() << " divisions";
    if (!out.str().empty()) return out.str();
    for (std::size_t d = 0; d < model.divisions.size(); ++d) {
        auto const division = static_cast<std::int64_t>(d);
        if (vector.length(division) != std::int64_t(model.divisions[d].size()))
            return "length of division " + std::to_string(d);
        for (std::size_t i = 0; i < model.divisions[d].size(); ++i) {
            auto const k = static_cast<std::int64_t>(i);
            Model::Value const found(vector.getReal(k, division), vector.getImag(k, division));
            if (near(found, model.divisions[d][i], ulps)) continue;
            out << "element " << i << " of division " << d << " is " << found << ", wanted " << model.divisions[d][i];
            return out.str();
        }
    }
    if (model.reference.empty()) return vector.ref.totalLength() == 0 ? "" : "a reference";
    if (vector.ref.numDivisions() != std::int64_t(model.reference.size())) return "divisions of the reference";
    for (std::size_t d = 0; d < model.reference.size(); ++d)
        if (vector.ref.length(std::int64_t(d)) != std::int64_t(model.reference[d].size())) return "reference length";
    for (std::size_t d = 0; d < model.reference.size(); ++d)
        for (std::size_t i = 0; i < model.reference[d].size(); ++i)
            if (vector.ref.getReal(std::int64_t(i), std::int64_t(d)) != model.reference[d][i]) return "reference value";
    return "";
}
