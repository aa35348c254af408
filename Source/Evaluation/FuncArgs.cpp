#include "Evaluation/Resolve.h"
#include "torvelan/Functions.h"
#include "torvelan/dvec.h"

#include <algorithm>
#include <limits>

namespace {

// Part of a length, or of an array, that lies behind the incremental offset. An offset beyond the end is ignored.
std::int64_t behind(std::int64_t length, std::int64_t offset) noexcept {
    return offset <= length ? length - offset : length;
}

// All elements of a flat frame, where a vector of one division may also be a view; else those of the division.
double const * realElements(NamedVector const & vector, bool flat) {
    return flat && vector.isWhole() ? vector.allRealData() : vector.realData();
}

complex const * complexElements(NamedVector const & vector, bool flat) {
    return flat && vector.isWhole() ? vector.allComplexData() : vector.complexData();
}

template <class T>
T const * advance(T const * elements, BaseVector const & vector, std::int64_t d, std::int64_t offset) noexcept {
    bool const moves = offset != 0 && elements != nullptr && offset <= vector.length(d);
    return moves ? elements + offset : elements;
}

template <class T> T const * advance(T const * elements, BaseVector const & vector, std::int64_t offset) noexcept {
    return offset == 0 ? elements : advance(elements, vector, vector.currentDivisionIndex(), offset);
}

// A view of fewer divisions would otherwise leave what it shows.
void moveTo(std::int64_t division, BaseVector & vector) noexcept {
    if (division == 0 || division < vector.numDivisions()) vector.setDivision(division);
}

// The vector as the kind of argument asks for it: itself, or a new temporary. Null on failure.
dvec * convert(dvec * vector, argType type, YRef<MessageHandler> const & messages, ScpParseContext const & context) {
    switch (type) {
    case ARG_NUMERIC:
    case ARG_REAL: return convertToNumeric(vector, messages, context);
    case ARG_STRING: return convertToString(vector);
    default: return vector;
    }
}

} // namespace

FuncArgs::FuncArgs(YString name) : funcName(std::move(name)) {}

FuncArgs::FuncArgs(FuncArgs const & other)
    : used(other.used), division(other.division), owner(false), flat(other.flat), funcName(other.funcName) {
    int const filled = used;
    setNumArgs(other.numArgs);
    std::copy_n(other.arguments, filled, arguments);
    used = filled;
}

FuncArgs::~FuncArgs() {
    for (int i = 0; i < used; ++i) releaseOwned(i);
}

void FuncArgs::setNumArgs(int n) {
    numArgs = std::max(n, 0);
    used = 0;
    if (numArgs <= inlineArguments) return;
    heapStore = std::make_unique<Argument[]>(static_cast<std::size_t>(numArgs));
    arguments = heapStore.get();
}

dvec * FuncArgs::add(dvec * vector, argType type, YRef<MessageHandler> const & messages,
                     ScpParseContext const & context) {
    if (used >= numArgs) return nullptr;
    dvec * resolved = nullptr;
    if (!resolveVector(vector, &resolved, messages, context)) return nullptr;
    dvec * stored = convert(resolved, type, messages, context);
    if (resolved != vector && resolved != stored && resolved->isTemporary()) resolved->release();
    if (stored == nullptr) return nullptr;
    arguments[used++] = {stored, &stored->ref, stored, 0, false};
    return stored;
}

bool FuncArgs::add(NamedVector * y, NamedVector * ref) {
    if (used >= numArgs) return false;
    arguments[used++] = {y, ref, nullptr, 0, false};
    return true;
}

bool FuncArgs::owns(int i) const noexcept {
    dvec const * vector = arguments[i].vector;
    return owner && vector != nullptr && vector->isTemporary();
}

// A vector that stands in several places is released with the last of them.
void FuncArgs::releaseOwned(int i) noexcept {
    if (!owns(i)) return;
    dvec * const vector = arguments[i].vector;
    bool const last = !standsElsewhere(i);
    arguments[i].vector = nullptr;
    if (last) vector->release();
}

bool FuncArgs::standsElsewhere(int i) const noexcept {
    for (int j = 0; j < used; ++j)
        if (j != i && arguments[i].vector != nullptr && arguments[j].vector == arguments[i].vector) return true;
    return false;
}

