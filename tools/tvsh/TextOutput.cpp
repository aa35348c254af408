#include "TextOutput.h"

#include "NumberText.h"

namespace {

constexpr std::int64_t shownWhole = 8;                // vectors up to this length
constexpr std::int64_t shownFirst = 4, shownLast = 2; // of longer ones

std::string unitOf(BaseVector const & vector) {
    return std::string(sp_GetPhysTypeUnit(vector.physType()).view());
}

std::string elementsText(BaseVector const & vector, std::int64_t division, int precision) {
    std::int64_t const n = vector.length(division);
    std::string text;
    for (std::int64_t i = 0; i < n; ++i) {
        if (i > 0) text += ", ";
        if (n > shownWhole && i == shownFirst) {
            text += "..., ";
            i = n - shownLast;
        }
        text += elementText(vector, i, division, precision);
    }
    return text;
}

// "  [1001 values over time]", of a vector that is shortened or has a reference.
std::string extentText(XYVector const & vector, std::int64_t division) {
    std::int64_t const n = vector.length(division);
    bool const hasReference = vector.ref.totalLength() > 0 && !vector.ref.name().empty();
    if (n <= 1 || (n <= shownWhole && !hasReference)) return "";
    std::string text = "  [" + std::to_string(n) + " values";
    if (hasReference) text += " over " + displayName(vector.ref.name());
    return text + "]";
}

std::string labelText(BaseVector const & vector, std::int64_t division) {
    if (vector.numDivisions() == 1) return "";
    YString const label = vector.divisionLabel(division);
    return " [" + std::to_string(division) + (label.empty() || label == "?" ? "" : ", " + std::string(label.view())) +
           "]";
}

} // namespace

std::string elementText(BaseVector const & vector, std::int64_t i, std::int64_t division, int precision) {
    if (vector.isString()) {
        char const * text = vector.getString(i, division);
        return text != nullptr ? text : "";
    }
    std::string const unit = unitOf(vector);
    std::string const real = engineeringNumber(vector.getReal(i, division), precision, unit);
    if (!vector.isComplex()) return real;
    return "(" + real + ", " + engineeringNumber(vector.getImag(i, division), precision, unit) + ")";
}

std::string displayName(YString const & name) {
    constexpr std::string_view beforeNames = "+-*/%^()[]!=<>&|, ";
    std::string text;
    for (char const c : name.view())
        if (c != ':' || !(text.empty() || beforeNames.find(text.back()) != std::string_view::npos)) text += c;
    return text;
}

std::string valueText(XYVector const & vector, int precision) {
    constexpr int precisionOfSeveral = 6;
    if (precision == shortestPrecision && vector.totalLength() > 1) precision = precisionOfSeveral;
    std::string text;
    for (std::int64_t division = 0; division < vector.numDivisions(); ++division)
        text += displayName(vector.name()) + labelText(vector, division) + " = " +
                elementsText(vector, division, precision) + extentText(vector, division) + "\n";
    return text;
}
