#include "torvelan/PhysType.h"

#include <array>
#include <functional>
#include <optional>

namespace {

struct Row {
    std::string_view name;
    std::string_view unit;
};

// By value. The names hold no blank, ';' or '/': they stand in labels and in commands that are split there.
constexpr std::array<Row, 24> rows = {{
    {"unknown", ""},
    {"none", ""},
    {"voltage", "V"},
    {"current", "A"},
    {"time", "s"},
    {"frequency", "Hz"},
    {"resistance", "Ohm"},
    {"conductance", "S"},
    {"capacitance", "F"},
    {"inductance", "H"},
    {"energy", "J"},
    {"power", "W"},
    {"charge", "C"},
    {"flux", "Wb"},
    {"voltage_squared", "V^2"},
    {"voltage_squared_per_hertz", "V^2/Hz"},
    {"voltage_per_root_hertz", "V/rtHz"},
    {"current_squared", "A^2"},
    {"current_squared_per_hertz", "A^2/Hz"},
    {"current_per_root_hertz", "A/rtHz"},
    {"type_20", ""},
    {"literal", ""},
    {"type_22", ""},
    {"type_23", ""},
}};

Row const & rowOf(PhysType type) {
    return type < rows.size() ? rows[type] : rows[PT_UNKNOWN];
}

template <class Equal> std::optional<PhysType> findRow(std::string_view text, Equal equal) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (equal(rows[i].name, text) || equal(rows[i].unit, text)) return static_cast<PhysType>(i);
    return std::nullopt;
}

} // namespace

YString sp_GetPhysTypeName(PhysType type) {
    return YString(rowOf(type).name);
}

YString sp_GetPhysTypeUnit(PhysType type) {
    return YString(rowOf(type).unit);
}

YString sp_GetPhysTypeString(PhysType type) {
    return sp_GetPhysTypeName(type);
}

PhysType sp_GetPhysTypeFromString(YString const & stored) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (rows[i].name == stored.view()) return static_cast<PhysType>(i);
    return PT_UNKNOWN;
}

bool sp_GetPhysTypeFromName(YString const & name, PhysType * type) {
    if (name.empty()) return false;                                                   // several rows have no unit
    std::optional<PhysType> found = findRow(name, std::equal_to<std::string_view>()); // "s" and "S" are two units
    if (!found) found = findRow(name, equalNoCase);
    if (found) *type = *found;
    return found.has_value();
}
