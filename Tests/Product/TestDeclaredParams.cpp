// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"
#include "Core/CTextSplit.h"
#include "Tests/Product/CProductRig.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

using namespace qrb;

namespace {

/// What users, hosts and sessions rely on, written down a second time. Flags: S storable, G global, P persistent,
/// g single group, e single element.
struct CRow {
    const char* path;      ///< below plugin.modMain
    const char* converter; ///< below audio.cvt
    const char* min;       ///< as users read values
    const char* max;
    const char* defaults; ///< of the elements, separated by commas
    const char* flags;
    const char* visualName;
};

constexpr CRow kRows[] = {
    {"io-params.in-channel-names", "text", "", "", "L,R,IN3,IN4,IN5,IN6,IN7,IN8,IN9,IN10,IN11,IN12,IN13,IN14,IN15,IN16",
     "Sg", "In channel names"},
    {"io-params.group-names", "text", "", "", "1,2,3,4,5,6,7,8", "Sg", "Group names"},
    {"io-params.show-all-channels", "enum-enable", "0", "1", "0", "Sge", "Show all channel meters"},
    {"io-params.in-routing", "enum", "0", "16", "1,2,0,0,0,0,0,0", "Sg", "In routing"},
    {"io-params.grouping", "enum", "0", "7", "0,0,1,1,2,2,3,3", "Sg", "Group assign"},
    {"io-params.channel-group-solo", "enum-enable", "0", "1", "0", "G", "Channel group solo"},
    {"io-params.sidechain", "enum", "0", "15", "0,1,2,3,4,5,6,7", "Sg", "Side-chain source"},
    {"io-params.sidechain-mute", "enum-enable", "0", "1", "0,0,0,0,0,0,0,0", "Sg", "Channel mute"},
    {"io-params.out-routing", "enum", "0", "16", "1,2,0,0,0,0,0,0", "Sg", "Out routing"},
    {"io-params.ms-pairs", "enum", "0", "4", "0,0,0,0,0,0,0,0", "Sg", "M/S pairs"},
    {"mid-side-bypass", "enum-enable", "0", "1", "0", "Gge", ""},
    {"oversampling", "enum", "0", "4", "1", "Sge", "Oversampling"},
    {"oversampling-bypass", "enum-enable", "0", "1", "0", "Gge", ""},
    {"group-solo-bypass", "enum-enable", "0", "1", "0", "Gge", ""},
    {"bypass-enable", "enum-enable", "0", "1", "0", "Pge", ""},
    {"instance-name", "text", "", "", " ", "Pg", "Instance name"},
    {"ab-state", "enum", "0", "1", "0", "Gge", ""},
    {"preset-name", "text", "0", "1", "Default", "SGge", "Preset name"},
    {"host-oversampling-mode", "enum", "0", "3", "0", "Gge", ""},
    {"host-offline", "enum-enable", "0", "1", "0", "Gge", ""},
    {"host-latency-change", "enum-enable", "0", "1", "0", "Gge", ""},
    {"meter-rmstime", "time", "1", "1000", "2", "Gge", "Meter integration time"},
    {"meter-releasetime", "time", "0", "5000", "750", "Gge", "Meter release time"},
    {"meter-peaktime", "time", "100", "10000", "1000", "Gge", "Meter peak time"},
    {"groupsel", "enum", "0", "7", "0", "SPge", ""},
    {"main-window-size", "real", "10", "8192", "746,662", "Gg", ""},
    {"denorm-enable", "enum", "0", "1", "1", "Gge", "Anti-denormal noise enable"},
    {"lp-oversampling-enable", "enum", "0", "1", "1", "Gge", "Linear-phase oversampling enable"},
    {"modThumpcraft.eq-params.mode", "enum", "0", "15", "0", "SG", "Filter type"},
    {"modThumpcraft.eq-params.prevmode", "enum", "0", "15", "0", "SG", ""},
    {"modThumpcraft.eq-params.freq", "freq", "20", "20000", "62.5,250,1000,4000,16000", "SG", "Filter frequency"},
    {"modThumpcraft.eq-params.bw", "bw", "0.01", "7.0", "2", "SG", "Filter bandwidth"},
    {"modThumpcraft.eq-params.gain", "gain", "-12", "12", "0", "SG", "Filter gain"},
    {"modThumpcraft.eq-params.band-count", "enum", "0", "32", "5", "G", ""},
    {"modThumpcraft.eq-params.band-sel", "enum", "0", "32", "0", "G", ""},
    {"modThumpcraft.eq-params.band-hover", "enum", "0", "32", "0", "G", ""},
    {"modThumpcraft.eq-position", "enum", "0", "2", "1", "S", "EQ position"},
    {"modThumpcraft.drymix", "percent", "0.0", "100.0", "0.0", "Se", "Dry mix"},
    {"modThumpcraft.outgain", "gain", "-12", "12", "0", "S", "Output gain"},
    {"modThumpcraft.clip-enable", "enum-enable", "0", "1", "0", "Sg", "Output clipper enable"},
    {"modThumpcraft.xo-sel", "enum", "0", "3", "0", "Gg", ""},
    {"modThumpcraft.xo-freq", "freq", "20.0", "21000.0", "400,4000", "Sg", "Crossover frequency"},
    {"modThumpcraft.xo-count", "enum", "0", "2", "2", "Sge", "Band count"},
    {"modThumpcraft.xo-type", "enum", "0", "5", "1", "Sge", "Crossover steepness"},
    {"modThumpcraft.xo-freq-sorted", "freq", "20.0", "21000.0", "400,4000", "Gg", ""},
    {"modThumpcraft.xo-band-count", "enum", "1", "3", "3", "Gge", ""},
    {"modThumpcraft.gate-threshold", "real", "-60", "0", "-24", "S", "Gate threshold"},
    {"modThumpcraft.gate-ratio", "ratio", "1:1", "100:1", "2:1", "S", "Gate ratio"},
    {"modThumpcraft.gate-enable", "enum-enable", "0", "1", "0", "S", "Gate enable"},
    {"modThumpcraft.comp-threshold", "real", "-72", "0", "-18", "S", "Compressor threshold"},
    {"modThumpcraft.comp-ratio", "ratio", "1:5", "20:1", "2:1", "S", "Compressor ratio"},
    {"modThumpcraft.comp-attack", "time", "0.01", "250", "20", "S", "Compressor attack"},
    {"modThumpcraft.comp-release", "time", "1", "1500", "150", "S", "Compressor release"},
    {"modThumpcraft.comp-keysrc", "enum", "0", "4", "1", "S", "Compressor key signal source"},
    {"modThumpcraft.comp-keysrc-mon", "enum-enable", "0", "1", "0", "SGg", "Key signal monitor"},
    {"modThumpcraft.comp-enable", "enum-enable", "0", "1", "0", "S", "Compressor enable"},
    {"modThumpcraft.comp-ratio0", "ratio", "1:1", "20:1", "2:1", "G", ""},
    {"modThumpcraft.comp-inverse0", "enum-enable", "0", "1", "0", "G", ""},
    {"modThumpcraft.comp-inverse1", "enum-enable", "0", "1", "1", "G", ""},
    {"modThumpcraft.sat-mode", "enum", "0", "11", "0", "S", "Saturator mode"},
    {"modThumpcraft.sat-drive", "gain", "-12", "54", "0", "S", "Saturator drive"},
    {"modThumpcraft.sat-enable", "enum-enable", "0", "1", "0", "S", "Saturator enable"},
    {"modThumpcraft.bandsolo", "enum-enable", "0", "1", "0", "Sg", "Band solo"},
    {"modThumpcraft.bandgain", "gain", "-18", "18", "0", "S", "Band output gain"},
    {"modThumpcraft.compgain", "gain", "-90", "90", "0", "G", ""},
    {"modThumpcraft.spectrum-params.mode-name", "text", "", "", "Default", "S", ""},
    {"modThumpcraft.spectrum-params.slope", "real", "-9", "9", "4.5", "S", "Spectrum slope"},
    {"modThumpcraft.spectrum-params.smoothing", "enum", "0", "13", "0", "S", "Spectrum smoothing"},
    {"modThumpcraft.spectrum-params.offset", "enum", "0", "4", "0", "S", "Spectrum offset"},
    {"modThumpcraft.spectrum-params.block-size", "enum", "0", "10", "5", "S", "Spectrum block size"},
    {"modThumpcraft.spectrum-params.overlap", "percent", "50", "93.75", "50", "S", "Spectrum overlap"},
    {"modThumpcraft.spectrum-params.avgtime", "time", "50", "10000", "500", "S", "Spectrum avg time"},
    {"modThumpcraft.spectrum-params.type", "enum", "0", "4", "0", "S", "Spectrum type"},
    {"modThumpcraft.spectrum-params.sectype", "enum", "0", "4", "3", "S", "Secondary spectrum type"},
    {"modThumpcraft.spectrum-params.secenable", "enum-enable", "0", "1", "0", "S", "Secondary spectrum enable"},
    {"modThumpcraft.spectrum-params.fill", "enum-enable", "0", "1", "0", "S", "Spectrum fill enable"},
    {"modThumpcraft.spectrum-params.disable", "enum-enable", "0", "1", "0", "Sg", "Spectrum disable"},
    {"modThumpcraft.spectrum-params.freq-low", "freq", "1", "1000", "20", "S", "Spectrum freq low"},
    {"modThumpcraft.spectrum-params.freq-high", "freq", "2000", "96000", "20000", "S", "Spectrum freq high"},
    {"modThumpcraft.spectrum-params.range-low", "gain", "-180", "-40", "-72", "S", "Spectrum range low"},
    {"modThumpcraft.spectrum-params.range-high", "gain", "-35", "20", "-18", "S", "Spectrum range high"},
    {"modThumpcraft.spectrum-params.reset", "real", "0", "1", "0", "Gg", ""},
    {"modThumpcraft.gate-params.mode-name", "text", "", "", "Default", "S", ""},
    {"modThumpcraft.gate-params.knee", "real", "0", "40", "12", "S", "Gate knee"},
    {"modThumpcraft.gate-params.threshold-shift", "real", "0", "30", "6", "S", "Gate opening threshold"},
    {"modThumpcraft.gate-params.smoothtime", "time", "1", "200", "60", "S", "Gate smooth time"},
    {"modThumpcraft.gate-params.attack", "time", "1", "500", "100", "S", "Gate attack time"},
    {"modThumpcraft.gate-params.release", "time", "0.1", "10", "1", "S", "Gate release time"},
    {"modThumpcraft.gate-params.lookahead", "time", "0", "5", "1.5", "S", "Gate look-ahead time"},
    {"modThumpcraft.comp-params.mode-name", "text", "", "", "Default", "S", ""},
    {"modThumpcraft.comp-params.knee", "real", "0", "40", "3", "G", "Compressor knee"},
    {"modThumpcraft.comp-params.punch", "percent", "0.0", "100.0", "50", "G", "Compressor punch"},
    {"modThumpcraft.comp-params.attack-mode", "enum", "0", "2", "2", "G", "Compressor attack mode"},
    {"modThumpcraft.comp-params.release-mode", "enum", "0", "2", "2", "G", "Compressor release mode"},
    {"modThumpcraft.comp-params.feedback", "enum-enable", "0", "1", "0", "G", "Compressor feedback"},
    {"modThumpcraft.xotube-params.mode-name", "text", "", "", "Default", "S", ""},
    {"modThumpcraft.xotube-params.limit1", "gain", "-20", "20", "0", "S", "Loadline 1 limit"},
    {"modThumpcraft.xotube-params.bias1", "percent", "-200", "200.0", "0", "S", "Loadline 1 bias"},
    {"modThumpcraft.xotube-params.knee1", "gain", "0", "60", "12", "S", "Loadline 1 sat knee"},
    {"modThumpcraft.xotube-params.limit2", "gain", "-20", "20", "0", "S", "Loadline 2 limit"},
    {"modThumpcraft.xotube-params.bias2", "percent", "-200", "200.0", "0", "S", "Loadline 2 bias"},
    {"modThumpcraft.xotube-params.knee2", "gain", "0", "60", "3", "S", "Loadline 2 sat knee"},
    {"modThumpcraft.xotube-params.gain2", "gain", "-60", "60", "0", "S", "Loadline 2 gain"},
    {"modThumpcraft.xotube-params.hpfreq", "freq", "1.0", "22000.0", "5", "S", "High-pass filter freq"},
    {"modThumpcraft.xotube-params.hpfeedback", "enum-enable", "0", "1", "0", "S", "High-pass filter feedback enable"},
    {"modThumpcraft.xotube-params.lpenable", "enum-enable", "0", "1", "0", "S", "Low-pass filter enable"},
    {"modThumpcraft.xotube-params.lpfreq", "freq", "1.0", "22000.0", "21000", "S", "Low-pass filter freq"},
    {"modThumpcraft.xotube-params.xovergain", "gain", "-60", "60", "10", "S", "Loadline xover gain"},
    {"modThumpcraft.xotube-params.xoverbias", "percent", "-100", "100.0", "0", "S", "Loadline xover bias"},
    {"modThumpcraft.xotube-params.xoverfltfreq", "freq", "20.0", "21000.0", "3000", "S", "Loadline xover flt freq"},
    {"modThumpcraft.xotube-params.xoverfltbw", "bw", "0.01", "7.0", "2", "S", "Loadline xover flt bandwidth"},
    {"modThumpcraft.xotube-params.ingain", "gain", "-60", "60", "0", "S", "XO Tube In gain"},
    {"modThumpcraft.xotube-params.inbias", "percent", "-100", "100.0", "0", "S", "XO Tube In bias"},
    {"modThumpcraft.xotube-params.xovermon", "enum-enable", "0", "1", "0", "G", "XOver signal monitoring enable"},
    {"modThumpcraft.xotube-params.outgain1", "gain", "-60", "60", "0", "S", "Loadline 1 out gain"},
    {"modThumpcraft.xotube-params.ogenable", "enum-enable", "0", "1", "0", "S", "Loadline 1 out gain enable"},
    {"modThumpcraft.xotube-params.outgaincorr1", "real", "-0.75", "0.75", "0", "S", "Output gain correction 1"},
    {"modThumpcraft.xotube-params.outgaincorr2", "real", "-0.75", "0.75", "0", "S", "Output gain correction 2"},
    {"modThumpcraft.xotube-params.outgaincorr3", "real", "-0.75", "0.75", "0", "S", "Output gain correction 3"},
    {"modThumpcraft.xotube-params.outgain", "gain", "-60", "60", "0", "S", "Overall output gain"},
};

/// Names of states; short ones behind a bar.
constexpr std::pair<const char*, const char*> kStates[] = {
    {"io-params.ms-pairs", "---;MS1;MS2;MS3;MS4"},
    {"oversampling", "Auto;1X;2X;4X;8X"},
    {"modThumpcraft.eq-params.mode",
     "Off;Peaking;Lo-shelf|Lo-shlf;Hi-shelf|Hi-shlf;Lo-pass 6|LP6;Hi-pass 6|HP6;Lo-pass 12|LP12;Hi-pass "
     "12|HP12;Lo-pass 24|LP24;Hi-pass 24|HP24;Bandpass|BPass"},
    {"modThumpcraft.eq-position", "Off;Pre;Post"},
    {"modThumpcraft.xo-count", "1;2;3"},
    {"modThumpcraft.xo-type", "-6;-12;-24"},
    {"modThumpcraft.comp-keysrc", "Main In;Extern;Band In|BandIn"},
    {"modThumpcraft.spectrum-params.smoothing",
     "Off;1/6 oct;1/5 oct;1/4 oct;1/3 oct;1/2 oct;2/3 oct;3/4 oct;1 oct;1.5 oct;2 oct;2.5 oct;1/9 oct;1/12 oct"},
    {"modThumpcraft.spectrum-params.offset", "Off;Normalize|Norm;Center"},
    {"modThumpcraft.spectrum-params.block-size", "64;128;256;512;1024;2048;4096;8192;16384;32768;65536"},
    {"modThumpcraft.spectrum-params.type", "RT Avg;Max;Avg;RT Max;RT Sigma"},
    {"modThumpcraft.spectrum-params.sectype", "RT Avg;Max;Avg;RT Max;RT Sigma"},
    {"modThumpcraft.comp-params.attack-mode", "Fast;Normal;Slow"},
    {"modThumpcraft.comp-params.release-mode", "Fast;Normal;Slow"},
};

/// The stored number of what a user reads.
double storedOf(const std::string& converter, const std::string& text)
{
    char* rest = nullptr;
    const double number = std::strtod(text.c_str(), &rest);
    if (converter == "gain")
        return std::pow(10.0, number / 20.0);
    if (converter == "time")
        return number / 1000.0;
    if (converter == "percent")
        return number / 100.0;
    if (converter == "ratio") {
        const double slope = std::strtod(rest + 1, nullptr) / number;
        return slope == 1.0 ? 0.999 : slope; // just beside it: the curve would have no knee
    }
    return number;
}

const CAudioParamInfo* infoOf(CProductRig& rig, const char* path)
{
    const CAudioParam* const param = rig.instance().paramCollector().findParam(CString("plugin.modMain.") + path);
    return param != nullptr && param->isBound() ? param->info() : nullptr;
}

TEST(TestDeclaredParams, AreWhatUsersAndSessionsRelyOn)
{
    CProductRig rig({});
    rig.start();
    for (const CRow& row : kRows) {
        SCOPED_TRACE(row.path);
        const CAudioParamInfo* const info = infoOf(rig, row.path);
        if (info == nullptr) {
            ADD_FAILURE() << "is not there";
            continue;
        }
        const std::string converter = row.converter;
        EXPECT_EQ(info->visualName, row.visualName);
        EXPECT_TRUE(info->components[0].converterPath.toUtf8().ends_with("." + converter))
            << info->components[0].converterPath.toUtf8();
        const auto has = [&](char flag) { return std::strchr(row.flags, flag) != nullptr; };
        EXPECT_EQ(info->isStorable, has('S') && !has('P'));
        EXPECT_TRUE(info->isGlobal);
        EXPECT_EQ(info->isPersistent, has('P'));
        EXPECT_EQ(info->format.isSingleGroup, has('g'));
        EXPECT_EQ(info->format.isSingleElement, has('e'));
        EXPECT_EQ(info->format.elementSize, 1);
        const bool isText = info->format.type == EAudioParamType::text;
        const CArray<CString> defaults = split(CString(row.defaults), ',', EEmpty::keep);
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(defaults.size()); ++i) {
            const std::string text = defaults[static_cast<std::size_t>(i)].toUtf8();
            if (isText)
                EXPECT_EQ(info->defaults.text(0, i).toUtf8(), text) << i;
            else
                EXPECT_NEAR(info->defaultValue(i, 0), storedOf(converter, text), 1e-12) << i;
        }
        if (isText)
            continue;
        EXPECT_NEAR(info->components[0].min, storedOf(converter, row.min), 1e-12);
        EXPECT_NEAR(info->components[0].max, storedOf(converter, row.max), 1e-9);
    }
}

TEST(TestDeclaredParams, NameTheirStates)
{
    CProductRig rig({});
    rig.start();
    for (const auto& [path, names] : kStates) {
        SCOPED_TRACE(path);
        const CAudioParamInfo* const info = infoOf(rig, path);
        ASSERT_NE(info, nullptr);
        const CArray<CString> wanted = split(CString(names), ';', EEmpty::keep);
        ASSERT_EQ(info->longStateNames.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const CArray<CString> both = split(wanted[i], '|', EEmpty::keep);
            EXPECT_EQ(info->longStateNames[i], both[0]);
            const CString brief = both.size() > 1 ? both[1] : both[0].substr(0, 7);
            EXPECT_EQ(info->shortStateNames[i].toUtf8(), brief.toUtf8());
        }
    }
}

} // namespace
