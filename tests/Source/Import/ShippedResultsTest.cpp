// The results under examples, as a simulator wrote them, against what circuit theory says of the circuits.
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

} // namespace
