// ComposeDigital: the value of a bus from the waveforms of its wires.

#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"
#include "Groups/GroupStore.h"
#include "support/TextScan.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t mostWires = 64;
constexpr std::string_view usualPattern = "%BUSNAME%#%WIRENUM%";

enum State : unsigned char { zero, one, invalid };

// Levels at which a wire is 0, at or below, and 1, at or above.
struct Levels {
    double low, high;

    State stateOf(double value) const noexcept {
        if (value >= high) return one;
        return value <= low ? zero : invalid;
    }
};

struct Event {
    double time;
    unsigned char wire;
    State state;
};

using Wires = std::vector<dvec const *>; // bit 0 first

struct Sample {
    double x, y;
};

// One division of a wire, from its least x on: a sweep downwards is read from its end.
class Samples {
public:
    Samples(dvec const & wire, std::int64_t division)
        : x_(dataOf(wire.ref, division)), y_(dataOf(wire, division)),
          n_(std::min(lengthOf(wire.ref, division), lengthOf(wire, division))), falls_(n_ > 1 && x_[0] > x_[n_ - 1]) {}

    std::int64_t size() const noexcept { return n_; }
    Sample operator[](std::int64_t i) const noexcept {
        std::int64_t const at = falls_ ? n_ - 1 - i : i;
        return {x_[at], y_[at]};
    }

private:
    // What has one division only is the same for all of them.
    static std::int64_t shown(BaseVector const & v, std::int64_t division) noexcept {
        return v.numDivisions() > 1 ? division : 0;
    }
    static double const * dataOf(BaseVector const & v, std::int64_t division) { return v.realData(shown(v, division)); }
    static std::int64_t lengthOf(BaseVector const & v, std::int64_t division) noexcept {
        return v.isReal() ? v.length(shown(v, division)) : 0;
    }

    double const *x_, *y_;
    std::int64_t n_;
    bool falls_;
};

// Where the line from one sample to the next passes a level; at the later one where that cannot be told.
double crossing(Sample const & a, Sample const & b, double level) noexcept {
    double const at = a.x + (b.x - a.x) * ((level - a.y) / (b.y - a.y));
    return at >= std::min(a.x, b.x) && at <= std::max(a.x, b.x) ? at : b.x;
}

class WireEvents {
public:
    WireEvents(Levels const & levels, unsigned char wire, std::vector<Event> & out)
        : levels_(levels), wire_(wire), out_(out) {}

    void collect(Samples const & samples) {
        if (samples.size() == 0) return;
        State state = levels_.stateOf(samples[0].y);
        add(samples[0].x, state);
        for (std::int64_t i = 1; i < samples.size(); ++i) {
            State const next = levels_.stateOf(samples[i].y);
            if (next != state) pass(samples[i - 1], samples[i], state, next);
            state = next;
        }
    }

private:
    // A wire leaves a state at the level of that state, and enters one at the level of the other.
    void pass(Sample const & a, Sample const & b, State from, State to) {
        if (from != invalid && levels_.low < levels_.high) add(crossing(a, b, levelOf(from)), invalid);
        if (to != invalid) add(crossing(a, b, levelOf(to)), to);
    }
    double levelOf(State state) const noexcept { return state == one ? levels_.high : levels_.low; }
    void add(double time, State state) {
        if (!std::isnan(time)) out_.push_back({time, wire_, state});
    }

    Levels const & levels_;
    unsigned char wire_;
    std::vector<Event> & out_;
};

// What the bits mean.
struct Coding {
    std::size_t width;
    bool isSigned, isScaled, holdsInvalid;

    double valueOf(std::uint64_t bits) const noexcept {
        double value = static_cast<double>(bits);
        bool const isNegative = isSigned && (bits >> (width - 1) & 1) != 0;
        if (isNegative) value = -static_cast<double>((~bits & mask()) + 1);
        if (isNegative && bits == topBit()) value = -static_cast<double>(topBit());
        return isScaled ? value / std::ldexp(1.0, static_cast<int>(isSigned ? width - 1 : width)) : value;
    }

private:
    std::uint64_t topBit() const noexcept { return std::uint64_t{1} << (width - 1); }
    std::uint64_t mask() const noexcept { return topBit() | (topBit() - 1); }
};

