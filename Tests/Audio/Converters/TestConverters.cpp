// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace qrb {
namespace {

constexpr const char* kDocument = R"(<root>
    <audio:cvt-gain name="gain" scale-power="1.0" scale-threshold="-1.0" decimals="1" label="dB"/>
    <audio:cvt-gain name="gain-bent" scale-power="2.5" scale-threshold="0.5" decimals="1"/>
    <audio:cvt-gain name="gain-all-below" scale-threshold="1.0" decimals="1"/>
    <audio:cvt-freq name="freq" scale-power="1.0" scale-threshold="-1.0" label="Hz"/>
    <audio:cvt-bw name="bw" label="Oct"/>
    <audio:cvt-ratio name="ratio" decimals="2"/>
    <audio:cvt-real name="real" decimals="2"/>
    <audio:cvt-percent name="percent" label="%"/>
    <audio:cvt-time name="time" scale="0.001" label="ms"/>
    <audio:cvt-time name="time-log" scale="1.0" is-log="true"/>
    <audio:cvt-time name="time-exact" scale="0.001" is-exact="true" is-precise="true"/>
    <audio:cvt-text name="text" is-discrete="true"/>
    <audio:cvt-enum name="enum" is-discrete="true"/>
    <audio:cvt-enum name="enum-enable" is-discrete="true" state-names="Off;On|Active now"/>
</root>)";

class Converters : public ::testing::Test {
protected:
    const CAudioParamConverter& get(const char* name) const { return m_module.shared<CAudioParamConverter>(name); }

    static CAudioParamInfo bounds(double low, double high)
    {
        CAudioParamInfo info;
        info.components.append({CString(), nullptr, low, high});
        return info;
    }

    std::string format(const char* name, double value, EValueStyle style,
                       const CAudioParamInfo& info = bounds(0, 1)) const
    {
        CString out("left over");
        get(name).formatValue(out, info, 0, value, nullptr, style);
        return out.toUtf8();
    }

    double parse(const char* name, const char* text, const CAudioParamInfo& info) const
    {
        bool ok = false;
        const double value = get(name).parseValue(info, 0, text, &ok);
        EXPECT_TRUE(ok) << name << " " << text;
        return value;
    }

    bool fails(const char* name, const char* text) const
    {
        bool ok = true;
        const double value = get(name).parseValue(bounds(2.0, 8.0), 0, text, &ok);
        EXPECT_TRUE(ok || value == 2.0) << "the lower bound stands for what cannot be read";
        return !ok;
    }

private:
    CTestModule m_module{kDocument, audioCreators()};
};

struct CRange {
    const char* converter;
    double low;
    double high;
    double textStep; ///< of the exact style, in stored units; relative to the value where negative
};

constexpr CRange kRanges[] = {
    {"gain", 0.001, 4.0, -0.00058},
    {"gain-bent", 0.0001, 2.0, -0.00058},
    {"gain-all-below", 0.01, 1.0, -0.00058},
    {"freq", 10.0, 20000.0, 0.00501},
    {"bw", 0.1, 4.0, 0.000501},
    {"ratio", 0.05, 0.98, -0.1},
    {"ratio", 5.0, 0.05, -0.1},
    {"real", -3.0, 7.5, 0.00501},
    {"real", 7.5, -3.0, 0.00501},
    {"percent", 0.0, 2.0, 0.000501},
    {"time", 0.0, 3.0, 0.000501},
    {"time-log", 0.001, 30.0, 0.0501},
    {"time-exact", 0.001, 0.5, 0.00000051},
};

TEST_F(Converters, PositionsReachBothEndsKeepTheirOrderAndComeBack)
{
    for (const CRange& range : kRanges) {
        const CAudioParamConverter& converter = get(range.converter);
        const CAudioParamInfo info = bounds(range.low, range.high);
        const double tolerance = 1e-12 * std::max(std::abs(range.low), std::abs(range.high));
        EXPECT_NEAR(converter.fromNormal(info, 0, 0.0), range.low, tolerance) << range.converter;
        EXPECT_NEAR(converter.fromNormal(info, 0, 1.0), range.high, tolerance) << range.converter;
        double before = range.low;
        for (int step = 1; step <= 200; ++step) {
            const double n = step / 200.0;
            const double value = converter.fromNormal(info, 0, n);
            EXPECT_NEAR(converter.toNormal(info, 0, value), n, 1e-9) << range.converter;
            EXPECT_EQ(value > before, range.high > range.low) << range.converter << " " << n;
            before = value;
        }
    }
}

TEST_F(Converters, EqualBoundsHaveAPositionToo)
{
    for (const char* name :
         {"gain", "freq", "bw", "ratio", "real", "percent", "time", "time-log", "time-exact", "text", "enum"})
        EXPECT_EQ(get(name).toNormal(bounds(0.5, 0.5), 0, 0.5), 0.0) << name;
}

