// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/ParamFilters/CAudioParamFilter.h"

#include "Audio/CAudioParamUpdateList.h"
#include "Audio/ParamFilters/CAudioParamFilterRatio.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace qrb {
namespace {

constexpr const char* kRatio = "<audio:param-filter-ratio name='f' src='list' dst='low,up,down'/>";

/// Filters of a document between parameters of several groups and elements, all of them within -100 to 30000.
class TestCAudioParamFilter : public testing::Test {
protected:
    /// Adds the filters of a document; gives the first error.
    std::string add(const std::string& filters)
    {
        CObject& tree = m_world.module.loadRoot("<root>" + filters + "</root>");
        for (const CObject* const child : tree.childs())
            if (const auto* filter = dynamic_cast<const CAudioParamFilterDef*>(child))
                if (const CErrorPtr failed = filter->addTo(m_world.collector, {}))
                    return failed->line(0).toUtf8();
        return {};
    }

    /// A parameter with a list of numbers in each group, by default bound to the definition "list".
    CAudioParam& param(const char* name, const char* definition = "list")
    {
        CAudioParam& found = m_world.collector.getParam(name);
        found.bindInfo(m_world.info(definition));
        return found;
    }

    void setGroup(const char* name, std::int32_t group, std::vector<double> values)
    {
        CAudioParam& target = param(name);
        target.update(AudioParamRecord(target.info()->format, group, 0, std::move(values), true).update);
    }

    [[nodiscard]] std::vector<double> group(const char* name, std::int32_t number = 0)
    {
        const CAudioParamGuard guard(m_world.collector);
        return numbers(m_world.collector.getParam(name).editStorage(guard).cells(number));
    }

