// The results under examples, as a simulator wrote them, against what circuit theory says of the circuits.
#include "OpenRawFixture.h"
#include "RawFileFixture.h"

#include <algorithm>
#include <cmath>

namespace {

class ShippedResultsTest : public RawFileFixture {
protected:
    void openExample(char const * path) {
        ASSERT_TRUE(openPath((std::string(TORVELAN_SOURCE_DIR "/examples/") + path).c_str(), DATA_SPICE3));
        ASSERT_TRUE(texts().empty());
    }
};

TEST_F(ShippedResultsTest, AmplifierSweepIsComplexOverDecadesOfFrequency) {
    openExample("amplifier/ac.raw");
    auto const frequency = complexes("frequency");
    ASSERT_EQ(frequency.size(), 181u);
    for (std::size_t i = 0; i < frequency.size(); ++i) {
        EXPECT_NEAR(std::log10(frequency[i].re), static_cast<double>(i) / 20, 1e-9);
        EXPECT_EQ(frequency[i].im, 0);
    }
    EXPECT_EQ(vector("frequency")->physType(), PT_FREQUENCY);
    EXPECT_EQ(vector("out")->physType(), PT_VOLTAGE);
    EXPECT_EQ(vector("i(vin)")->physType(), PT_CURRENT);
    for (complex const & in : complexes("in")) EXPECT_EQ(in, (complex{1, 0}));
}

TEST_F(ShippedResultsTest, AmplifierInvertsWithTheGainOfItsResistors) {
    openExample("amplifier/ac.raw");
    complex const out = complexes("out")[60]; // at 1 kHz
    EXPECT_NEAR(abs(out), 3900.0 / 180, 4);   // collector over emitter resistor, less the loading
    EXPECT_LT(out.re, 0);
}

TEST_F(ShippedResultsTest, ConverterRunIsRealOverRisingTime) {
    openExample("buck/startup.raw");
    auto const time = reals("time");
    ASSERT_GT(time.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(time.begin(), time.end()));
    EXPECT_NEAR(time.back(), 100e-6, 1e-12);
    for (char const * name : {"in", "sw", "out", "l1#p", "rload#p"}) {
        EXPECT_EQ(reals(name).size(), time.size()) << name;
        EXPECT_TRUE(vector(name)->ref.sharesRep(*vector("time"))) << name;
    }
}

TEST_F(ShippedResultsTest, ConverterLoadObeysOhmsLaw) {
    openExample("buck/startup.raw");
    auto const out = reals("out"), current = reals("rload#p");
    EXPECT_EQ(vector("rload#p")->physType(), PT_CURRENT);
    for (std::size_t i = 0; i < out.size(); ++i) ASSERT_NEAR(current[i], out[i] / 5, 1e-9 + 1e-6 * std::abs(out[i]));
}

TEST_F(ShippedResultsTest, SweepOfTheClipperIsOddAndObeysOhmsLaw) {
    openExample("clipper/sweep.raw");
    auto const in = reals("v-sweep"), out = reals("out"), current = reals("i(vin)");
    ASSERT_EQ(in.size(), 41u);
    EXPECT_EQ(vector("v-sweep")->physType(), PT_VOLTAGE);
    constexpr double tolerance = 1e-3; // the simulator's own, of what it solves
    for (std::size_t i = 0; i < in.size(); ++i) {
        EXPECT_NEAR(in[i], -2 + 0.1 * static_cast<double>(i), 1e-12);
        EXPECT_LT(std::abs(out[i]), 0.7);
        EXPECT_NEAR(out[i], -out[40 - i], tolerance);
        EXPECT_NEAR(current[i], (out[i] - in[i]) / 1000, 1e-9);
    }
}

using ShippedSetsTest = OpenRawFixture;

TEST_F(ShippedSetsTest, EveryAnalysisOfAFileIsAGroup) {
    ASSERT_TRUE(vec_OpenRawFile(TORVELAN_SOURCE_DIR "/examples/clipper/analyses.raw", "out.tvdat", {}, messages_));
    EXPECT_TRUE(messages_->texts.empty());
    auto const groups = groupNames();
    ASSERT_EQ(groups.size(), 5u);
    auto find = [&groups](std::size_t group, char const * name) {
        dvec * const v = findGroup(groups[group])->find(name);
        EXPECT_NE(v, nullptr) << group << ' ' << name;
        return v;
    };
    EXPECT_EQ(find(0, "out")->length(), 1);
    EXPECT_TRUE(find(1, "out")->isComplex());
    EXPECT_EQ(find(1, "frequency")->physType(), PT_FREQUENCY); // its line has a word more
    EXPECT_EQ(find(1, "frequency")->length(), 21);
    EXPECT_EQ(find(2, "time")->physType(), PT_TIME);
    EXPECT_NEAR(find(2, "time")->getReal(find(2, "time")->length() - 1), 1e-3, 1e-12);
    EXPECT_EQ(find(3, "onoise_spectrum")->physType(), PT_UNKNOWN);
    EXPECT_EQ(find(3, "onoise_spectrum")->ref.length(), 21);
    EXPECT_GT(find(4, "onoise_total")->getReal(0), 0);
}

} // namespace