NamedVector * FuncArgs::yOf(int i) const noexcept {
    Argument const * argument = at(i);
    return argument != nullptr ? argument->y : nullptr;
}

NamedVector * FuncArgs::refOf(int i) const noexcept {
    Argument const * argument = at(i);
    return argument != nullptr ? argument->ref : nullptr;
}

VD_type FuncArgs::type(int i) const noexcept {
    NamedVector const * y = yOf(i);
    return y != nullptr ? y->type() : VD_ABSENT;
}

VD_type FuncArgs::refType(int i) const noexcept {
    NamedVector const * ref = refOf(i);
    return ref != nullptr ? ref->type() : VD_ABSENT;
}

PhysType FuncArgs::physType(int i) const noexcept {
    NamedVector const * y = yOf(i);
    return y != nullptr ? y->physType() : PT_UNKNOWN;
}

PhysType FuncArgs::refPhysType(int i) const noexcept {
    NamedVector const * ref = refOf(i);
    return ref != nullptr ? ref->physType() : PT_UNKNOWN;
}

std::int64_t FuncArgs::storedLength(int i) const noexcept {
    NamedVector const * y = yOf(i);
    if (y == nullptr) return 0;
    return flat ? y->totalLength() : y->length();
}

std::int64_t FuncArgs::rawLength(int i) const noexcept {
    return storedLength(isRepeatedScalar(i) ? 1 - i : i);
}

std::int64_t FuncArgs::length(int i) const noexcept {
    Argument const * argument = at(i);
    return argument != nullptr ? behind(rawLength(i), argument->offset) : 0;
}

std::int32_t FuncArgs::length32(int i) const noexcept {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(length(i), most));
}

std::int64_t FuncArgs::totalLength(int i) const noexcept {
    NamedVector const * y = yOf(i);
    if (y == nullptr) return 0;
    if (!isRepeatedScalar(i)) return y->totalLength();
    NamedVector const & partner = *yOf(1 - i);
    return partner.numDivisions() > 1 ? partner.totalLength() : y->numDivisions() * partner.length();
}

std::int64_t FuncArgs::refLength(int i) const noexcept {
    NamedVector const * ref = refOf(i);
    if (ref == nullptr) return 0;
    return behind(flat ? ref->totalLength() : ref->length(), arguments[i].offset);
}

std::int64_t FuncArgs::numYDivisions(int i) const noexcept {
    NamedVector const * y = yOf(i);
    if (y == nullptr) return 0;
    if (!isRepeatedScalar(i)) return y->numDivisions();
    return std::max(y->numDivisions(), yOf(1 - i)->numDivisions());
}

double const * FuncArgs::data(int i) const {
    NamedVector const * y = realised(i);
    if (y == nullptr) return nullptr;
    return advance(realElements(*y, flat), *y, arguments[i].offset);
}

complex const * FuncArgs::complexData(int i) const {
    NamedVector const * y = realised(i);
    if (y == nullptr) return nullptr;
    return advance(complexElements(*y, flat), *y, arguments[i].offset);
}

char const * const * FuncArgs::stringData(int i) const {
    NamedVector const * y = realised(i);
    return y != nullptr ? y->stringData() : nullptr;
}

double const * FuncArgs::data(int i, std::int64_t d) const {
    NamedVector const * y = realised(i);
    return y != nullptr ? advance(y->realData(d), *y, d, arguments[i].offset) : nullptr;
}

complex const * FuncArgs::complexData(int i, std::int64_t d) const {
    NamedVector const * y = realised(i);
    return y != nullptr ? advance(y->complexData(d), *y, d, arguments[i].offset) : nullptr;
}

char const * const * FuncArgs::stringData(int i, std::int64_t d) const {
    NamedVector const * y = realised(i);
    return y != nullptr ? y->stringData(d) : nullptr;
}

double const * FuncArgs::refData(int i) const {
    NamedVector const * ref = refOf(i);
    return ref != nullptr ? advance(realElements(*ref, flat), *ref, arguments[i].offset) : nullptr;
}

complex const * FuncArgs::complexRefData(int i) const {
    NamedVector const * ref = refOf(i);
    return ref != nullptr ? advance(complexElements(*ref, flat), *ref, arguments[i].offset) : nullptr;
}

YString FuncArgs::refName(int i) const {
    NamedVector const * ref = refOf(i);
    return ref != nullptr ? ref->name() : YString();
}