TEST_F(Converters, TextComesBackAsTheSameValueAndTheSameText)
{
    for (const CRange& range : kRanges) {
        const CAudioParamInfo info = bounds(range.low, range.high);
        for (int step = 0; step <= 200; ++step) {
            const double value = get(range.converter).fromNormal(info, 0, step / 200.0);
            const std::string text = format(range.converter, value, EValueStyle::exact, info);
            // Compressions and expansions have a unit of their own behind the colon, which the reader knows.
            const double back = parse(range.converter, text.c_str(), info);
            const double tolerance = range.textStep < 0 ? -range.textStep * value : range.textStep;
            EXPECT_NEAR(back, value, tolerance) << range.converter << " " << text;
            EXPECT_EQ(format(range.converter, back, EValueStyle::exact, info), text) << range.converter;
        }
    }
}

TEST_F(Converters, TypedTextIsHeldWithinTheBoundsInEitherOrder)
{
    EXPECT_EQ(parse("real", "100", bounds(-3.0, 7.5)), 7.5);
    EXPECT_EQ(parse("real", "100", bounds(7.5, -3.0)), 7.5);
    EXPECT_EQ(parse("real", "-100", bounds(7.5, -3.0)), -3.0);
    EXPECT_EQ(parse("enum", "9", bounds(1.0, 3.0)), 3.0);
    bool ok = false;
    const CAudioParamInfo none{};
    EXPECT_NEAR(get("gain").parseBound(none, 0, "-20", &ok), 0.1, 1e-15);
    EXPECT_EQ(get("freq").parseBound(none, 0, "1,5K", &ok), 1500.0);
    EXPECT_EQ(get("percent").parseBound(none, 0, "250", nullptr), 2.5);
    EXPECT_EQ(get("time").parseBound(none, 0, "250", nullptr), 0.25);
    EXPECT_TRUE(ok);
    const std::pair<const char*, double> neutrals[] = {{"gain", 1.0}, {"freq", 0.0},    {"bw", 0.001}, {"ratio", 0.5},
                                                       {"real", 0.0}, {"percent", 0.0}, {"time", 0.0}, {"enum", 0.0}};
    for (const auto& [name, neutral] : neutrals) {
        EXPECT_EQ(get(name).parseBound(none, 0, "x", &ok), neutral) << name;
        EXPECT_FALSE(ok) << name;
    }
}

TEST_F(Converters, RefuseTextThatIsNoNumber)
{
    for (const char* name : {"gain", "freq", "bw", "ratio", "real", "percent", "time", "enum"})
        for (const char* text : {"", " ", "2.5 dB", "12e", "1:2:3", "0:1", "k", "5.", "--1", "+", "1 2"})
            EXPECT_TRUE(fails(name, text)) << name << " '" << text << "'";
}

TEST_F(Converters, RatiosAreSlopesAndNeverNeutral)
{
    const CAudioParamInfo info = bounds(5.0, 0.05);
    EXPECT_EQ(parse("ratio", "2:1", info), 0.5);
    EXPECT_EQ(parse("ratio", " 1 : 4 ", info), 4.0);
    EXPECT_EQ(parse("ratio", "2", info), 0.5);
    EXPECT_EQ(parse("ratio", "1:1", info), 0.999);
    EXPECT_EQ(parse("ratio", "1", info), 0.999);
    EXPECT_EQ(parse("ratio", "1:1.0005", info), 1.001);
    EXPECT_EQ(format("ratio", 0.5, EValueStyle::normal), "2.00:1");
    EXPECT_EQ(format("ratio", 0.05, EValueStyle::normal), "20.0:1");
    EXPECT_EQ(format("ratio", 2.0, EValueStyle::normal), "1:2.00");
    EXPECT_EQ(format("ratio", 12.0, EValueStyle::compact), "1:12");
    EXPECT_EQ(format("ratio", 0.999, EValueStyle::normal), "1.00:1");
}

TEST_F(Converters, ThresholdPlacesTheNeutralGain)
{
    const CAudioParamInfo info = bounds(0.0001, 2.0);
    EXPECT_EQ(get("gain-bent").fromNormal(info, 0, 0.5), 1.0);
    EXPECT_EQ(get("gain-bent").toNormal(info, 0, 1.0), 0.5);
    EXPECT_NEAR(get("gain-bent").fromNormal(info, 0, 0.25), std::pow(10.0, -4.0 + 4.0 * std::pow(0.5, 1.0 / 2.5)),
                1e-12);
    EXPECT_NEAR(get("gain").toDisplay(bounds(0.001, 4.0), 0, 0.0), -60.0, 1e-9);
    EXPECT_EQ(get("gain").label(), "dB");
    EXPECT_TRUE(get("enum").isDiscrete());
    EXPECT_FALSE(get("gain").isDiscrete());
}

