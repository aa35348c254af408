#include "torvelan/PhysType.h"

#include <gmock/gmock.h>
#include <set>

namespace {

constexpr int rowCount = 24;

PhysType type(int value) {
    return static_cast<PhysType>(value);
}

TEST(PhysTypeNames, NamesAreDistinctShortAndWithoutSeparators) {
    std::set<std::string> names;
    for (int i = 0; i < rowCount; ++i) {
        std::string const name(sp_GetPhysTypeName(type(i)).view());
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_LE(name.size(), 31U);
        EXPECT_EQ(name.find_first_of(" ;/\t="), std::string::npos) << name;
        EXPECT_FALSE(name.empty());
    }
}

TEST(PhysTypeNames, StoredFormIsTheNameAndReadsBack) {
    for (int i = 0; i < rowCount; ++i) {
        EXPECT_EQ(sp_GetPhysTypeString(type(i)), sp_GetPhysTypeName(type(i)));
        EXPECT_EQ(sp_GetPhysTypeFromString(sp_GetPhysTypeString(type(i))), i);
    }
    EXPECT_EQ(sp_GetPhysTypeFromString("furlongs"), PT_UNKNOWN);
    EXPECT_EQ(sp_GetPhysTypeFromString(""), PT_UNKNOWN);
}

TEST(PhysTypeNames, TypesWithoutARowAreUnknown) {
    for (int const i : {24, 25, 100, 255}) {
        EXPECT_EQ(sp_GetPhysTypeName(type(i)), "unknown");
        EXPECT_EQ(sp_GetPhysTypeUnit(type(i)), "");
    }
}

TEST(PhysTypeNames, UnitsOfTheQuantities) {
    EXPECT_EQ(sp_GetPhysTypeName(PT_VOLTAGE), "voltage");
    EXPECT_EQ(sp_GetPhysTypeUnit(PT_VOLTAGE), "V");
    EXPECT_EQ(sp_GetPhysTypeUnit(PT_TIME), "s");
    EXPECT_EQ(sp_GetPhysTypeUnit(PT_FREQUENCY), "Hz");
    EXPECT_EQ(sp_GetPhysTypeUnit(PT_POWER), "W");
    EXPECT_EQ(sp_GetPhysTypeUnit(PT_VOLTAGE_PER_ROOT_HERTZ), "V/rtHz");
    for (PhysType const bare : {PT_UNKNOWN, PT_NONE, PT_LITERAL}) EXPECT_EQ(sp_GetPhysTypeUnit(bare), "");
}

TEST(PhysTypeNames, NamesAndUnitsAreRecognised) {
    for (int i = 0; i < rowCount; ++i) {
        PhysType found = type(99);
        EXPECT_TRUE(sp_GetPhysTypeFromName(sp_GetPhysTypeName(type(i)), &found));
        EXPECT_EQ(found, i);
        if (sp_GetPhysTypeUnit(type(i)).empty()) continue;
        EXPECT_TRUE(sp_GetPhysTypeFromName(sp_GetPhysTypeUnit(type(i)), &found));
        EXPECT_EQ(found, i);
    }
}

TEST(PhysTypeNames, CaseMattersOnlyWhereItTells) {
    PhysType found = PT_UNKNOWN;
    EXPECT_TRUE(sp_GetPhysTypeFromName("VOLTAGE", &found));
    EXPECT_EQ(found, PT_VOLTAGE);
    EXPECT_TRUE(sp_GetPhysTypeFromName("hz", &found));
    EXPECT_EQ(found, PT_FREQUENCY);
    EXPECT_TRUE(sp_GetPhysTypeFromName("S", &found));
    EXPECT_EQ(found, PT_CONDUCTANCE);
    EXPECT_TRUE(sp_GetPhysTypeFromName("s", &found));
    EXPECT_EQ(found, PT_TIME);
}

TEST(PhysTypeNames, AnUnrecognisedNameLeavesTheType) {
    PhysType found = PT_POWER;
    for (char const * name : {"", "furlongs", "Volt s", " V"}) {
        EXPECT_FALSE(sp_GetPhysTypeFromName(name, &found)) << name;
        EXPECT_EQ(found, PT_POWER);
    }
}

} // namespace