NamedVector * FuncArgs::getXVec(int i) const noexcept {
    return refOf(i);
}

NamedVector * FuncArgs::getYVec(int i) const {
    return realised(i);
}

void FuncArgs::getYDivisionLabelArray(int i, NameArray * labels) const {
    NamedVector const * y = realised(i);
    if (y != nullptr) y->divisionLabels(labels);
}

bool FuncArgs::assignXYVec(XYVector * out, int i, MessageHandler &, ScpParseContext const &) const {
    NamedVector const * y = realised(i);
    if (y == nullptr) return false;
    static_cast<BaseVector &>(*out) = *y;
    out->setName(y->name());
    out->selectDivision(y->currentDivisionIndex());
    NamedVector const * ref = refOf(i);
    if (ref == nullptr) {
        out->ref.reset();
        return true;
    }
    out->ref = *ref;
    out->ref.selectDivision(ref->currentDivisionIndex());
    return true;
}

bool FuncArgs::isRepeatedScalar(int i) const noexcept {
    Argument const * argument = at(i);
    return argument != nullptr && argument->repeated;
}

complex FuncArgs::repeatedValue(int i) const {
    NamedVector const * y = yOf(i);
    return y != nullptr ? complex{y->getReal(0), y->getImag(0)} : complex();
}

NamedVector * FuncArgs::realised(int i) const {
    if (isRepeatedScalar(i)) writeOut(i);
    return yOf(i);
}

void FuncArgs::writeOut(int i) const {
    NamedVector const & partner = *yOf(1 - i);
    // Each of several divisions is repeated to the length of a lone one.
    std::int64_t const count = std::max(yOf(i)->numDivisions(), partner.numDivisions());
    YArray<std::int64_t> lengths(static_cast<std::size_t>(count));
    for (std::size_t d = 0; d < lengths.size(); ++d)
        lengths[d] = partner.length(partner.numDivisions() > 1 ? static_cast<std::int64_t>(d) : 0);
    dvec * expanded = copyOf(i);
    expanded->expandTo(lengths);
    replace(i, expanded);
    expanded->setDivision(division);
}

dvec * FuncArgs::copyOf(int i) const {
    Argument const & argument = arguments[i];
    if (argument.vector != nullptr) return new dvec(*argument.vector);
    dvec * copy = new dvec(argument.y->name(), nullptr, argument.y->physType());
    static_cast<BaseVector &>(*copy) = *argument.y;
    return copy;
}

void FuncArgs::replace(int i, dvec * vector) const {
    Argument const old = arguments[i];
    bool const released = owns(i) && !flat; // a flat call may be taken back
    NamedVector * const oldRef = old.vector != nullptr ? &old.vector->ref : nullptr;
    for (int j = 0; j < used && oldRef != nullptr; ++j)
        if (arguments[j].ref == oldRef) arguments[j].ref = &vector->ref;
    arguments[i].y = arguments[i].vector = vector;
    arguments[i].repeated = false;
    // The vector leaves the frame, which will not set it back to its first division later.
    old.y->setDivision(0);
    if (oldRef != nullptr) oldRef->setDivision(0);
    if (released) old.vector->release();
}

void FuncArgs::setDivision(std::int64_t d) noexcept {
    division = d;
    for (int i = 0; i < used; ++i) {
        if (arguments[i].ref != nullptr) moveTo(d, *arguments[i].ref);
        if (arguments[i].y != nullptr) moveTo(d, *arguments[i].y);
    }
}

bool FuncArgs::setIncrementalOffset(std::int64_t offset, BaseVector const * reference) noexcept {
    if (reference == nullptr) return true;
    bool shared = true;
    for (int i = 0; i < used && shared; ++i) {
        NamedVector const * ref = arguments[i].ref;
        bool const follows = ref != nullptr && ref->sharesRep(*reference);
        shared = follows || ref == nullptr || ref->totalLength() == 0;
        arguments[i].offset = follows ? offset : 0;
    }
    // Arguments with and without an offset would not stand side by side.
    for (int i = 0; i < used && !shared; ++i) arguments[i].offset = 0;
    return shared;
}

bool FuncArgs::hasIncrementalOffset() const noexcept {
    return std::any_of(arguments, arguments + used, [](Argument const & argument) { return argument.offset != 0; });
}
