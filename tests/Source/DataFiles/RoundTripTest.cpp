// Random groups come back from a file as they were, and from a file of that again.
#include "Source/DataFiles/DataFilesFixture.h"

#include <random>
#include <sstream>

namespace {

// All that a group shows, as text that keeps every bit.
class Description {
public:
    explicit Description(Group & group) {
        out << std::hexfloat;
        put("title", group.title);
        put("date", group.date);
        for (YString const & label : *group.labels) put("label", label);
        for (YString const & script : group.postProcessScripts()) put("script", script);
        for (TraceDescription const & trace : group.traces) putTrace(trace);
        putAnalysis(group.analysis);
        for (dvec * vector : group.vectorsInOrder()) putMember(*vector);
        putSharing(group);
    }
    std::string text() const { return out.str(); }

private:
    void put(char const * what, YString const & text) {
        out << what << ' ' << text.size() << ':' << text.view() << '\n';
    }
    void putTrace(TraceDescription const & trace) {
        put("trace", trace.text1);
        put(trace.flag ? "with" : "without", trace.text2);
        for (auto const & property : trace.properties) {
            put("property", property.name);
            put("is", property.value);
        }
    }
    void putAnalysis(AnalysisInfo const & analysis) {
        put("analysis", analysis.text1);
        put("and", analysis.text2);
        out << analysis.flag1 << analysis.flag2 << analysis.flag3 << ' ' << analysis.value1 << ' ' << analysis.value2
            << '\n';
    }
    void putMember(dvec & vector) {
        out << "flags " << (vector.flags & (VF_READONLY | VF_ALIAS | VF_REFALIAS)) << '\n';
        putVector(vector);
        if (vector.ref.name().empty()) return;
        out << "over ";
        putVector(vector.ref);
    }
    void putVector(NamedVector const & vector) {
        put("vector", vector.name());
        out << vector.physType() << ' ' << vector.type() << ' ' << vector.isMultiple() << '\n';
        for (std::int64_t d = 0; d < vector.numDivisions(); ++d) {
            out << '[';
            for (std::int64_t i = 0; i < vector.length(d); ++i) putElement(vector, i, d);
            out << "]\n";
        }
    }
    void putElement(NamedVector const & vector, std::int64_t i, std::int64_t d) {
        if (vector.isString())
            put("", YString(vector.getString(i, d)));
        else
            out << vector.getReal(i, d) << ',' << vector.getImag(i, d) << ' ';
    }
    void putSharing(Group & group) {
        for (dvec * a : group.vectorsInOrder())
            for (dvec * b : group.vectorsInOrder()) out << a->ref.sharesRep(*b) << a->ref.sharesRep(b->ref);
        out << '\n';
    }

    std::ostringstream out;
};

class RoundTrip : public DataFilesFixture {
protected:
    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
    bool oneIn(int n) { return below(n) == 0; }
    std::string bytes(int n, int least = 0) {
        std::string text;
        for (; n > 0; --n) text += static_cast<char>(least + below(256 - least));
        return text;
    }
    YString someText() { return YString(bytes(below(12))); }

    Group * randomGroup() {
        Group * group = makeGroup(YString(bytes(1 + below(10))), "g", 0);
        group->date = someText();
        steps = 1 + (oneIn(3) ? 0 : below(6));
        for (int step = 0; step < steps; ++step) vec_AddGroupDivision(group->name, someText());
        if (oneIn(3)) vec_AddGroupDivision(group->name, "one more than there are");
        for (int n = below(3); n > 0; --n) group->traces.push_back(randomTrace());
        group->analysis = {random(), random(), oneIn(2), oneIn(2), oneIn(2), someText(), someText()};
        for (int n = below(3); n > 0; --n) group->addPostProcess(someText());
        for (int k = below(10); k > 0; --k) addVector(*group, k);
        for (dvec * vector : group->vectorsInOrder()) addReference(*group, *vector);
        for (dvec * vector : group->vectorsInOrder()) limitView(*vector);
        return group;
    }
    TraceDescription randomTrace() {
        TraceDescription trace{someText(), someText(), oneIn(2), {}};
        for (int n = below(3); n > 0; --n) trace.properties.push_back({someText(), someText()});
        return trace;
    }
    void addVector(Group & group, int number) {
        YString const name("v" + std::to_string(number) + (oneIn(2) ? bytes(1, 128) : ""));
        auto * vector = new dvec(name, &group, static_cast<PhysType>(below(PT_LITERAL + 1)));
        if (oneIn(3))
            fillWithStrings(*vector);
        else
            fillWithNumbers(group, *vector);
        if (oneIn(4)) vector->flags |= VF_READONLY;
        vector->enterGroup();
    }
    void fillWithStrings(dvec & vector) {
        int const count = below(5);
        vector.setSize(count, VD_STRING);
        for (int i = 0; i < count; ++i) vector.setString(bytes(below(30), 1).c_str(), i);
        if (count == 0 || oneIn(2)) return;
        vector.flags |= VF_ALIAS;
        if (oneIn(3)) vector.flags |= VF_REFALIAS;
    }
    void fillWithNumbers(Group & group, dvec & vector) {
        vector.setSize(0, oneIn(2) ? VD_COMPLEX : VD_REAL);
        int const count = oneIn(4) ? 5000 : below(9);
        for (int step = 0; step < steps; ++step) {
            if (step != 0) vector.addDivision(oneIn(2) ? group.name : YString());
            for (int i = 0; i <= count + step; ++i) vector.addVal(complex{below(1000) / 7.0, double(below(9))});
            vector.addVal(below(1000) / 7.0);
        }
        if (oneIn(4)) vector.setMultiple();
        if (oneIn(4)) vector.addDivision(YString()); // announced, and nothing follows
    }
    void addReference(Group & group, dvec & vector) {
        YArray<dvec *> const all = group.vectorsInOrder();
        dvec const & other = *all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
        bool const fits = !vector.isString() && !other.isString() && other.totalLength() == vector.totalLength();
        if (&other != &vector && fits && oneIn(2)) static_cast<NamedVector &>(vector.ref) = other;
    }
    // A part of the divisions, of the vector and its reference alike.
    void limitView(dvec & vector) {
        if (vector.isString()) return;
        int const kind = below(6), division = below(static_cast<int>(vector.numDivisions()));
        NamedVector * const both[] = {&vector, vector.ref.name().empty() ? nullptr : &vector.ref};
        for (NamedVector * part : both) {
            if (part == nullptr) continue;
            if (kind == 0) part->selectDivision(division);
            if (kind == 1) part->openDivisionAt(division);
            if (kind == 2) part->limitDivisions(division + 1);
        }
    }

    std::mt19937 random{20};
    int steps = 1;
};

TEST_F(RoundTrip, WhateverIsSavedComesBack) {
    YString const first = folder.path("first.tvdat"), second = folder.path("second.tvdat");
    for (int round = 0; round < 50 && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Group * group = randomGroup();
        std::string const was = Description(*group).text();
        ASSERT_TRUE(save(group, first));
        EXPECT_EQ(Description(*group).text(), was) << "saving changes nothing";
        destroyGroup(group);
        Group * back = open(first);
        ASSERT_NE(back, nullptr) << words->last();
        EXPECT_EQ(Description(*back).text(), was);
        ASSERT_TRUE(save(back, second));
        destroyGroup(back);
        Group * again = open(second);
        ASSERT_NE(again, nullptr) << words->last();
        EXPECT_EQ(Description(*again).text(), was);
        destroyGroup(again);
    }
}

} // namespace