    AudioParamWorld m_world;
};

using Numbers = std::vector<double>;

TEST_F(TestCAudioParamFilter, ADeclarationWithTooFewOrTooManyParametersIsRefused)
{
    EXPECT_NE(add("<audio:param-filter-ratio name='f' src='a' dst='b,c'/>")
                  .find("Not enough destination parameters 2 defined in the param filter (required 3)."),
              std::string::npos);
    EXPECT_NE(add("<audio:param-filter-freqsort name='f' src='a' dst='b'/>")
                  .find("Not enough source parameters 1 defined in the param filter (required 2)."),
              std::string::npos);
    EXPECT_NE(add("<audio:param-filter-ratio name='f' src='1,2,3,4,5,6,7,8,9,10' dst='b,c,d'/>")
                  .find("Too many source parameters 10 defined in the param filter."),
              std::string::npos);
    EXPECT_NE(add("<audio:param-filter-ratio name='f' src='a' dst='1,2,3,4,5,6,7,8,9,10'/>")
                  .find("Too many destination parameters 10 defined in the param filter."),
              std::string::npos);
    const auto load = [this](const char* text) {
        CObject* object = nullptr;
        const CErrorPtr failed = m_world.root.createChild(object, "audio:param-filter-ratio", "f", EFromTemplate::no);
        EXPECT_FALSE(failed);
        EXPECT_FALSE(object->setAttrText("src", text, ESetter::now));
        const CErrorPtr refused = object->init();
        return refused ? refused->line(0).toUtf8() : std::string();
    };
    EXPECT_NE(load(" , ,").find("No source parameters defined."), std::string::npos);
    EXPECT_NE(load(" a ,").find("No destination parameters defined."), std::string::npos);
}

TEST_F(TestCAudioParamFilter, RunsForAllThatIsThereWhenItJoinsAndForEachElementThatChanges)
{
    for (const char* const name : {"list", "low", "up", "down", "more"})
        param(name);
    setGroup("list", 0, {5.0, 1.0, 0.25});
    ASSERT_EQ(add("<audio:param-filter-ratio name='f' src=' list ,' dst='low,up,down,more'/>"), "");
    EXPECT_EQ(group("low"), (Numbers{0.2, 1.0, 0.25}));
    EXPECT_EQ(group("up"), (Numbers{1.0, 0.0, 0.0}));
    EXPECT_EQ(group("down"), (Numbers{0.0, 1.0, 1.0}));
    EXPECT_EQ(group("more"), (Numbers{1.0, 2.0, 3.0})); // keeps what it has
    EXPECT_EQ(group("low", 1), (Numbers{0.25}));        // of the 4 in the second group

    // Behind the end of the second group: the elements in between stand by their default there.
    param("list").setElement(1, 2, 10.0);
    EXPECT_EQ(group("low", 1), (Numbers{0.25, 0.5, 0.1}));
    EXPECT_EQ(group("low"), (Numbers{0.2, 1.0, 0.25}));
    setGroup("list", 0, {2.0});
    EXPECT_EQ(group("low"), (Numbers{0.5}));
    setGroup("list", kAudioParamTemplateGroup, {4.0, 8.0});
    EXPECT_EQ(group("low"), (Numbers{0.25, 0.125}));
    EXPECT_EQ(param("low").value(7, 1), 0.125); // a group that nobody has written yet
}

TEST_F(TestCAudioParamFilter, WaitsUntilAllItsParametersHaveNumbers)
{
    ASSERT_EQ(add(kRatio), "");
    for (const char* const name : {"low", "up", "list"})
        param(name);
    EXPECT_EQ(group("low"), (Numbers{1.0, 2.0, 3.0}));
    param("down", "text");
    param("list").setElement(0, 0, 5.0);
    EXPECT_EQ(group("low"), (Numbers{1.0, 2.0, 3.0}));
    EXPECT_EQ(m_world.collector.getParam("down").text(0, 1), CString("R"));
}

TEST_F(TestCAudioParamFilter, FollowsResetsAndLoadsDownTheSameRoad)
{
    for (const char* const name : {"list", "low", "up", "down"})
        param(name);
    ASSERT_EQ(add(kRatio), "");
    m_world.collector.flushQueue();
    const std::vector<std::uint8_t> saved = bytesOf(param("list"), -1);
    setGroup("list", 0, {8.0});
    m_world.collector.flushQueue();
    EXPECT_EQ(param("low").audioStorage().value(0, 0), 0.125);

    CAudioParamUpdateList list;
    ASSERT_FALSE(param("list").load(saved, {}, nullptr, {.deferredList = &list}));
    EXPECT_EQ(group("low"), (Numbers{1.0, 0.5, 1.0 / 3.0}));
    m_world.collector.flushQueue();
    EXPECT_EQ(param("low").audioStorage().value(0, 0), 0.125); // the list is still held back
    m_world.collector.splice(list);
    m_world.collector.flushQueue();
    EXPECT_EQ(param("low").audioStorage().value(0, 0), 1.0);

    setGroup("list", 0, {8.0});
    m_world.collector.flushQueue();
    param("list").resetPlace({}, nullptr, {.deferredList = &list});
    EXPECT_EQ(group("low"), (Numbers{1.0, 0.5, 1.0 / 3.0}));
    m_world.collector.flushQueue();
    EXPECT_EQ(param("low").audioStorage().value(0, 0), 0.125);
    m_world.collector.splice(list);
    m_world.collector.flushQueue();
    EXPECT_EQ(param("low").audioStorage().value(0, 0), 1.0);
}

TEST_F(TestCAudioParamFilter, AFilterThatGoesLeavesItsSources)
{
    for (const char* const name : {"list", "low", "up", "down"})
        param(name);
    {
        const CString sources[] = {"list", "list"};
        const CString destinations[] = {"low", "up", "down"};
        CAudioParamFilterRatio filter;
        ASSERT_FALSE(filter.init({}, m_world.collector, sources, destinations));
        setGroup("list", 0, {5.0});
    }
    setGroup("list", 0, {2.0});
    EXPECT_EQ(group("low"), (Numbers{0.2}));
}

TEST_F(TestCAudioParamFilter, ChainsRunThroughAndCirclesEnd)
{
    for (const char* const name : {"list", "low", "up", "down", "low2", "up2", "down2"})
        param(name);
    ASSERT_EQ(add(std::string(kRatio) + "<audio:param-filter-ratio name='g' src='up' dst='low2,up2,down2'/>"
                                        "<audio:param-filter-ratio name='h' src='low2' dst='list,up2,down2'/>"),
              "");
    setGroup("list", 0, {5.0, 0.5});
    EXPECT_EQ(group("up"), (Numbers{1.0, 0.0}));
    EXPECT_EQ(group("low2"), (Numbers{1.0, 0.0}));
    EXPECT_EQ(group("list"), (Numbers{1.0, 0.0}));
}

TEST_F(TestCAudioParamFilter, AutomationIsFollowedOnTheAudioThreadWithoutAnAllocation)
{
    for (const char* const name : {"list", "low", "up", "down"})
        param(name);
    ASSERT_EQ(add(kRatio), "");
    m_world.collector.flushQueue();
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    ASSERT_TRUE(param("list").trySetElement(0, 0, 5.0));
    m_world.collector.flushQueue();
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
    EXPECT_EQ(param("low").audioStorage().value(0, 0), 0.2);
    EXPECT_EQ(param("low").audioStorage().value(0, 1), 0.5);
}

TEST_F(TestCAudioParamFilter, SplitsAreSortedAndCounted)
{
    for (const char* const name : {"freq", "count", "sorted", "bands"})
        param(name);
    ASSERT_EQ(add("<audio:param-filter-freqsort name='f' src='freq,count' dst='sorted,bands'/>"), "");
    setGroup("freq", 0, {1000.0, 500.0, 500.0});
    setGroup("count", 0, {3.0});
    EXPECT_EQ(group("sorted"), (Numbers{500.0, 500.0, 1000.0}));
    EXPECT_EQ(group("bands"), (Numbers{4.0}));
    setGroup("count", 0, {1.6}); // rounded
    EXPECT_EQ(group("sorted"), (Numbers{500.0, 1000.0}));
    for (const double ignored : {-1.0, 1e9}) {
        setGroup("count", 0, {ignored});
        EXPECT_EQ(group("bands"), (Numbers{3.0}));
    }
    setGroup("count", 0, {0.0});
    EXPECT_EQ(group("sorted"), Numbers());
    EXPECT_EQ(group("bands"), (Numbers{1.0}));
    setGroup("freq", 1, {20.0, 10.0});
    setGroup("count", 1, {2.0});
    EXPECT_EQ(group("sorted", 1), (Numbers{10.0, 20.0}));
    setGroup("count", kAudioParamTemplateGroup, {2.0});
    EXPECT_EQ(group("sorted"), (Numbers{500.0, 1000.0}));
    EXPECT_EQ(param("sorted").value(5, 1), 1000.0); // a group that nobody has written yet
    EXPECT_EQ(param("bands").value(5), 3.0);
}

TEST_F(TestCAudioParamFilter, BypassesTellWhetherAnybodyNeedsTheNode)
{
    for (const char* const name : {"pairs", "ms", "mode", "host", "os", "solo", "so"})
        param(name);
    ASSERT_EQ(add("<audio:param-filter-bypass-ms name='a' src='pairs' dst='ms'/>"
                  "<audio:param-filter-bypass-os name='b' src='mode,host' dst='os'/>"
                  "<audio:param-filter-bypass-group-solo name='c' src='solo' dst='so'/>"),
              "");
    const std::pair<Numbers, double> pairings[] = {{{1, 1, 2, 0}, 0}, {{1, 2, 3, 0}, 1}, {{0, 0, 0, 0}, 1},
                                                   {{}, 1},           {{2, 0, 0, 2}, 0}, {{-1, -1}, 1}};
    for (const auto& [pairs, bypass] : pairings) {
        setGroup("pairs", 0, pairs);
        EXPECT_EQ(group("ms"), (Numbers{bypass})) << pairs.size();
    }

    const std::array<double, 3> modes[] = {{1, 2, 1}, {2, 0, 0}, {5, 0, 0}, {0, 0, 1}, {0, 3, 0}};
    for (const auto& [mode, host, bypass] : modes) {
        param("host").setElement(0, 0, host);
        param("mode").setElement(0, 0, mode);
        EXPECT_EQ(group("os"), (Numbers{bypass})) << mode << " " << host;
    }
    setGroup("mode", 1, {1.0});
    EXPECT_EQ(group("os"), (Numbers{0.0}));

    setGroup("mode", kAudioParamTemplateGroup, {1.0});
    EXPECT_EQ(param("os").value(5), 1.0);
    setGroup("pairs", kAudioParamTemplateGroup, {3.0, 3.0});
    EXPECT_EQ(param("ms").value(5), 0.0);

    for (std::int32_t i = 0; i < 2; ++i)
        setGroup("solo", i, {0.0});
    EXPECT_EQ(group("so"), (Numbers{1.0}));
    setGroup("solo", 3, {0.5});
    EXPECT_EQ(group("so"), (Numbers{0.0}));
    setGroup("solo", 3, {});
    EXPECT_EQ(group("so"), (Numbers{1.0}));
    setGroup("solo", kAudioParamTemplateGroup, {1.0});
    EXPECT_EQ(group("so"), (Numbers{0.0}));
    EXPECT_EQ(group("so", 1), (Numbers{4.0})); // one value for all groups
}

/// The make-up gain from the geometry of the arc, found by bisection instead of in closed form.
double slowMakeUp(double threshold, double ratio, double knee, double attack, double release)
{
    const bool isExpander = ratio > 1.0;
    // Neither without an arc nor falling.
    const double slope = std::clamp(isExpander ? 1.0 / ratio : ratio, 0.0, 0.9999) - 1.0;
    // The circle touches the level line at -knee / 2, with its centre below there, and the slope line from below.
    const double touch = -0.5 * knee;
    double low = 0.0;
    double high = 1e9;
    for (int i = 0; i < 200; ++i) {
        const double radius = 0.5 * (low + high);
        // Distance of the centre from the line y = slope x.
        const double distance = std::abs(slope * touch + radius) / std::hypot(slope, 1.0);
        (distance > radius ? low : high) = radius;
    }
    const double end = (touch - slope * low) / (1.0 + slope * slope); // foot of the centre on the line
    double power = 0.0;
    for (const double level : {0.05, 0.25, 0.75, 0.95}) {
        const double over = 20.0 * std::log10(level) - threshold;
        const double onArc = std::sqrt(std::max(0.0, low * low - (over - touch) * (over - touch))) - low;
        const double change = over <= touch ? 0.0 : over >= end ? slope * over : onArc;
        power += std::pow(10.0, change / 10.0) / 4.0;
    }
    double share = 1.0 - std::sqrt(std::min(1.0, attack / 0.05));
    if (attack > release)
        share *= release / attack;
    const double makeUp = share / std::sqrt(power) + 1.0 - share;
    return isExpander ? 1.0 / makeUp : makeUp;
}

TEST_F(TestCAudioParamFilter, TheMakeUpGainIsThatOfTheCurvesGeometry)
{
    for (const char* const name : {"threshold", "ratio", "knee", "attack", "release", "gain", "enable"})
        param(name);
    ASSERT_EQ(add("<audio:param-filter-acomp name='f' src='threshold,ratio,knee,attack,release' dst='gain'/>"), "");
    const auto gainOf = [this](std::array<double, 5> values) {
        std::size_t i = 0;
        for (const char* const name : {"threshold", "ratio", "knee", "attack", "release"})
            param(name).setElement(0, 1, values[i++]);
        return param("gain").value(0, 1);
    };
    for (const double threshold : {-60.0, -18.0, -6.0, 0.0})
        for (const double ratio : {0.05, 0.5, 0.8, 2.0, 5.0})
            for (const double knee : {0.5, 3.0, 40.0})
                EXPECT_NEAR(gainOf({threshold, ratio, knee, 0.005, 0.15}),
                            slowMakeUp(threshold, ratio, knee, 0.005, 0.15),
                            1e-5 * slowMakeUp(threshold, ratio, knee, 0.005, 0.15))
                    << threshold << " " << ratio << " " << knee;
    EXPECT_NEAR(gainOf({-30.0, 0.25, 6.0, 0.02, 0.01}), slowMakeUp(-30.0, 0.25, 6.0, 0.02, 0.01), 1e-6);
    EXPECT_EQ(gainOf({-30.0, 0.25, 6.0, 0.05, 0.15}), 1.0);
    EXPECT_EQ(gainOf({-30.0, 0.25, 6.0, 0.1, 0.05}), 1.0);

    ASSERT_EQ(add("<audio:param-filter-acomp name='g' src='threshold,ratio,knee,attack,release,enable' dst='gain'/>"),
              "");
    param("enable").setElement(0, 1, 0.0);
    EXPECT_EQ(param("gain").value(0, 1), 1.0);
}

TEST_F(TestCAudioParamFilter, NothingStaysBehindThroughRandomChangesResetsLoadsAndNewDefaults)
{
    static constexpr std::array kSources = {"threshold", "ratio", "knee", "attack", "release", "count"};
    static constexpr std::array kScales = {-60.0, 4.0, 12.0, 0.08, 0.3, 3.4};
    for (const char* const name : kSources)
        param(name);
    for (const char* const name : {"gain", "low", "up", "down", "sorted", "bands"})
        param(name);
    ASSERT_EQ(add("<audio:param-filter-acomp name='f' src='threshold,ratio,knee,attack,release' dst='gain'/>"
                  "<audio:param-filter-ratio name='g' src='gain' dst='low,up,down'/>"
                  "<audio:param-filter-freqsort name='h' src='attack,count' dst='sorted,bands'/>"),
              "");
    std::mt19937 random(5);
    const auto below = [&random](std::uint32_t end) { return static_cast<std::int32_t>(random() % end); };
    std::array<std::vector<std::uint8_t>, kSources.size()> saved;
    const auto change = [&](std::size_t which) {
        CAudioParam& target = param(kSources[which]);
        Numbers values(1 + random() % 3);
        for (double& value : values)
            value = kScales[which] * static_cast<double>(random()) / 4294967296.0;
        switch (below(6)) {
        case 0:
            target.setElement(below(4), below(4), values[0]);
            break;
        case 1:
            setGroup(kSources[which], below(4), values);
            break;
        case 2:
            target.resetValues(below(5) - 1, below(4) - 1);
            break;
        case 3:
            saved[which] = bytesOf(target, -1);
            break;
        case 4:
            if (!saved[which].empty()) {
                EXPECT_FALSE(target.load(saved[which], {.group = below(5) - 1}));
            }
            break;
        default:
            target.update(
                AudioParamRecord(target.info()->format, kAudioParamTemplateGroup, 0, values, below(2) == 0).update);
        }
    };
    for (int step = 0; step < 2000 && !HasFailure(); ++step) {
        change(random() % kSources.size());
        for (std::int32_t g = 0; g < 4; ++g) {
            std::size_t count = 0;
            for (std::size_t i = 0; i < 5; ++i)
                count = std::max(count, group(kSources[i], g).size());
            for (std::int32_t e = 0; e < static_cast<std::int32_t>(count); ++e) {
                const auto read = [&](std::size_t i) { return param(kSources[i]).value(g, e); };
                const double gain = slowMakeUp(read(0), read(1), read(2), read(3), read(4));
                EXPECT_NEAR(param("gain").value(g, e), gain, 1e-5 * gain) << step << " " << g << ":" << e;
                EXPECT_NEAR(param("low").value(g, e), std::min(gain, 1.0 / gain), 1e-5) << step;
            }
            if (group("bands", g).empty())
                continue;
            Numbers sorted(static_cast<std::size_t>(std::lround(param("count").value(g))));
            for (std::size_t i = 0; i < sorted.size(); ++i)
                sorted[i] = param("attack").value(g, static_cast<std::int32_t>(i));
            std::ranges::sort(sorted);
            EXPECT_EQ(group("sorted", g), sorted) << step << " " << g;
            EXPECT_EQ(group("bands", g), (Numbers{static_cast<double>(sorted.size()) + 1.0})) << step << " " << g;
        }
    }
}

} // namespace
} // namespace qrb
