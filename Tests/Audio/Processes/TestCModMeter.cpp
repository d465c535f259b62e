// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioEnv.h"
#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Tests/Audio/CGraphRig.h"
#include "Tests/Audio/Processes/ModuleXml.h"
#include "Tests/Audio/Viz/CVizProbe.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace qrb {
namespace {

constexpr double kRate = 44100.0;
const char* const kSource = "plugin.modMain.modMeter";

struct CSetting {
    double peakTime = 0.05, rms = 0.01, gain = 2.0, biasTime = 0.2, useBias = 0.0, release = 0.02, peakGain = 3.0;
    double rms2 = 0.003, release2 = 0.0, useTime2 = 0.0;
};

std::string meterXml(const CSetting& s, const std::string& attrs)
{
    const std::pair<const char*, double> rows[] = {
        {"peak", s.peakTime}, {"rms", s.rms},        {"gain", s.gain}, {"biastime", s.biasTime}, {"usebias", s.useBias},
        {"rel", s.release},   {"pgain", s.peakGain}, {"rms2", s.rms2}, {"rel2", s.release2},     {"use2", s.useTime2}};
    std::string xml;
    for (const auto& [name, value] : rows)
        xml += paramXml(name, std::to_string(value));
    return xml + moduleXml("modMeter",
                           {"peak", "rms", "gain", "biastime", "usebias", "rel", "pgain", "rms2", "rel2", "use2"},
                           attrs);
}

/// The chain through a meter whose port 1 gets half its port 0.
std::string ratioXml(const CSetting& s, const std::string& attrs)
{
    return meterXml(s, "is-diff='true' " + attrs) + paramXml("half", "0.5") +
           probeXml("half-signal", "^half", "is-outoforder='true'") + linkXml("*", "half-signal") +
           linkXml("half-signal", "modMeter/1");
}

double noise(int sample)
{
    std::minstd_rand random(static_cast<unsigned>(sample) + 1);
    random.discard(3);
    const double swell = 0.55 + 0.45 * std::sin(0.0011 * sample);
    return swell * std::uniform_real_distribution<double>(-1.0, 1.0)(random);
}

enum class EForm { level, gain, gainBias, ratio, ratioBias };

/// The meter, word for word, without a thought for speed.
class CSlowMeter {
public:
    CSlowMeter(EForm form, const CSetting& s, int period) : m_form(form), m_s(s), m_period(period)
    {
        const double first = form == EForm::level ? 0.0 : 1.0;
        mean = mean2 = bias = tracker = chunk = held = first;
        m_holdLength = std::max(1L, std::lround(kRate * s.peakTime / period));
        m_peaks.assign(static_cast<std::size_t>(m_holdLength), first);
        m_age = m_holdLength - 1;
    }

    void add(double a, double b)
    {
        const double cRms = rate(m_s.useTime2 >= 0.5 ? m_s.rms2 : m_s.rms);
        const double r = m_s.useTime2 >= 0.5 ? m_s.release2 : m_s.release;
        const double cRel = r >= 0.0001 ? rate(r) : 1.0;
        const double cBias = rate(m_s.biasTime);
        double x = a * a;
        if (m_form == EForm::ratio || m_form == EForm::ratioBias) {
            mean += (a * a - mean) * cRms;
            mean2 += (b * b - mean2) * cRms;
            const double q = (1e-15 + mean) / (1e-15 + mean2);
            bias += (q - bias) * cBias;
            tracker = q / bias;
            chunk = std::min(chunk, tracker);
            return;
        }
        if (m_form == EForm::gainBias) {
            const double q = (1e-15 + x) / (1e-15 + bias);
            bias += (x - bias) * cBias;
            x = q;
        }
        mean += (x - mean) * cRms;
        const bool isJump = m_form == EForm::level ? mean > tracker : mean < tracker;
        tracker = isJump ? mean : tracker + (mean - tracker) * cRel;
        chunk = m_form == EForm::level ? std::max({chunk, x, tracker}) : std::min({chunk, x, tracker});
    }

