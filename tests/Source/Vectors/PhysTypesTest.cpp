#include "torvelan/PhysType.h"

#include <array>
#include <gtest/gtest.h>

namespace {

PhysType pt(int value) {
    return static_cast<PhysType>(value);
}

} // namespace

TEST(PhysTypes, AdditionKeepsEqualTypesAndALiteralGivesWay) {
    EXPECT_EQ(add(PT_UNKNOWN, PT_UNKNOWN), PT_UNKNOWN);
    EXPECT_EQ(add(PT_LITERAL, PT_LITERAL), PT_LITERAL);
    EXPECT_EQ(add(PT_LITERAL, PT_VOLTAGE), PT_VOLTAGE);
    EXPECT_EQ(add(PT_CURRENT, PT_LITERAL), PT_CURRENT);
    EXPECT_EQ(add(PT_VOLTAGE, PT_CURRENT), PT_UNKNOWN);
    EXPECT_EQ(add(PT_VOLTAGE, PT_UNKNOWN), PT_UNKNOWN);
    EXPECT_EQ(add(PT_LITERAL, PT_UNKNOWN), PT_UNKNOWN);
    EXPECT_EQ(add(pt(23), pt(23)), pt(23));
    EXPECT_EQ(add(pt(20), PT_LITERAL), pt(20));
}

TEST(PhysTypes, ProductsAndQuotientsOfElectricity) {
    EXPECT_EQ(mult(PT_VOLTAGE, PT_CURRENT), PT_POWER);
    EXPECT_EQ(div(PT_VOLTAGE, PT_CURRENT), PT_RESISTANCE);
    EXPECT_EQ(div(PT_CURRENT, PT_VOLTAGE), PT_CONDUCTANCE);
    EXPECT_EQ(mult(PT_POWER, PT_TIME), PT_ENERGY);
    EXPECT_EQ(mult(PT_CURRENT, PT_TIME), PT_CHARGE);
    EXPECT_EQ(mult(PT_VOLTAGE, PT_TIME), PT_FLUX);
    EXPECT_EQ(div(PT_CHARGE, PT_VOLTAGE), PT_CAPACITANCE);
    EXPECT_EQ(div(PT_FLUX, PT_CURRENT), PT_INDUCTANCE);
    EXPECT_EQ(mult(PT_RESISTANCE, PT_CAPACITANCE), PT_TIME);
    EXPECT_EQ(div(PT_NONE, PT_TIME), PT_FREQUENCY);
    EXPECT_EQ(div(PT_NONE, PT_FREQUENCY), PT_TIME);
    EXPECT_EQ(mult(PT_TIME, PT_FREQUENCY), PT_NONE);
    EXPECT_EQ(mult(PT_VOLTAGE, PT_VOLTAGE), PT_VOLTAGE_SQUARED);
    EXPECT_EQ(div(PT_VOLTAGE_SQUARED, PT_FREQUENCY), PT_VOLTAGE_SQUARED_PER_HERTZ);
    EXPECT_EQ(mult(PT_VOLTAGE_PER_ROOT_HERTZ, PT_VOLTAGE_PER_ROOT_HERTZ), PT_VOLTAGE_SQUARED_PER_HERTZ);
    EXPECT_EQ(mult(PT_CURRENT_PER_ROOT_HERTZ, PT_CURRENT_PER_ROOT_HERTZ), PT_CURRENT_SQUARED_PER_HERTZ);
}

TEST(PhysTypes, ALiteralCountsAsDimensionlessInProducts) {
    EXPECT_EQ(mult(PT_LITERAL, PT_VOLTAGE), PT_VOLTAGE);
    EXPECT_EQ(mult(PT_LITERAL, PT_LITERAL), PT_NONE);
    EXPECT_EQ(div(PT_LITERAL, PT_TIME), PT_FREQUENCY);
    EXPECT_EQ(div(PT_LITERAL, PT_LITERAL), PT_NONE);
}

TEST(PhysTypes, WhatHasNoRowIsUnknown) {
    for (int value : {0, 20, 22, 23, 24, 255}) {
        EXPECT_EQ(mult(pt(value), PT_VOLTAGE), PT_UNKNOWN) << value;
        EXPECT_EQ(mult(PT_VOLTAGE, pt(value)), PT_UNKNOWN) << value;
        EXPECT_EQ(div(pt(value), PT_VOLTAGE), PT_UNKNOWN) << value;
        EXPECT_EQ(sqrt(pt(value)), PT_UNKNOWN) << value;
    }
    EXPECT_EQ(mult(PT_TIME, PT_TIME), PT_UNKNOWN);
    EXPECT_EQ(mult(PT_POWER, PT_POWER), PT_UNKNOWN);
}

TEST(PhysTypes, DivisionUndoesMultiplication) {
    for (int a = 1; a <= 19; ++a)
        for (int b = 1; b <= 19; ++b) {
            PhysType product = mult(pt(a), pt(b));
            EXPECT_EQ(product, mult(pt(b), pt(a)));
            EXPECT_TRUE(product == PT_UNKNOWN || div(product, pt(b)) == pt(a)) << a << " x " << b;
            EXPECT_EQ(div(pt(a), pt(a)), PT_NONE);
        }
}

TEST(PhysTypes, RootsUndoSquares) {
    EXPECT_EQ(sqrt(PT_VOLTAGE_SQUARED), PT_VOLTAGE);
    EXPECT_EQ(sqrt(PT_VOLTAGE_SQUARED_PER_HERTZ), PT_VOLTAGE_PER_ROOT_HERTZ);
    EXPECT_EQ(sqrt(PT_CURRENT_SQUARED), PT_CURRENT);
    EXPECT_EQ(sqrt(PT_CURRENT_SQUARED_PER_HERTZ), PT_CURRENT_PER_ROOT_HERTZ);
    EXPECT_EQ(sqrt(PT_NONE), PT_NONE);
    EXPECT_EQ(sqrt(PT_VOLTAGE), PT_UNKNOWN);
    EXPECT_EQ(sqrt(PT_LITERAL), PT_UNKNOWN);
}

TEST(PhysTypes, ConstantRules) {
    EXPECT_EQ(same(pt(23)), pt(23));
    EXPECT_EQ(db(PT_NONE), PT_NONE);
    EXPECT_EQ(db(PT_VOLTAGE), PT_UNKNOWN);
    EXPECT_EQ(db(PT_LITERAL), PT_UNKNOWN);
    EXPECT_EQ(unknown(PT_VOLTAGE), PT_UNKNOWN);
    EXPECT_EQ(unknown(PT_VOLTAGE, PT_VOLTAGE), PT_UNKNOWN);
    EXPECT_EQ(none(PT_VOLTAGE), PT_NONE);
    EXPECT_EQ(none(PT_VOLTAGE, PT_CURRENT), PT_NONE);
}
