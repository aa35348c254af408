// PhysType: what the values of a vector measure, and the rules by which operations combine it.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/YString.h"

enum PhysType : unsigned char {
    PT_UNKNOWN = 0,
    PT_NONE = 1, // dimensionless
    PT_VOLTAGE = 2,
    PT_CURRENT = 3,
    PT_TIME = 4,
    PT_FREQUENCY = 5,
    PT_RESISTANCE = 6,
    PT_CONDUCTANCE = 7,
    PT_CAPACITANCE = 8,
    PT_INDUCTANCE = 9,
    PT_ENERGY = 10,
    PT_POWER = 11,
    PT_CHARGE = 12,
    PT_FLUX = 13,
    PT_VOLTAGE_SQUARED = 14,
    PT_VOLTAGE_SQUARED_PER_HERTZ = 15,
    PT_VOLTAGE_PER_ROOT_HERTZ = 16,
    PT_CURRENT_SQUARED = 17,
    PT_CURRENT_SQUARED_PER_HERTZ = 18,
    PT_CURRENT_PER_ROOT_HERTZ = 19,
    PT_LITERAL = 21,  // a number written in an expression
    PT_UNCHANGED = 24 // only as an argument of FuncResult::setPhysType: leave as it is
};

// The rules. Each works out what a result measures from what the operands measure; none can fail, and whatever has no
// answer is PT_UNKNOWN.
TORVELAN_API PhysType same(PhysType a);
TORVELAN_API PhysType db(PhysType a); // dimensionless stays so
TORVELAN_API PhysType unknown(PhysType a);
TORVELAN_API PhysType unknown(PhysType a, PhysType b);
TORVELAN_API PhysType none(PhysType a);
TORVELAN_API PhysType none(PhysType a, PhysType b);
TORVELAN_API PhysType add(PhysType a, PhysType b);  // equal types stay; a literal gives way to the other
TORVELAN_API PhysType mult(PhysType a, PhysType b); // exponents of voltage, current and time added
TORVELAN_API PhysType div(PhysType a, PhysType b);  // exponents subtracted
TORVELAN_API PhysType sqrt(PhysType a);             // exponents halved

// Names and units. The stored form equals the name, is at most 31 characters long and reads back.
TORVELAN_API YString sp_GetPhysTypeName(PhysType type);   // "voltage"; "unknown" for a value without a row
TORVELAN_API YString sp_GetPhysTypeUnit(PhysType type);   // "V"; empty for none, literal and unknown
TORVELAN_API YString sp_GetPhysTypeString(PhysType type); // stored form
TORVELAN_API PhysType sp_GetPhysTypeFromString(YString const & stored); // PT_UNKNOWN when not recognised
// Accepts a name ("voltage") or a unit ("V"), without regard to case where that is not ambiguous. False when not
// recognised, and *type is untouched.
TORVELAN_API bool sp_GetPhysTypeFromName(YString const & name, PhysType * type);
