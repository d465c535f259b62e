// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioEnv.h"
#include "Audio/Presets/CAudioPresetBank.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/CSystemThread.h"
#include "Tests/Product/CPresetRig.h"
#include "Tests/Product/CProductRig.h"

#include <atomic>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <utility>

using namespace qrb;

namespace {

std::vector<std::string> allPaths(CPresetRig& rig)
{
    CArray<CAudioParam*> all;
    rig.params().listParams(all);
    std::vector<std::string> paths;
    for (const CAudioParam* const each : all)
        if (each->isBound() && each->info()->format.type != EAudioParamType::raw)
            paths.push_back(each->path().toUtf8().substr(std::string("plugin.modMain.").size()));
    return paths;
}

class TestProductStates : public testing::TestWithParam<CPresetRig::EContent> {};

TEST_P(TestProductStates, ComeBackToTheBitInAnyInstance)
{
    std::mt19937 random(11);
    CPresetRig rig(GetParam());
    CPresetRig other(GetParam());
    const std::vector<std::string> paths = rig.contentPaths();
    const std::vector<std::string> everything = allPaths(rig);
    const int programs = rig.programCount();
    EXPECT_EQ(programs, GetParam() == CPresetRig::EContent::own ? CPresetRig::kPrograms : 17);
    EXPECT_GT(paths.size(), 80u);
    for (int round = 0; round < 34; ++round) {
        EXPECT_FALSE(rig.master().setCurrentProgram(round % programs, nullptr));
        // Each program as it is, then changed here and there.
        if (round >= programs)
            rig.randomize(random);
        const std::vector<std::uint8_t> saved = rig.saveState();
        const CPlainState want = rig.state(everything);
        EXPECT_EQ(rig.saveState(), saved);

        rig.randomize(random);
        other.randomize(random);
        const CPlainState kept = other.state(everything);
        const std::size_t cut = random() % saved.size();
        EXPECT_NE(other.loadState({saved.begin(), saved.begin() + static_cast<std::ptrdiff_t>(cut)}), "") << cut;
        ASSERT_EQ(other.state(everything), kept) << cut;
        EXPECT_EQ(rig.loadState(saved), "");
        EXPECT_EQ(other.loadState(saved), "");
        ASSERT_EQ(rig.state(everything), want) << round; // what follows from others included
        ASSERT_EQ(other.state(paths), rig.state(paths)) << round;
        EXPECT_EQ(other.saveState(), saved);
    }
}

INSTANTIATE_TEST_SUITE_P(TestProductPresets, TestProductStates,
                         testing::Values(CPresetRig::EContent::own, CPresetRig::EContent::shipped));

TEST(TestProductPresets, AStoredBankHasTheInstancesOwnValuesInEveryProgram)
{
    std::mt19937 random(12);
    CPresetRig rig;
    const std::vector<std::string> paths = rig.contentPaths();
    std::vector<std::string> own;
    for (const std::string& path : paths)
        if (rig.param(path).info()->isPersistent)
            own.push_back(path);
    EXPECT_EQ(own, (std::vector<std::string>{"bypass-enable", "groupsel", "instance-name"}));
    rig.randomize(random);
    CPlainState programs[2] = {rig.state(paths), {}};
    EXPECT_FALSE(rig.master().setCurrentProgram(1, nullptr));
    EXPECT_EQ(rig.state(own), [&] {
        CPlainState kept;
        for (const std::string& path : own)
            kept[path] = programs[0][path];
        return kept;
    }());
    rig.randomize(random);
    programs[1] = rig.state(paths);
    CWriteSeqBuffer out;
    EXPECT_FALSE(rig.master().acquireBank(false, out));
    CByteArray bytes;
    out.getContiguous(bytes);
    CMemoryReaderStatic in(bytes.span());
    CAudioPresetBank bank;
    EXPECT_FALSE(bank.load(in));
    EXPECT_EQ(bank.count(), CPresetRig::kPrograms);
    for (const std::string& path : own)
        programs[0][path] = programs[1][path];
    CPresetRig other;
    for (const int i : {0, 1, 0}) {
        EXPECT_FALSE(other.master().activatePreset(bank.at(i), &rig, -1));
        EXPECT_EQ(other.state(paths), programs[i]) << i;
    }
}

TEST(TestProductPresets, DamagedStatesAreTakenWholeOrNotAtAll)
{
    std::mt19937 random(14);
    CPresetRig rig;
    const std::vector<std::string> everything = allPaths(rig);
    rig.randomize(random);
    CWriteSeqBuffer out;
    EXPECT_FALSE(rig.master().acquirePreset(false, -1, -1, out));
    CByteArray good;
    out.getContiguous(good);
    int refused = 0;
    CPlainState before = rig.state(everything);
    for (int round = 0; round < 400; ++round) {
        CByteArray bytes = good;
        // Mostly single bytes, sometimes a number that is none, or a length that is too large.
        for (int count = 1 + static_cast<int>(random() % 4); count > 0; --count) {
            const std::size_t place = random() % (bytes.size() - 8);
            const std::size_t length = random() % 3 == 0 ? 8 : 1;
            const auto value = static_cast<std::uint8_t>(length == 1 ? random() : 0xFF);
            std::fill_n(bytes.begin() + place, length, value);
        }
        CMemoryReaderStatic in(bytes.span());
        const bool isRefused = static_cast<bool>(rig.master().activatePreset(in, round % 2 == 0 ? &rig : nullptr, -1));
        const CPlainState after = rig.state(everything);
        if (isRefused) {
            ++refused;
            ASSERT_EQ(after, before) << round;
        }
        for (const auto& [path, groups] : after)
            for (const CPlainGroup& group : groups)
                for (const CPlainCell& cell : group)
                    ASSERT_TRUE(std::isfinite(cell.number)) << path << " " << round;
        before = after;
    }
    EXPECT_GT(refused, 40);
    EXPECT_LT(refused, 360);
}

/// Plays blocks on a thread of its own until told to stop, and shows each to a visitor there.
class CPlayer {
public:
    using FVisit = std::function<void(const CChannels& out)>;

