// Operators and elementwise functions against naive loops, over random shapes, kinds, divisions and references.

#include "Model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using Value = Model::Value;

struct Shape {
    std::vector<std::size_t> lengths; // of the divisions
    bool withReference;
};

class Differential : public testing::Test {
protected:
    // A run with its own seed, printed when it fails.
    void run(unsigned seed, std::function<void()> const & body) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        random.seed(seed);
        body();
        vec_CollectGarbage();
    }

    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); }
    bool coin() { return below(2) == 0; }

    double number() {
        static constexpr double special[] = {0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e300, -1e-300};
        if (below(6) == 0) return special[below(std::size(special))];
        return std::uniform_real_distribution<double>(-10, 10)(random);
    }

    Shape shape() {
        Shape s{{}, coin()};
        std::size_t const divisions = coin() ? 1 : 2 + below(5);
        for (std::size_t d = 0; d < divisions; ++d) s.lengths.push_back(1 + below(coin() ? 3 : 40));
        return s;
    }

    Model model(Shape const & s, bool isComplex) {
        Model m;
        m.isComplex = isComplex;
        for (std::size_t const n : s.lengths) {
            m.divisions.emplace_back();
            for (std::size_t i = 0; i < n; ++i) m.divisions.back().push_back({number(), isComplex ? number() : 0.0});
        }
        if (s.withReference) m.reference = reference(s);
        return m;
    }

    std::vector<std::vector<double>> reference(Shape const & s) {
        std::vector<std::vector<double>> x;
        for (std::size_t const n : s.lengths) {
            x.emplace_back();
            for (std::size_t i = 0; i < n; ++i)
                x.back().push_back(static_cast<double>(i) + std::uniform_real_distribution<double>(0, 0.9)(random));
        }
        return x;
    }

    // A partner for an operand: of the same shape and x values, one element for all, or one for each division.
    Model partner(Shape const & s, Model const & a, bool isComplex) {
        std::size_t const form = below(3);
        if (form == 0) {
            Model b = model({s.lengths, false}, isComplex);
            b.reference = a.reference;
            return b;
        }
        std::size_t const divisions = form == 1 ? 1 : s.lengths.size();
        return model({std::vector<std::size_t>(divisions, 1), false}, isComplex);
    }

    void expect(char const * expr, std::optional<Model> const & wanted, double ulps) {
        YArray<XYVector *> values;
        VEC_ERROR const code = vec_EvalVecList(expr, &values, context, YString(), false);
        if (!wanted) {
            EXPECT_EQ(code, VEC_EXPRESSION_FAILED) << expr;
            return;
        }
        ASSERT_EQ(code, VEC_OK) << expr;
        EXPECT_EQ(differenceFrom(*values.at(0), *wanted, ulps), "") << expr;
        vec_ReleaseVector(values.at(0));
    }

    void clearStore() {
        NullMessageHandler silence;
        for (char const * name : {"a", "b"}) (void)vec_DestroyVector(YString(name), silence, true);
    }

    EngineSession session;
    ScpParseContext context{std::make_shared<NullMessageHandler>()};
    std::mt19937 random;
};

struct Binary {
    char const * spelling;
    bool forComplex;
    bool complexResult; // of complex operands
    double ulps;
    BinaryLoop loop;
};

Value flag(bool condition) {
    return {condition ? 1.0 : 0.0, 0.0};
}

std::vector<Binary> const & binaries() {
    static std::vector<Binary> const rows = {
        {"+", true, true, 0, [](Value a, Value b) { return a + b; }},
        {"-", true, true, 0, [](Value a, Value b) { return a - b; }},
        {"*", true, true, 8,
         [](Value a, Value b) {
             return Value(a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real());
         }},
        {"==", true, false, 0, [](Value a, Value b) { return flag(a == b); }},
        {"<>", true, false, 0, [](Value a, Value b) { return flag(a != b); }},
        {"<", false, false, 0, [](Value a, Value b) { return flag(a.real() < b.real()); }},
        {">", false, false, 0, [](Value a, Value b) { return flag(a.real() > b.real()); }},
        {"<=", false, false, 0, [](Value a, Value b) { return flag(a.real() <= b.real()); }},
        {">=", false, false, 0, [](Value a, Value b) { return flag(a.real() >= b.real()); }},
        {"&&", false, false, 0, [](Value a, Value b) { return flag(a.real() != 0 && b.real() != 0); }},
        {"||", false, false, 0, [](Value a, Value b) { return flag(a.real() != 0 || b.real() != 0); }},
        {"/", false, false, 0,
         [](Value a, Value b) { return b.real() == 0 ? Answer() : Answer(Value(a.real() / b.real(), 0)); }},
        {"^", false, false, 2,
         [](Value a, Value b) {
             bool const refused = !(a.real() >= 0) && std::floor(b.real()) != std::ceil(b.real());
             return refused ? Answer() : Answer(Value(std::pow(a.real(), b.real()), 0));
         }},
    };
    return rows;
}

