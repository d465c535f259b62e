// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Filters/CAudioFilterGenArray.h"
#include "Tests/Audio/Filters/FilterWorld.h"

#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>

namespace qrb {
namespace {

using CComplex = std::complex<double>;
using std::numbers::pi;

/// Analogue response at s = j times the frequency over the filter's own; q is 1/Q, A the root of the gain.
CComplex prototype(int type, CComplex s, double q, double A)
{
    const CComplex poles = s * s + s * q + 1.0;
    const double root = std::sqrt(A) * q;
    switch (type) {
    case 0:
        return 1.0 / poles;
    case 1:
        return s * s / poles;
    case 2:
        return s * q / poles;
    case 3:
        return s / poles;
    case 4:
        return (s * s + 1.0) / poles;
    case 5:
        return (s * s - s * q + 1.0) / poles;
    case 6:
        return (s * s + s * q * A + 1.0) / (s * s + s * q / A + 1.0);
    case 7:
        return A * (s * s + s * root + A) / (A * s * s + s * root + 1.0);
    case 8:
        return A * (A * s * s + s * root + 1.0) / (s * s + s * root + A);
    default:
        return (1.0 - s * s) / poles; // low-pass less high-pass
    }
}

/// What a few units in the last digit of a biquad's coefficients do to its response: nothing can be closer.
double attainable(const CAudioFilterStage& stage, double w)
{
    const CComplex z = std::polar(1.0, -w);
    const double poles = std::abs(1.0 + z * (stage.a[0] + z * stage.a[1]));
    const double sum = (std::abs(stage.response(w)) + 1.0) * (1.0 + std::abs(stage.a[0]) + std::abs(stage.a[1]));
    return 4.0 * std::numeric_limits<double>::epsilon() * sum / poles;
}

double bandwidthLaw(const std::string& law, double bandwidth, double w)
{
    if (law == "is-q")
        return 1.0 / bandwidth;
    return 2.0 * std::sinh(0.5 * std::numbers::ln2 * bandwidth * (law.empty() ? w / std::sin(w) : 1.0));
}

TEST_F(FilterTest, BiquadsAreBilinearTransformsOfTheirPrototypes)
{
    const auto check = [&](int type, const std::string& law, double rate, double frequency, double gain, double width) {
        const std::string name = "rbj" + std::to_string(type) + law;
        const CAudioFilterStageList list = design(name, rate, params(frequency, gain, width));
        ASSERT_EQ(list.stages().size(), 1u) << name << " " << rate << " " << frequency << " " << width;
        const double w0 = 2.0 * pi * frequency / rate;
        const double q = bandwidthLaw(law, width, w0);
        for (double w = 0.0003; w < 3.1; w *= 1.9) {
            const CComplex s{0.0, std::tan(w / 2.0) / std::tan(w0 / 2.0)};
            const double error = std::abs(list.response(w) - prototype(type, s, q, std::sqrt(gain)));
            const double tolerance = std::max(1e-10, attainable(list.stages()[0], w));
            ASSERT_LE(error, tolerance) << name << " " << rate << " " << frequency << " " << gain << " " << width << " "
                                        << w;
        }
    };
    for (const int type : {0, 1, 2, 3, 4, 5, 6, 7, 8, 10})
        for (const char* law : {"", "is-q", "is-type2"})
            for (const double rate : kSampleRates)
                for (const double frequency : {10.0, 333.0, 5000.0, 20000.0})
                    for (const double gain : {0.06, 1.0, 8.0})
                        for (const double width : {0.1, 0.7071, 4.0})
                            check(type, law, rate, frequency, gain, width);
}

TEST_F(FilterTest, InvertedLowPassTakesItsQFromTheGain)
{
    const CAudioFilterStageList inverted = design("lpi", 48000, params(1000, 0.9, 3.0));
    const CAudioFilterStageList plain = design("rbj0is-q", 48000, params(1000, 1.0, 0.9));
    for (const double w : {0.01, 0.13, 1.0})
        EXPECT_NEAR(std::abs(inverted.response(w) + plain.response(w)), 0.0, 1e-15);
    const CComplex pole = std::polar(0.97, 0.2);
    const CComplex delay = std::polar(1.0, -0.5);
    const CComplex want =
        (delay - pole) * (delay - std::conj(pole)) / (1.0 - pole * delay) / (1.0 - std::conj(pole) * delay);
    const CAudioFilterStageList radius = design("rbj9", 48000, params(0.2 / (2 * pi) * 48000, 1.0, 0.97));
    EXPECT_NEAR(std::abs(radius.response(0.5) - want), 0.0, 1e-13);
}

TEST_F(FilterTest, FirstOrderStagesAreSmoothersWithTheirCornersInPlace)
{
    for (const double rate : kSampleRates) {
        for (const double frequency : {20.0, 1000.0, 20000.0}) {
            const CAudioFilterParams values = params(frequency, 1.0, 1.0);
            const auto gainAt = [&](const char* name, double hertz) {
                return std::abs(gen(name).response(hertz, rate, values));
            };
            const double c = std::cos(2 * pi * frequency / rate);
            EXPECT_NEAR(gainAt("lp1", frequency), std::sqrt(0.5), 1e-9) << "the law of the one-pole coefficient";
            EXPECT_NEAR(gainAt("lp1", 0.0), 1.0, 1e-9);
            EXPECT_NEAR(gainAt("hp1g", frequency), 0.7079457843841379, 1e-9);
            EXPECT_NEAR(gainAt("hp1", 0.0), 0.0, 1e-12);
            const double k = c - 1.0 + std::sqrt((3.0 - c) * (1.0 - c));
            const CComplex z = std::polar(1.0, -1.0);
            const CComplex want = 1.0 - k / (1.0 - (1.0 - k) * z);
            EXPECT_NEAR(std::abs(gen("hp1").response(rate / (2 * pi), rate, values) - want), 0.0, 1e-10);
        }
    }
    // Two stages each: the corner of the pair stays where the frequency says, while it is far below half the rate.
    EXPECT_NEAR(std::abs(gen("lp1b").response(10, 192000, params(10, 1, 1))), std::sqrt(0.5), 3e-4);
    EXPECT_NEAR(std::abs(gen("hp1b").response(10, 192000, params(10, 1, 1))), std::sqrt(0.5), 3e-4);
}

TEST_F(FilterTest, PeaksOfPrescribedGainHitTheirCentre)
{
    for (const double rate : kSampleRates)
        for (const double frequency : {10.0, 333.0, 5000.0, 20000.0, rate / 4, 0.499 * rate})
            for (const double gain : {0.06, 0.9, 1.0, 1.1, 16.0})
                for (const double width : {0.05, 0.5, 1.0, 2.0, 4.0})
                    for (int type = 0; type < 6; ++type) {
                        const std::string name = "magnus" + std::to_string(type);
                        const CAudioFilterStageList list = design(name, rate, params(frequency, gain, width));
                        // At a quarter of the rate law B moves out of its own way, and law C divides by zero for two
                        // octaves. Laws A and B keep off half the rate.
                        const bool isQuarter = frequency == rate / 4;
                        if (list.empty() && isQuarter && width == 2.0 && type % 3 == 2)
                            continue;
                        ASSERT_FALSE(list.empty()) << name << " " << rate << " " << frequency << " " << width;
                        double centre = frequency / rate;
                        if (type % 3 == 0)
                            centre = std::min(centre, 0.49);
                        else if (type % 3 == 1)
                            centre = isQuarter ? 0.99 * centre : std::min(centre, 0.495);
                        const double w = 2 * pi * centre;
                        const double want = type < 3 && gain == 1.0 ? 0.999 : gain;
                        const double tolerance = std::max(1e-9, gain * attainable(list.stages()[0], w));
                        ASSERT_NEAR(std::abs(list.response(w)), want, tolerance)
                            << name << " " << rate << " " << frequency << " " << gain << " " << width;
                    }
}

TEST_F(FilterTest, PeaksOfPrescribedGainMeetTheEdgesOfTheirBand)
{
    // Far below half the rate, where nothing is warped: exact, but for the law that is scaled to come close.
    const std::pair<const char*, double> kRows[] = {
        {"magnus0", 5e-4}, {"magnus2", 5e-4}, {"fixed", 0.16}, {"magnus3", 5e-4}, {"magnus5", 5e-4}};
    for (const auto& [name, tolerance] : kRows)
        for (const double gain : {0.25, 4.0, 16.0})
            for (const double width : {0.2, 1.0, 3.0})
                for (const double edge : {-0.5, 0.5}) {
                    const CAudioFilterParams values = params(333, gain, width);
                    const double got = std::abs(gen(name).response(333 * std::exp2(edge * width), 384000, values));
                    const bool isPeak = name[0] == 'f' || name[6] < '3';
                    const double want = isPeak ? std::sqrt(gain) : gain * std::sqrt(0.5);
                    EXPECT_NEAR(20 * std::log10(got / want), 0.0, tolerance) << name << " " << gain << " " << width;
                }
}

TEST_F(FilterTest, AtEveryCornerADesignIsFiniteAndStableOrLeavesTheSignalAlone)
{
    std::size_t made = 0;
    const double huge = std::numeric_limits<double>::infinity();
    std::vector<std::string> names = {"lp1", "hp1", "hp1g", "lp1b", "fixed"};
    for (int type = 0; type < 11; ++type)
        for (const char* law : {"", "is-q", "is-type2"})
            names.push_back("rbj" + std::to_string(type) + law);
    for (int type = 0; type < 6; ++type)
        names.push_back("magnus" + std::to_string(type));
    for (const std::string& name : names)
        for (const double rate : {44100.0, 384000.0, 3072000.0})
            for (const double frequency :
                 {0.0, 1e-3, rate / 8, rate / 4, rate / 2 - 1e-3, rate / 2, rate / 2 + 1e-3, huge, -huge})
                for (const double gain : {0.0, 1e-5, 0.9995, 1.0, 1.0005, 1e5, huge})
                    for (const double width : {0.0, 1e-4, 0.5, 1.0, 20.0, huge, std::nan("")}) {
                        const CAudioFilterStageList list = design(name, rate, params(frequency, gain, width));
                        EXPECT_TRUE(list.empty() || 2 * frequency <= rate) << name << " " << frequency;
                        for (const CAudioFilterStage& stage : list.stages()) {
                            ++made;
                            for (const double number : stage.b)
                                ASSERT_TRUE(std::isfinite(number)) << name;
                            // Twice the digits, since the poles of low frequencies all but meet.
                            const long double a1 = stage.a[0];
                            const long double a2 = stage.a.size() > 1 ? stage.a[1] : 0.0;
                            const std::complex<long double> root =
                                std::sqrt(std::complex<long double>(a1 * a1 - 4 * a2));
                            const long double radius = std::max(std::abs(-a1 + root), std::abs(-a1 - root)) / 2;
                            ASSERT_TRUE(radius < 1.0L) << name << " " << frequency << " " << width;
                        }
                    }
    EXPECT_GT(made, 5000u);
    CAudioFilterParams noBandwidth;
    noBandwidth.set("freq", 100);
    noBandwidth.set("gain", 2);
    EXPECT_TRUE(design("rbj0", 44100, noBandwidth).empty());
    EXPECT_FALSE(design("lp1", 44100, noBandwidth).empty());
    EXPECT_FALSE(design("rbj6", 44100, params(11025, 2, 1)).empty());
    EXPECT_FALSE(design("magnus1", 44100, params(11025, 2, 1)).empty());
    EXPECT_FALSE(design("lp1", 44100, params(22050, 1, 1)).empty()) << "half the rate itself still makes a filter";
}

TEST_F(FilterTest, SerialItemsAdjustValuesByPlaceWhateverTheOrderOfNames)
{
    CAudioFilterParams values;
    for (const char* name : {"bw", "length", "gain", "freq"})
        values.add(name);
    values.set("freq", 1000);
    values.set("gain", 4);
    values.set("bw", 1);
    const CAudioFilterStageList fixed = design("fixed", 48000, values);
    const CAudioFilterStageList scaled = design("magnus1", 48000, params(1000, 4, 0.924825));
    EXPECT_EQ(fixed.response(0.2), scaled.response(0.2));
    EXPECT_EQ(design("root2", 48000, values).response(0.2), design("rbj6", 48000, params(1000, 4, 1)).response(0.2));
    EXPECT_EQ(design("lp1b", 48000, values).stages().size(), 2u);
}

TEST_F(FilterTest, LinearPhaseTapsAreAWindowedSine)
{
    const struct {
        double length, frequency, beta;
        std::size_t taps;
    } kRows[] = {{0.008, 10650, 16, 365},
                 {0.023, 11000, 16, 1017},
                 {0.00081, 10200, 16.3, 39},
                 {0.008, 10650, 0.2, 365},
                 {0.0000001, 10650, 16, 1}};
    for (const auto& row : kRows) {
        CAudioFilterParams values;
        values.set("length", row.length);
        values.set("freq", row.frequency);
        values.set("beta", row.beta);
        const CAudioFilterStageList list = design("firlp", 44100, values);
        ASSERT_EQ(list.stages().size(), 1u);
        const auto& taps = list.stages()[0].b;
        ASSERT_TRUE(list.stages()[0].isFinite());
        ASSERT_EQ(taps.size(), row.taps);
        EXPECT_EQ(list.latency(), static_cast<int>(row.taps / 2));
        const double half = row.length * 44100 * 44100 / row.frequency / 8;
        const double w = 2 * pi * row.frequency / 44100;
        const double beta = std::max(1.0, row.beta);
        for (std::size_t i = 0; i < taps.size(); ++i) {
            const double k = static_cast<double>(i) - static_cast<double>(row.taps / 2);
            const double window = std::cyl_bessel_i(0, beta * std::sqrt(std::max(0.0, 1 - k * k / half / half))) /
                                  std::cyl_bessel_i(0, beta);
            const double sine = k == 0 ? w / pi : std::sin(w * k) / (pi * k);
            const bool isOnlyTap = row.taps == 1;
            ASSERT_NEAR(taps[i], isOnlyTap ? w / pi : sine * window, 3e-7 * w) << row.taps << " " << i;
        }
    }
    CAudioFilterParams endless;
    endless.set("length", 1e9);
    endless.set("freq", 1);
    EXPECT_TRUE(design("firlp", 44100, endless).empty()) << "no beta";
    endless.set("beta", 16);
    EXPECT_TRUE(design("firlp", 44100, endless).empty()) << "longer than anything can run";
}

TEST_F(FilterTest, ArraysGiveNothingWhereNoDesignerStands)
{
    const auto& array = m_module.shared<CAudioFilterGenArray>("array");
    EXPECT_EQ(array.count(), 4);
    EXPECT_EQ(array.get(1), &gen("rbj6"));
    for (const int index : {-1, 2, 4, 1 << 30})
        EXPECT_EQ(array.get(index), nullptr) << index;
}

TEST(FilterDeclarations, SayWhatIsWrong)
{
    const std::pair<const char*, const char*> kRows[] = {
        {"<audio:fltgen-rbj name='f' type='11'/>", "Invalid filter type '11' specified."},
        {"<audio:fltgen-magnus name='f' type='6'/>", "Invalid filter type '6' specified."},
        {"<audio:fltgen-lphp1 name='f' type='-1'/>", "Invalid filter type '-1' specified."},
        {"<audio:fltgen-hbf name='f' b='0.5'/>", "Not enough 'a' coefficients defined."},
        {"<audio:fltgen-hbf name='f' a='0.5,0.6,' b='0.5,0.6'/>", "Not enough 'a' coefficients defined."},
        {"<audio:fltgen-hbf name='f' a='0.5'/>", "Not enough 'b' coefficients defined."},
        {"<audio:fltgen-hbf name='f' a='0.5' b='0.5,0.6'/>",
         "Coefficient count should match in 'a' and 'b' coefficient lists."},
        {"<core:object name='o'><audio:fltgen-array-item name='i' fltgen='g' index='0'/></core:object>",
         "CAudioFilterGenArray class parent expected."},
        {"<audio:fltgen-array name='o'><audio:fltgen-array-item name='i' fltgen='g' index='-1'/></audio:fltgen-array>",
         "Invalid filter index '-1' specified."},
        {"<audio:fltgen-array name='o'><audio:fltgen-array-item name='i' fltgen='none' "
         "index='0'/></audio:fltgen-array>",
         "none"},
        {"<audio:fltgen-serial name='s'><audio:fltgen-serial-item name='i' fltgen='s'/></audio:fltgen-serial>",
         "Filter 's' contains itself."},
        {"<audio:fltgen-serial name='s'><audio:fltgen-serial-item name='i' fltgen='g' adjust='1,,2'/>"
         "</audio:fltgen-serial>",
         "Invalid adjustment '1,,2' '' specified."},
    };
    for (const auto& [xml, message] : kRows) {
        CTestModule module("<root/>", audioCreators());
        std::string error;
        EXPECT_EQ(module.tryLoadRoot(std::string("<root><audio:fltgen-bypass name='g'/>") + xml + "</root>", error),
                  nullptr);
        EXPECT_NE(error.find(message), std::string::npos) << xml << " gives " << error;
    }
}

} // namespace
} // namespace qrb