    CPlayer(render::CRenderInstance& instance, FVisit visit) : m_instance(instance), m_visit(std::move(visit))
    {
        instance.setInputs({2, true, false});
        instance.setOutputs({2, true, false});
        instance.start();
        EXPECT_EQ(m_thread.start(
                      "audio", [this] { play(); }, platform::EThreadPriority::normal),
                  0);
    }
    ~CPlayer()
    {
        m_isDone = true;
        m_thread.join();
        m_instance.stop();
    }
    /// Lets some blocks pass.
    void waitForBlocks(int count) const
    {
        for (const int end = m_blocks + count; m_blocks < end;)
            std::this_thread::yield();
    }

private:
    void play()
    {
        const CChannels in = makeOnes(2, kBlock);
        CChannels out = in;
        const void* const inputs[] = {in[0].data(), in[1].data()};
        void* const outputs[] = {out[0].data(), out[1].data()};
        while (!m_isDone) {
            m_instance.processBlock(inputs, outputs, kBlock);
            m_visit(out);
            ++m_blocks;
        }
    }

    static constexpr int kBlock = 48;

    render::CRenderInstance& m_instance;
    FVisit m_visit;
    std::atomic<bool> m_isDone{false};
    std::atomic<int> m_blocks{0};
    platform::CSystemThread m_thread;
};

using CCells = std::vector<std::vector<double>>;

CCells audioCells(const std::vector<const CAudioParam*>& params)
{
    CCells cells;
    for (const CAudioParam* const param : params)
        for (int group = 0; group < 8; ++group) {
            const std::span<const double> found = param->audioStorage().cells(group);
            cells.emplace_back(found.begin(), found.end());
        }
    return cells;
}

TEST(TestProductPresets, NoBlockMixesTwoPresets)
{
    std::mt19937 random(13);
    CPresetRig rig;
    std::vector<const CAudioParam*> params;
    for (const std::string& path : allPaths(rig))
        if (!path.starts_with("host-") && !rig.param(path).info()->format.hasItems())
            params.push_back(&rig.param(path));
    CAudioPreset presets[2];
    CCells wanted[2];
    for (int i = 0; i < 2; ++i) {
        rig.randomize(random);
        presets[i] = rig.master().capture(-1);
    }
    for (const int i : {0, 1, 0, 1}) {
        EXPECT_FALSE(rig.master().activatePreset(presets[i], nullptr, -1));
        rig.params().flushQueue();
        wanted[i] = audioCells(params);
    }
    ASSERT_NE(wanted[0], wanted[1]);
    int seen[3] = {};
    const auto look = [&] {
        const CCells now = audioCells(params);
        ++seen[now == wanted[0] ? 0 : now == wanted[1] ? 1 : 2];
    };
    const auto work = [&](int count, const std::function<void(int)>& wait) {
        for (int i = 0; i < count; ++i) {
            EXPECT_FALSE(rig.master().activatePreset(presets[i % 2], nullptr, -1));
            wait(i % 3);
        }
        for (int i = 0; i < count; ++i) {
            rig.undo().setPosition(i % 2 == 0 ? 31 : 32);
            wait(i % 2);
        }
    };
    {
        const CPlayer player(rig.instance(), [&](const CChannels&) { look(); });
        work(100, [&](int blocks) { player.waitForBlocks(blocks); });
    }
    // Blocks rarely begin just between two steps of the same activation. One who does nothing but wait for the queue
    // gets there whenever there is such a moment.
    rig.params().env().setActive(true);
    std::atomic<bool> isDone{false};
    platform::CSystemThread eager;
    ASSERT_EQ(eager.start(
                  "audio",
                  [&] {
                      while (!isDone) {
                          const std::uint32_t known = rig.params().audioChangeCount();
                          while (!rig.params().env().lock().tryEnter()) {
                          }
                          rig.params().takeQueue();
                          rig.params().env().lock().leave();
                          rig.params().applyTaken();
                          if (known != rig.params().audioChangeCount())
                              look();
                      }
                  },
                  platform::EThreadPriority::normal),
              0);
    work(150, [](int) {});
    isDone = true;
    eager.join();
    EXPECT_GT(seen[0], 0);
    EXPECT_GT(seen[1], 0);
    EXPECT_EQ(seen[2], 0);
}

TEST(TestProductPresets, TwoGainsOfAPresetAreHeardTogether)
{
    // The presets hold gains whose product is 1; while both cross over it is at most 1.25 * 1.25. One alone would show
    // as 0.25 or 4.
    CPresetRig rig;
    CAudioPreset presets[2];
    for (int i = 0; i < 2; ++i) {
        CPlainState state;
        state["modThumpcraft.xo-count"] = {{{0.0, {}}}};
        state["modThumpcraft.outgain"] = {{{i == 0 ? 0.5 : 2.0, {}}}, {}};
        state["modThumpcraft.bandgain"] = {{{i == 0 ? 2.0 : 0.5, {}}}, {}};
        presets[i] = plainPreset("k7rw:Gains", state);
    }
    EXPECT_FALSE(rig.master().activatePreset(presets[0], nullptr, -1));
    double low = 1.0;
    double high = 1.0;
    int blocks = 0;
    {
        const CPlayer player(rig.instance(), [&](const CChannels& out) {
            if (++blocks > 100) // the latency has passed
                for (const double sample : out[0]) {
                    low = std::min(low, sample);
                    high = std::max(high, sample);
                }
        });
        player.waitForBlocks(120);
        for (int i = 1; i < 200; ++i) {
            EXPECT_FALSE(rig.master().activatePreset(presets[i % 2], nullptr, -1));
            player.waitForBlocks(i % 40);
        }
    }
    EXPECT_GT(low, 1.0 - 1e-6);
    EXPECT_LT(high, 1.25 * 1.25 + 1e-6);
    EXPECT_GT(high, 1.5);
}

} // namespace