    std::pair<double, double> endPeriod()
    {
        if (m_form == EForm::ratio) {
            const double v = std::sqrt((mean + 1e-15) / (mean2 + 1e-15)) * m_s.gain;
            return {v, v * m_s.peakGain};
        }
        const auto beats = [&](double a, double b) { return m_form == EForm::level ? a >= b : a <= b; };
        m_peaks.insert(m_peaks.begin(), chunk);
        m_peaks.pop_back();
        if (beats(chunk, held)) {
            held = chunk;
            m_age = m_holdLength;
        } else if (m_age > 0) {
            --m_age;
        } else {
            const auto best =
                std::max_element(m_peaks.begin(), m_peaks.end(), [&](double a, double b) { return !beats(a, b); });
            held = *best;
            m_age = m_holdLength - (best - m_peaks.begin());
        }
        chunk = tracker;
        return {std::sqrt(tracker) * m_s.gain, std::sqrt(held) * m_s.peakGain};
    }

    double mean, mean2, bias, tracker, chunk, held;

private:
    static double rate(double seconds)
    {
        const double x = 2.0 - std::cos(2.0 * std::acos(-1.0) / kRate / (1.362 * seconds));
        return 1.0 - x + std::sqrt(x * x - 1.0);
    }

    EForm m_form;
    CSetting m_s;
    int m_period;
    std::vector<double> m_peaks;
    long m_holdLength = 1;
    long m_age = 0;
};

/// Runs a rig until its meter has records to fill.
void warmUp(CGraphRig& rig, CVizProbe& probe)
{
    (void)rig.run(1);
    (void)probe.pull();
    (void)rig.run(8192);
    (void)probe.pull();
    rig.reset();
}

TEST(CModMeter, FollowsTheSlowModelInAllForms)
{
    const struct {
        EForm form;
        double useBias;
        const char* attrs;
    } kRows[] = {{EForm::level, 0.0, ""},
                 {EForm::gain, 0.0, "is-compression='true'"},
                 {EForm::gainBias, 1.0, "is-compression='true'"},
                 {EForm::ratio, 0.0, ""},
                 {EForm::ratioBias, 1.0, "is-inverted='true'"}};
    for (const auto& row : kRows) {
        for (const double useTime2 : {0.0, 1.0}) {
            CSetting setting;
            setting.useBias = row.useBias;
            setting.useTime2 = useTime2;
            const bool isRatio = row.form == EForm::ratio || row.form == EForm::ratioBias;
            const std::string attrs = std::string("fps='100' ") + row.attrs;
            CGraphRig rig(isRatio ? ratioXml(setting, attrs) : meterXml(setting, attrs));
            CVizProbe probe(rig.viz());
            (void)probe.listen(kSource);
            warmUp(rig, probe);
            const int start = 8193;
            rig.input = [&](int, int n) { return noise(n - start); };

            constexpr int kPeriod = 442; // 441 made even
            CSlowMeter model(row.form, setting, kPeriod);
            int n = 0;
            for (const int block : {17, 512, 1, 300, 441, 442, 443, 4096}) {
                (void)rig.run(block * 3, block);
                const auto records = probe.pull<CAudioVizDataMeter>(kSource);
                std::size_t found = 0;
                for (const int end = n + block * 3; n < end;) {
                    model.add(noise(n), 0.5 * noise(n));
                    if (++n % kPeriod != 0)
                        continue;
                    auto [value, peak] = model.endPeriod();
                    if (row.form == EForm::ratioBias) {
                        value = 1.0 / value;
                        peak = 1.0 / peak;
                    }
                    ASSERT_LT(found, records.size());
                    const CAudioVizDataMeter& record = records[found++];
                    EXPECT_NEAR(record.value / value, 1.0, 1e-9) << static_cast<int>(row.form) << " " << n;
                    EXPECT_NEAR(record.peak / peak, 1.0, 1e-9) << static_cast<int>(row.form) << " " << n;
                    EXPECT_NEAR(record.time, (start + n - 0.5 * kPeriod) / kRate, 1e-9);
                }
                EXPECT_EQ(found, records.size());
            }
        }
    }
}

TEST(CModMeter, FallsAsItsReleaseSaysAndHoldsPeaksForTheirTime)
{
    CSetting setting;
    setting.gain = setting.peakGain = 1.0;
    setting.rms = 0.001;
    setting.release = 0.1;
    CGraphRig rig(meterXml(setting, "fps='100'"));
    CVizProbe probe(rig.viz());
    (void)probe.listen(kSource);
    warmUp(rig, probe);
    constexpr int kPeriod = 442;
    const int stop = 8193 + 20 * kPeriod;
    rig.input = [&](int, int n) { return n < stop ? -0.5 : 0.0; };
    (void)rig.run(40 * kPeriod, 512);
    const auto records = probe.pull<CAudioVizDataMeter>(kSource);
    ASSERT_EQ(records.size(), 40u);
    const auto decibels = [](double x) { return 20.0 * std::log10(x); };
    EXPECT_NEAR(decibels(records[19].peak), decibels(0.5), 0.01);
    EXPECT_NEAR(decibels(records[19].value), decibels(0.5), 0.01);
    // One period of a release of 100 ms, in which a power falls by (1 - c) a sample.
    const double x = 2.0 - std::cos(2.0 * std::acos(-1.0) / kRate / (1.362 * setting.release));
    const double perPeriod = decibels(std::pow(std::sqrt(x - std::sqrt(x * x - 1.0)), kPeriod));
    EXPECT_NEAR(decibels(records[30].value / records[29].value), perPeriod, 0.01);
    // Five periods, the last of which began with the peak.
    EXPECT_NEAR(records[24].peak, records[19].peak, 1e-3);
    EXPECT_LT(records[26].peak, 0.45);
}

TEST(CModMeter, SinesNoiseAndStepsReadAsTheirFormulas)
{
    constexpr int kPeriod = 442;
    constexpr double kTolerance = 0.01; // decibels
    const auto decibels = [](double x) { return 20.0 * std::log10(x); };
    const auto records = [](const std::string& xml, const CGraphRig::FInput& input, int periods) {
        CGraphRig rig(xml);
        CVizProbe probe(rig.viz());
        (void)probe.listen(kSource);
        rig.input = [&](int line, int n) { return n <= 8192 ? 1.0 : input(line, n - 8193); };
        warmUp(rig, probe);
        for (; periods > 40; periods -= 40) {
            for (int i = 0; i < 40; ++i)
                rig.feedOnly(kPeriod);
            (void)probe.pull();
        }
        (void)rig.run(periods * kPeriod, 512);
        return probe.pull<CAudioVizDataMeter>(kSource);
    };
    CSetting setting;
    setting.gain = setting.peakGain = 1.0;
    setting.rms = 0.1;
    const auto stepRest = [&](int count) { // of a step, behind so many samples of the mean
        const double x = 2.0 - std::cos(2.0 * std::acos(-1.0) / kRate / (1.362 * setting.rms));
        return std::pow(x - std::sqrt(x * x - 1.0), count);
    };
    const auto sine = [](int, int n) { return 0.5 * std::sin(2.0 * std::acos(-1.0) * (n % 44) / 44.0); };

    setting.rms = 0.5; // or the mean would follow the wave
    const CAudioVizDataMeter sineRecord = records(meterXml(setting, "fps='100'"), sine, 200).back();
    EXPECT_NEAR(decibels(sineRecord.value), decibels(0.5 * std::sqrt(0.5)), kTolerance);
    EXPECT_NEAR(decibels(sineRecord.peak), decibels(0.5), kTolerance);

    setting.rms = 0.1;
    const auto risen = records(
        meterXml(setting, "fps='100'"), [](int, int) { return 0.25; }, 20);
    const auto fallen = records(
        meterXml(setting, "fps='100' is-compression='true'"), [](int, int) { return 0.25; }, 20);
    for (int i = 0; i < 20; ++i) {
        const double rest = stepRest((i + 1) * kPeriod);
        const auto place = static_cast<std::size_t>(i);
        EXPECT_NEAR(decibels(risen[place].value), decibels(0.25 * std::sqrt(1.0 - rest)), kTolerance) << i;
        EXPECT_NEAR(decibels(fallen[place].value), 0.5 * decibels(0.0625 + 0.9375 * rest), kTolerance) << i;
        EXPECT_NEAR(decibels(fallen[place].peak), decibels(0.25), kTolerance) << i;
    }
    EXPECT_NEAR(decibels(records(ratioXml(setting, "fps='100'"), sine, 200).back().value), decibels(2.0), kTolerance);

    // What stays is no gain any more; a change is, until it stays too.
    setting.useBias = 1.0;
    setting.biasTime = 0.1;
    setting.rms = 0.001;
    const auto biased = records(
        meterXml(setting, "fps='100' is-compression='true'"), [](int, int n) { return n < 390 * kPeriod ? 0.5 : 0.25; },
        400);
    EXPECT_NEAR(decibels(biased[biased.size() - 11].value), 0.0, kTolerance);
    EXPECT_NEAR(decibels(biased[biased.size() - 10].peak), decibels(0.5), kTolerance);

    setting = {};
    setting.gain = 1.0;
    setting.release = 0.0;
    setting.rms = 40.0;
    std::minstd_rand random(1);
    const auto noise = [&](int, int) { return std::uniform_real_distribution<double>(-1.0, 1.0)(random); };
    EXPECT_NEAR(decibels(records(meterXml(setting, "fps='100'"), noise, 12000).back().value),
                decibels(std::sqrt(1.0 / 3.0)), kTolerance);
}

TEST(CModMeter, WithoutARateOfItsOwnItFollowsTheEditors)
{
    CGraphRig rig(meterXml({}, ""));
    CVizProbe probe(rig.viz());
    (void)probe.listen(kSource);
    for (int i = 0; i < 20; ++i) {
        (void)rig.run(1);
        (void)probe.pull(i / 60.0);
    }
    CAudioEnv& env = rig.viz().env();
    env.vizUpdateRateAudio = env.vizUpdateRate; // what an instance does before each block
    (void)rig.run(4410);
    const auto records = probe.pull<CAudioVizDataMeter>(kSource);
    ASSERT_GE(records.size(), 3u);
    EXPECT_NEAR((records[2].time - records[1].time) * kRate, 736.0, 1e-6) << "735 made even";
}

TEST(CModMeter, PeriodsAreEvenAndNotTooShort)
{
    const struct {
        const char* fps;
        int period;
    } kRows[] = {{"2000", 32}, {"100", 442}, {"50", 882}, {"fast", 1470}, {"-1", 1470}};
    for (const auto& row : kRows) {
        CGraphRig rig(meterXml({}, std::string("fps='") + row.fps + "'"));
        CVizProbe probe(rig.viz());
        (void)probe.listen(kSource);
        warmUp(rig, probe);
        (void)rig.run(row.period * 3 - 1, 100);
        EXPECT_EQ(probe.pull<CAudioVizDataMeter>(kSource).size(), 2u) << row.fps;
        (void)rig.run(1);
        EXPECT_EQ(probe.pull<CAudioVizDataMeter>(kSource).size(), 1u) << row.fps;
    }
}

TEST(CModMeter, SilenceReadsAsNoDifferenceAndBadNumbersPass)
{
    CSetting setting;
    setting.gain = 0.7;
    CGraphRig rig(ratioXml(setting, "fps='100'"));
    CVizProbe probe(rig.viz());
    (void)probe.listen(kSource);
    rig.input = [](int, int) { return 0.0; };
    warmUp(rig, probe);
    (void)rig.run(20000);
    EXPECT_NEAR(probe.pull<CAudioVizDataMeter>(kSource).back().value, 0.7, 1e-12);
    rig.input = [](int, int n) { return n == 30000 ? std::numeric_limits<double>::quiet_NaN() : 0.25; };
    (void)rig.run(20000);
    for (const CAudioVizDataMeter& record : probe.pull<CAudioVizDataMeter>(kSource))
        EXPECT_TRUE(std::isfinite(record.value) && std::isfinite(record.peak));
}

TEST(CModMeter, StandsInTheGraphOnlyWhileSomebodyLooksAndAllocatesNothing)
{
    const std::string state = "<audio:process-bypass-state name='process-bypass-state-viz' id='7' "
                              "param='modMeter-enable' value='1.0' and-value='1.0' is-inverted='true'/>";
    CGraphRig rig(
        probeXml("level", "^one") + paramXml("one", "1") + state +
            meterXml({}, "fps='100' is-outoforder='true' bypass-state-id='7'") + linkXml("*", "modMeter"),
        "is-auto-links='true'",
        paramXml("param-enable-viz", "0", "is-global='true' is-single-group='true' is-single-element='true'"));
    (void)rig.run(100);
    EXPECT_EQ(rig.order(), "level");
    CVizProbe probe(rig.viz());
    const std::uint32_t id = probe.listen(kSource);
    (void)rig.run(100);
    EXPECT_EQ(rig.order(), "level modMeter");
    (void)probe.pull();
    (void)rig.run(5000);
    rig.allocations = 0;
    for (int i = 0; i < 400; ++i)
        rig.feedOnly(64);
    EXPECT_EQ(rig.allocations, 0u);
    EXPECT_FALSE(probe.pull()[kSource].empty());
    rig.viz().unlisten(id);
    (void)rig.run(100);
    EXPECT_EQ(rig.order(), "level");
}

} // namespace
} // namespace qrb
