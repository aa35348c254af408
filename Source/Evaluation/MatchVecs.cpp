#include "Evaluation/MatchVecs.h"

#include "Evaluation/Interpolation.h"

#include <utility>

bool FuncArgs::matchVecs(MessageHandler & messages, std::int64_t * count) {
    *count = rawLength(0);
    bool const areTwo = used == 2 && yOf(0) != nullptr && yOf(1) != nullptr;
    return areTwo && ArgumentMatcher(*this, messages).match(*count);
}

bool ArgumentMatcher::match(std::int64_t n0) {
    std::int64_t const n1 = args.rawLength(1);
    if (n0 == 1 && n1 >= 2) return repeat(0);
    if (n1 == 1 && n0 >= 2) return repeat(1);
    if (n0 == n1) return matchEqual(n0);
    return interpolate() || reportIncompatible();
}

bool ArgumentMatcher::repeat(int i) {
    if (canRepeatLazily(i))
        args.arguments[i].repeated = true;
    else
        args.writeOut(i);
    shareReference();
    return true;
}

// One element in each division, and divisions that go together.
bool ArgumentMatcher::canRepeatLazily(int i) const {
    NamedVector const & y = *args.yOf(i);
    std::int64_t const own = y.numDivisions();
    std::int64_t const others = args.yOf(1 - i)->numDivisions();
    bool const fits = own == 1 || others == 1 || own == others;
    return fits && (y.isReal() || y.isComplex()) && y.everyDivisionHasData() && y.totalLength() == own;
}

// The side without reference takes the other's. Both then are one vector, so that no later division finds a difference.
void ArgumentMatcher::shareReference() {
    bool const has0 = hasReference(0);
    bool const has1 = hasReference(1);
    if (has0 == has1) return;
    int const without = has0 ? 1 : 0;
    args.arguments[without].ref = args.arguments[1 - without].ref;
}

bool ArgumentMatcher::matchEqual(std::int64_t n) {
    if (sameReferences()) return true;
    if (hasReference(0) && hasReference(1)) {
        if (n != 1) return interpolate() || reportIncompatible();
        dropReference(0);
        dropReference(1);
        return true;
    }
    if (n != 1) messages.warning("'%s' has no reference", args.yOf(hasReference(0) ? 1 : 0)->name());
    return true;
}

bool ArgumentMatcher::hasReference(int i) const {
    NamedVector const * ref = args.refOf(i);
    return ref != nullptr && !ref->noData();
}

bool ArgumentMatcher::sameReferences() const {
    NamedVector const * ref0 = args.refOf(0);
    NamedVector const * ref1 = args.refOf(1);
    if (ref0 == ref1) return true;
    if (ref0 == nullptr || ref1 == nullptr) return !hasReference(0) && !hasReference(1);
    return ref0->sameData(*ref1);
}

void ArgumentMatcher::dropReference(int i) {
    dvec * copy = args.copyOf(i);
    copy->ref.reset();
    args.replace(i, copy);
    args.arguments[i].ref = &copy->ref;
    copy->setDivision(args.division);
}

bool ArgumentMatcher::interpolate() {
    NamedVector const & y0 = *args.yOf(0);
    NamedVector const & y1 = *args.yOf(1);
    if (y0.numDivisions() != 1 || y1.numDivisions() != 1 || !hasReference(0) || !hasReference(1)) return false;
    auto const groupOf = [this](int i) {
        dvec const * vector = args.arguments[i].vector;
        return vector != nullptr ? vector->owner() : nullptr;
    };
    dvec * replacements[2];
    Curve const a{y0, *args.refOf(0), groupOf(0)};
    Curve const b{y1, *args.refOf(1), groupOf(1)};
    if (!interpolateToCommonReference(a, b, &replacements[0], &replacements[1])) return false;
    for (int i = 0; i < 2; ++i) {
        if (replacements[i] == nullptr) continue;
        args.replace(i, replacements[i]);
        args.arguments[i].ref = &replacements[i]->ref;
    }
    return true;
}

bool ArgumentMatcher::reportIncompatible() {
    YString name0 = args.yOf(0)->name();
    YString name1 = args.yOf(1)->name();
    if (equalNoCase(name0, name1)) {
        name0 = fullName(0);
        name1 = fullName(1);
    }
    messages.error("The vectors '%s' and '%s' are incompatible.\nThe specified operation may not be performed", name0,
                   name1);
    return false;
}

YString ArgumentMatcher::fullName(int i) const {
    dvec const * vector = args.arguments[i].vector;
    return vector != nullptr ? vector->fullName() : args.yOf(i)->name();
}

bool ArgumentMatcher::matchFlat() {
    for (int i = 0; i < 2; ++i) before[i] = args.arguments[i];
    bool const several0 = args.yOf(0)->numDivisions() > 1;
    bool const several1 = args.yOf(1)->numDivisions() > 1;
    if (several0 && several1) return flatReferencesAgree();
    int const scalar = several0 ? 1 : 0;
    NamedVector const & whole = *args.yOf(1 - scalar);
    // A scalar with a reference of its own is at odds with every division but the first.
    if (hasReference(scalar) || !canRepeatLazily(scalar)) return false;
    args.arguments[scalar].repeated = true;
    // Only a division of two elements or more makes the scalar take the reference.
    if (whole.totalLength() > whole.numDivisions()) shareReference();
    return true;
}

void ArgumentMatcher::undoFlat() {
    for (int i = 0; i < 2; ++i) std::swap(args.arguments[i], before[i]);
}

// A flat frame keeps a scalar that it has written out. One of the two has to go.
ArgumentMatcher::~ArgumentMatcher() {
    for (int i = 0; i < 2; ++i) {
        dvec * const left = before[i].vector;
        bool const wasReplaced = left != nullptr && left != args.arguments[i].vector;
        if (wasReplaced && left->isTemporary()) left->release();
    }
}

bool ArgumentMatcher::flatReferencesAgree() const {
    NamedVector const * ref0 = args.refOf(0);
    NamedVector const * ref1 = args.refOf(1);
    if (ref0 == nullptr || ref1 == nullptr) return ref0 == ref1;
    if (ref0->totalLength() == 0 && ref1->totalLength() == 0) return true;
    return ref0->sharesRep(*ref1) && ref0->isWhole() && ref1->isWhole();
}