TEST_F(Converters, WriteEachStyleWithItsDecimals)
{
    const struct {
        const char* name;
        double value;
        const char* normal;
        const char* compact;
        const char* exact;
    } kTexts[] = {
        {"gain", 1.0, "0.0", "0.0", "0.00"},
        {"gain", std::pow(10.0, -9.96 / 20.0), "-10.0", "-10", "-9.96"},
        {"gain", 0.9999, "0.0", "0.0", "0.00"},
        {"freq", 99.94, "99.9", "100", "99.94"},
        {"freq", 99.96, "100", "100", "99.96"},
        {"freq", 999.0, "999", "999", "999.00"},
        {"freq", 1000.0, "1.00k", "1.0k", "1000.00"},
        {"freq", 10000.0, "10.0k", "10k", "10000.00"},
        {"bw", 1.0 / 3.0, "0.33", "0.33", "0.333"},
        {"real", 9.96, "9.96", "10", "9.96"},
        {"real", -9.94, "-9.94", "-9.9", "-9.94"},
        {"percent", 0.125, "12.5", "13", "12.5"},
        {"time", 0.0005, "0.50", "0.5", "0.50"},
        {"time", 0.25, "250", "0.3*", "250"},
        {"time", 0.0123, "12.3", "12", "12.3"},
        {"time", 0.0996, "100", "0.1*", "100"},
        {"time-exact", 0.25, "250.000", "0.3*", "250.000"},
    };
    for (const auto& row : kTexts) {
        EXPECT_EQ(format(row.name, row.value, EValueStyle::normal), row.normal) << row.name << row.value;
        EXPECT_EQ(format(row.name, row.value, EValueStyle::compact), row.compact) << row.name << row.value;
        EXPECT_EQ(format(row.name, row.value, EValueStyle::exact), row.exact) << row.name << row.value;
    }
}

TEST_F(Converters, NamesOfStatesAreReadAndWritten)
{
    CAudioParamInfo info = bounds(1.0, 4.0);
    for (const char* name : {"First one", "Second thing", "Third"}) {
        info.longStateNames.append(CString(name));
        info.shortStateNames.append(CString(name).substr(0, 7));
    }
    EXPECT_EQ(parse("enum", " SECOND thing ", info), 2.0);
    EXPECT_EQ(parse("enum", "second tower", info), 2.0) << "the short form decides";
    EXPECT_EQ(parse("enum", "+3", info), 3.0);
    EXPECT_EQ(parse("enum-enable", "off", info), 1.0) << "own names come first";
    EXPECT_EQ(parse("enum-enable", "active n", info), 2.0);
    EXPECT_TRUE(fails("enum", "0x10")) << "no hexadecimal";

    EXPECT_EQ(format("enum", 2.0, EValueStyle::normal, info), "Second thing");
    EXPECT_EQ(format("enum", 2.0, EValueStyle::shortName, info), "Second ");
    EXPECT_EQ(format("enum", 2.0, EValueStyle::compact, info), "Sec");
    EXPECT_EQ(format("enum-enable", 2.0, EValueStyle::shortName, info), "Active ");
    EXPECT_EQ(format("enum-enable", 3.0, EValueStyle::normal, info), "Third") << "behind its own names the parameter's";
    EXPECT_EQ(format("enum", 0.0, EValueStyle::normal, info), "Reserve");
    EXPECT_EQ(format("enum", 4.0, EValueStyle::compact, info), "Rsv");
    EXPECT_EQ(format("enum", -1e300, EValueStyle::normal, info), "Reserve") << "no number is too far off";
    EXPECT_EQ(format("enum", 2.6, EValueStyle::normal), "3") << "no names at all";
    for (int step = 0; step <= 30; ++step) {
        const double value = get("enum").fromNormal(info, 0, step / 30.0);
        EXPECT_EQ(value, std::round(1.0 + step / 10.0));
        EXPECT_NEAR(get("enum").toNormal(info, 0, value), step / 30.0, 1.0 / 6.0 + 1e-12);
    }
}

TEST_F(Converters, TextsResolveInTheirData)
{
    CAudioParamData data;
    const std::int32_t key = data.addText("Drum room");
    CString out;
    get("text").formatValue(out, bounds(0, 1), 0, key, &data, EValueStyle::normal);
    EXPECT_EQ(out, "Drum room");
    EXPECT_EQ(parse("text", "anything", bounds(0, 1)), 0.0);
}

TEST(ConverterDeclarations, AreRefusedOutsideTheirLimits)
{
    const std::pair<const char*, const char*> kBad[] = {
        {R"(<audio:cvt-gain name="x" decimals="11"/>)", "Invalid 'decimals' attribute value 11 specified."},
        {R"(<audio:cvt-freq name="x" scale-power="0"/>)", "Invalid 'scale-power' attribute value 0 specified."},
        {R"(<audio:cvt-freq name="x" scale-threshold="1.5"/>)",
         "Invalid 'scale-threshold' attribute value 1.5 specified."},
        {R"(<audio:cvt-ratio name="x" decimals="0"/>)", "Invalid decimals 0 specified."},
        {R"(<audio:cvt-real name="x" decimals="-1"/>)", "Invalid decimals -1 specified."},
        {R"(<audio:cvt-time name="x" scale="-0.5"/>)", "Invalid scale -0.5 specified."},
    };
    CTestModule module("<root/>", audioCreators());
    for (const auto& [node, message] : kBad) {
        std::string error;
        EXPECT_EQ(module.tryLoadRoot(std::string("<root>") + node + "</root>", error), nullptr) << node;
        EXPECT_NE(error.find(message), std::string::npos) << error;
    }
}

} // namespace
} // namespace qrb