// The state of all wires.
class Bus {
public:
    explicit Bus(Coding const & coding) : coding_(coding), states_(coding.width, invalid), invalid_(coding.width) {}

    void apply(Event const & event) {
        State & state = states_[event.wire];
        if (state == invalid) --invalid_;
        if (event.state == invalid) ++invalid_;
        state = event.state;
        std::uint64_t const bit = std::uint64_t{1} << event.wire;
        bits_ = state == one ? bits_ | bit : bits_ & ~bit;
    }
    double value() noexcept {
        if (invalid_ == 0) return held_ = coding_.valueOf(bits_);
        return coding_.holdsInvalid ? held_ : std::numeric_limits<double>::quiet_NaN();
    }

private:
    Coding const & coding_;
    std::vector<State> states_;
    std::size_t invalid_;
    std::uint64_t bits_ = 0;
    double held_ = std::numeric_limits<double>::quiet_NaN(); // the last value while all wires were valid
};

bool sameValue(double a, double b) noexcept {
    return a == b || (std::isnan(a) && std::isnan(b));
}

struct Steps {
    std::vector<double> x, y;

    void add(double at, double value) {
        x.push_back(at);
        y.push_back(value);
    }
};

// A stepped curve: each change has a point before and one behind it, at the same x.
Steps trace(std::vector<Event> & events, Coding const & coding, double end) {
    std::stable_sort(events.begin(), events.end(), [](Event const & a, Event const & b) { return a.time < b.time; });
    Bus bus(coding);
    Steps steps;
    for (auto event = events.begin(); event != events.end();) {
        double const time = event->time;
        for (; event != events.end() && event->time == time; ++event) bus.apply(*event);
        double const value = bus.value();
        if (!steps.y.empty() && sameValue(value, steps.y.back())) continue;
        if (!steps.y.empty()) steps.add(time, steps.y.back());
        steps.add(time, value);
    }
    if (!steps.x.empty() && end > steps.x.back()) steps.add(end, steps.y.back());
    return steps;
}

// --- arguments

dvec const * findWire(FuncArgs const & args, std::int64_t number) {
    std::string_view const pattern = textOf(args, 4).empty() ? usualPattern : textOf(args, 4);
    SplitName const split = splitVectorName(textOf(args, 0));
    YString const name = sp_ResolveWireTemplate(pattern, split.vector, number);
    if (!split.hasGroup) return findVector(name, nullptr, false);
    Group const * const group = findGroupOrCurrent(split.group);
    return group != nullptr ? group->find(name) : nullptr;
}

bool isWire(dvec const * vector) {
    return vector != nullptr && vector->isReal() && vector->totalLength() > 0 && vector->ref.isReal() &&
           vector->ref.totalLength() > 0;
}

// The wires 0, 1, 2 and so on as far as there are any, or from one number to another; bit 0 first. Empty when one that
// was asked for is missing.
Wires findWires(FuncArgs const & args) {
    Wires wires;
    constexpr std::int64_t mostNumber = std::int64_t{1} << 53; // of those that a real tells apart
    std::int64_t const first = std::clamp(countFrom(numberOr(args, 1, 0)), -mostNumber, mostNumber);
    bool const isOpen = args.length(1) < 2;
    std::int64_t const last = isOpen ? first + static_cast<std::int64_t>(mostWires)
                                     : std::clamp(countFrom(numberOr(args, 1, 0, 1)), -mostNumber, mostNumber);
    std::int64_t const step = last < first ? -1 : 1;
    for (std::int64_t number = first; wires.size() <= mostWires; number += step) {
        dvec const * const wire = findWire(args, number);
        if (!isWire(wire)) return isOpen ? wires : Wires();
        wires.push_back(wire);
        if (number == last) break;
    }
    return wires;
}

