// What the result of an operation measures: dimensional analysis over voltage, current and time.
#include "torvelan/PhysType.h"

#include <array>

namespace {

// Exponents of the base quantities, doubled so that a square root stays an integer.
struct Exponents {
    int voltage, current, time;

    friend bool operator==(Exponents const &, Exponents const &) = default;
};

struct Row {
    PhysType type;
    Exponents exponents;
};

// No two rows have the same exponents.
constexpr std::array rows{
    Row{PT_VOLTAGE, {2, 0, 0}},
    Row{PT_CURRENT, {0, 2, 0}},
    Row{PT_TIME, {0, 0, 2}},
    Row{PT_FREQUENCY, {0, 0, -2}},
    Row{PT_RESISTANCE, {2, -2, 0}},
    Row{PT_CONDUCTANCE, {-2, 2, 0}},
    Row{PT_CAPACITANCE, {-2, 2, 2}},
    Row{PT_INDUCTANCE, {2, -2, 2}},
    Row{PT_ENERGY, {2, 2, 2}},
    Row{PT_POWER, {2, 2, 0}},
    Row{PT_CHARGE, {0, 2, 2}},
    Row{PT_FLUX, {2, 0, 2}},
    Row{PT_NONE, {0, 0, 0}},
    Row{PT_VOLTAGE_SQUARED, {4, 0, 0}},
    Row{PT_VOLTAGE_SQUARED_PER_HERTZ, {4, 0, 2}},
    Row{PT_VOLTAGE_PER_ROOT_HERTZ, {2, 0, 1}},
    Row{PT_CURRENT_SQUARED, {0, 4, 0}},
    Row{PT_CURRENT_SQUARED_PER_HERTZ, {0, 4, 2}},
    Row{PT_CURRENT_PER_ROOT_HERTZ, {0, 2, 1}},
};

Exponents const * find(PhysType type) noexcept {
    for (Row const & row : rows)
        if (row.type == type) return &row.exponents;
    return nullptr;
}

PhysType find(Exponents exponents) noexcept {
    for (Row const & row : rows)
        if (row.exponents == exponents) return row.type;
    return PT_UNKNOWN;
}

PhysType withoutLiteral(PhysType type) noexcept {
    return type == PT_LITERAL ? PT_NONE : type;
}

// a times b to the power of `sign`.
PhysType combined(PhysType a, PhysType b, int sign) noexcept {
    Exponents const * left = find(withoutLiteral(a));
    Exponents const * right = find(withoutLiteral(b));
    if (!left || !right) return PT_UNKNOWN;
    return find(Exponents{left->voltage + sign * right->voltage, left->current + sign * right->current,
                          left->time + sign * right->time});
}

} // namespace

PhysType same(PhysType a) {
    return a;
}

PhysType db(PhysType a) {
    return a == PT_NONE ? PT_NONE : PT_UNKNOWN;
}

PhysType unknown(PhysType) {
    return PT_UNKNOWN;
}

PhysType unknown(PhysType, PhysType) {
    return PT_UNKNOWN;
}

PhysType none(PhysType) {
    return PT_NONE;
}

PhysType none(PhysType, PhysType) {
    return PT_NONE;
}

PhysType add(PhysType a, PhysType b) {
    if (a == b) return a;
    if (a == PT_LITERAL) return b;
    return b == PT_LITERAL ? a : PT_UNKNOWN;
}

PhysType mult(PhysType a, PhysType b) {
    return combined(a, b, 1);
}

PhysType div(PhysType a, PhysType b) {
    return combined(a, b, -1);
}

PhysType sqrt(PhysType a) {
    Exponents const * e = find(a);
    return e ? find(Exponents{e->voltage / 2, e->current / 2, e->time / 2}) : PT_UNKNOWN;
}