struct Unary {
    char const * expr; // of the operand "a"
    bool forComplex;
    bool complexResult;
    double ulps;
    UnaryLoop loop;
};

Answer onlyIf(bool condition, double value) {
    return condition ? Answer(Value(value, 0)) : Answer();
}

std::vector<Unary> const & unaries() {
    static std::vector<Unary> const rows = {
        {"-a", true, true, 0, [](Value x) { return -x; }},
        {"!a", false, false, 0, [](Value x) { return flag(x.real() == 0); }},
        {"re(a)", true, false, 0, [](Value x) { return Value(x.real(), 0); }},
        {"im(a)", true, false, 0, [](Value x) { return Value(x.imag(), 0); }},
        {"mag(a)", true, false, 2, [](Value x) { return Value(std::hypot(x.real(), x.imag()), 0); }},
        {"sign(a)", false, false, 0, [](Value x) { return flag(x.real() > 0); }},
        {"floorv(a)", false, false, 0, [](Value x) { return Value(std::floor(x.real()), 0); }},
        {"sqrt(a)", false, false, 0, [](Value x) { return onlyIf(!(x.real() < 0), std::sqrt(x.real())); }},
        {"ln(a)", false, false, 2, [](Value x) { return onlyIf(!(x.real() <= 0), std::log(x.real())); }},
        {"log10(a)", false, false, 2, [](Value x) { return onlyIf(!(x.real() <= 0), std::log10(x.real())); }},
        {"exp(a)", false, false, 2, [](Value x) { return onlyIf(!(x.real() > 709.016), std::exp(x.real())); }},
        {"sin(a)", false, false, 2, [](Value x) { return Value(std::sin(x.real()), 0); }},
        {"cos(a)", false, false, 2, [](Value x) { return Value(std::cos(x.real()), 0); }},
        {"atan(a)", false, false, 2, [](Value x) { return Value(std::atan(x.real()), 0); }},
        {"tanh(a)", false, false, 2, [](Value x) { return Value(std::tanh(x.real()), 0); }},
        {"db(a)", false, false, 4,
         [](Value x) { return Value(x.real() == 0 ? -6160.0 : 20 * std::log10(std::fabs(x.real())), 0); }},
        {"exp(a)", true, true, 8, [](Value x) { return x.real() > 709.016 ? Answer() : Answer(std::exp(x)); }},
    };
    return rows;
}

} // namespace

TEST_F(Differential, OperatorsEqualNaiveLoops) {
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        run(seed, [this] {
            Binary const & row = binaries()[below(binaries().size())];
            bool const complexA = row.forComplex && coin(), complexB = row.forComplex && coin();
            Shape const s = shape();
            Model const a = model(s, complexA);
            Model const b = partner(s, a, complexB);
            enterModel("a", a);
            enterModel("b", b);
            bool const complexResult = (complexA || complexB) && row.complexResult;
            expect((std::string("a") + row.spelling + "b").c_str(), applied(a, b, complexResult, row.loop), row.ulps);
            clearStore();
        });
        if (HasFailure()) return;
    }
}

TEST_F(Differential, FunctionsEqualNaiveLoops) {
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        run(seed, [this] {
            Unary const & row = unaries()[below(unaries().size())];
            bool const isComplex = row.complexResult && !row.forComplex ? false : row.forComplex && coin();
            Model const a = model(shape(), isComplex);
            enterModel("a", a);
            expect(row.expr, applied(a, isComplex && row.complexResult, row.loop), row.ulps);
            clearStore();
        });
        if (HasFailure()) return;
    }
}