// Two numbers, one for both, or else the middle between the least and the greatest value of all wires.
Levels levelsFor(FuncArgs const & args, Wires const & wires) {
    if (isGiven(args, 2)) {
        double const low = numberOr(args, 2, 0);
        return {low, numberOr(args, 2, low, 1)};
    }
    double least = std::numeric_limits<double>::infinity(), greatest = -least;
    for (dvec const * wire : wires)
        for (std::int64_t d = 0; d < wire->numDivisions(); ++d) {
            double const * const y = wire->realData(d);
            if (y == nullptr) continue;
            auto const [low, high] = std::minmax_element(y, y + wire->length(d));
            least = std::min(least, *low);
            greatest = std::max(greatest, *high);
        }
    double const middle = least + (greatest - least) / 2;
    return {middle, middle};
}

Steps compose(Wires const & wires, std::int64_t division, Levels const & levels, Coding const & coding) {
    std::vector<Event> events;
    double end = -std::numeric_limits<double>::infinity();
    for (std::size_t k = 0; k < wires.size(); ++k) {
        Samples const samples(*wires[k], division);
        WireEvents(levels, static_cast<unsigned char>(k), events).collect(samples);
        if (samples.size() > 0) end = std::max(end, samples[samples.size() - 1].x);
    }
    return trace(events, coding, end);
}

// The wire with the most divisions; null when another one has several too, but not as many.
dvec const * widestWire(Wires const & wires) {
    dvec const * widest = wires.front();
    for (dvec const * wire : wires)
        if (wire->numDivisions() > widest->numDivisions()) widest = wire;
    for (dvec const * wire : wires)
        if (wire->numDivisions() != 1 && wire->numDivisions() != widest->numDivisions()) return nullptr;
    return widest;
}

// A further division of the result.
void give(FuncResult & result, Steps const & steps, std::int64_t divisions) {
    auto const n = static_cast<std::int64_t>(steps.x.size());
    result.setDivision(divisions);
    result.allocate(n, ALLOC_HINT, n);
    result.allocateRef(n, ALLOC_HINT, n);
    std::copy(steps.y.begin(), steps.y.end(), result.data());
    std::copy(steps.x.begin(), steps.x.end(), result.refData());
}

// A division without points is left out, and its label with it.
void giveDivisions(FuncResult & result, Wires const & wires, dvec const & widest, Levels const & levels,
                   Coding const & coding) {
    NameArray labels, kept;
    widest.divisionLabels(&labels);
    for (std::int64_t d = 0; d < widest.numDivisions(); ++d) {
        Steps const steps = compose(wires, d, levels, coding);
        if (steps.x.empty()) continue;
        give(result, steps, static_cast<std::int64_t>(kept.size()));
        kept.push_back(labels[static_cast<std::size_t>(d)]);
    }
    if (kept.size() > 1) result.setDivisionLabelArray(kept);
    if (kept.size() > 1 && widest.isMultiple()) result.setMultiple();
}

FUNC_ERROR composeDigital(FuncArgs const & args, FuncResult & result, MessageHandler & messages) {
    Wires const wires = findWires(args);
    if (wires.empty()) return FUNC_OK;
    if (wires.size() > mostWires) {
        messages.error("A bus in function '%s' has %d wires at most", args.getFuncName(), static_cast<int>(mostWires));
        return FUNC_FAILED;
    }
    dvec const * const widest = widestWire(wires);
    if (widest == nullptr) return FUNC_OK;
    bool const holds = hasWord(args, 3, "holdInvalid") || hasWord(args, 3, "holdInv");
    Coding const coding{wires.size(), hasWord(args, 3, "signed"), hasWord(args, 3, "scale"), holds};
    result.setType(VD_REAL, VD_REAL);
    result.setPhysType(PT_NONE, wires.front()->ref.physType());
    giveDivisions(result, wires, *widest, levelsFor(args, wires), coding);
    result.setRefName(wires.front()->ref.name());
    return FUNC_OK;
}

constexpr argType text = ARG_STRING, real = ARG_REAL;

constexpr FunctionRow rows[] = {
    {"ComposeDigital", handlerOf<composeDigital>, 1, 5, {text, real, real, text, text}, {}, "A bus from its wires"},
};

FunctionFamily const family(rows);

} // namespace
