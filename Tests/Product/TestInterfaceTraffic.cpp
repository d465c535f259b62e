// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CMemoryReader.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/CSystemThread.h"
#include "Platform/Clock.h"
#include "Tests/Product/CProductRig.h"
#include "Tests/Product/CTrafficClient.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kPrograms = 3;
constexpr const char* kAutomated[] = {"modThumpcraft.outgain", "modThumpcraft.comp-threshold:1:2",
                                      "modThumpcraft.drymix:3", "bypass-enable"};

/// Longer runs look for what is rare.
double trafficSeconds()
{
    const char* const text = std::getenv("THUMPCRAFT_TRAFFIC_SECONDS");
    return text != nullptr ? std::strtod(text, nullptr) : 2.0;
}

qrb::CByteArray chunkOf(const auto& presets, std::uint32_t id)
{
    qrb::CWriteSeqBuffer payload;
    EXPECT_FALSE(presets.save(payload));
    qrb::CByteArray bytes;
    payload.getContiguous(bytes);
    qrb::CWriteSeqBuffer chunk;
    EXPECT_FALSE(chunk.writeCompressedData(bytes.span(), id));
    chunk.getContiguous(bytes);
    return bytes;
}

/// Presets without items, which reset all that they may: programs of a session, and choices of a selector.
qrb::CAudioPresetBank emptyPresets(const char* id)
{
    qrb::CAudioPresetBank bank;
    for (int i = 0; i < kPrograms; ++i)
        bank.presets.emplace().name = qrb::CAudioPreset::joinName(id, std::to_string(i).c_str());
    return bank;
}

/// A host: a thread of its own for audio, everything else on the thread that calls.
class CTrafficHost {
public:
    CTrafficHost(CProductRig& rig, unsigned seed) : m_instance(rig.instance()), m_random(seed)
    {
        std::string error;
        for (const char* const path : kAutomated) {
            render::CRenderInstance::CTarget target;
            const auto setting = render::parseSetting(std::string(path) + "=0", error);
            EXPECT_TRUE(setting && m_instance.resolve(*setting, target, error)) << error;
            const qrb::CAudioParamInfo::CComponent& component = target.param->info()->components[0];
            m_targets.push_back({m_instance.addTarget(target), component.min, component.max});
        }
        EXPECT_EQ(m_audio.start(
                      "audio", [this] { play(); }, qrb::platform::EThreadPriority::normal),
                  0);
    }

    void step()
    {
        m_instance.runIdle();
        switch (m_random() % 256) {
        case 0:
            save();
            break;
        case 1:
            load();
            break;
        case 2:
            restart();
            break;
        default:
            std::this_thread::yield();
        }
    }

    /// Ends audio and leaves nothing undone.
    void finish()
    {
        m_isOver = true;
        m_audio.join();
        m_instance.runIdle();
        m_instance.stop();
        m_instance.runIdle();
        EXPECT_GT(m_blocks, 0u);
        EXPECT_TRUE(m_isFinite);
    }

private:
    struct CTarget {
        int index;
        double min, max;
    };

    void play()
    {
        std::mt19937 random(7);
        const CChannels in = makeNoise(2, 512);
        CChannels out(2, std::vector<double>(512));
        const std::array<const void*, 2> inputs{in[0].data(), in[1].data()};
        const std::array<void*, 2> outputs{out[0].data(), out[1].data()};
        for (; !m_isOver; ++m_blocks) {
            while (m_isPauseWanted) {
                m_isPaused = true;
                std::this_thread::yield();
            }
            m_isPaused = false;
            const int count = 1 + static_cast<int>(random() % 512);
            const CTarget& target = m_targets[random() % m_targets.size()];
            if (random() % 4 == 0)
                m_instance.addEvent({count / 2, qrb::EExternalEventKind::parameter, target.index,
                                     random() % 2 == 0 ? target.min : target.max});
            m_instance.setInputs({2, true, false}, {static_cast<int>(random() % 64 == 0), true, false}, inputs.data());
            m_instance.processBlock(inputs.data(), outputs.data(), count);
            m_isFinite = m_isFinite && std::isfinite(out[0][0]) && std::isfinite(out[1][0]);
        }
        m_instance.processBlock(inputs.data(), outputs.data(), 1); // events that found the parameters held
    }

    void save()
    {
        qrb::CWriteSeqBuffer state;
        EXPECT_FALSE(m_instance.saveState(state));
        state.getContiguous(m_state);
    }

    void load()
    {
        if (m_state.empty())
            return;
        qrb::CMemoryReader in{qrb::CByteArray(m_state)};
        EXPECT_FALSE(m_instance.loadState(in));
    }

    void restart()
    {
        m_isPauseWanted = true;
        while (!m_isPaused)
            std::this_thread::yield();
        m_instance.stop();
        m_instance.setSampleRate(m_random() % 2 == 0 ? 44100.0 : 48000.0);
        m_instance.start();
        m_isPauseWanted = false;
        while (m_isPaused)
            std::this_thread::yield();
    }

    render::CRenderInstance& m_instance;
    std::mt19937 m_random;
    std::vector<CTarget> m_targets;
    qrb::CByteArray m_state;
    std::atomic<bool> m_isOver{false};
    std::atomic<bool> m_isPauseWanted{false};
    std::atomic<bool> m_isPaused{false};
    std::size_t m_blocks = 0;
    bool m_isFinite = true;
    qrb::platform::CSystemThread m_audio;
};

TEST(TestInterfaceTraffic, TwoEditorsTheHostAndAudioAtOnceAgreeAtTheEnd)
{
    std::string error;
    const render::CProductModule module(error);
    qrb::CAudioPresetList choices;
    choices.banks.append(emptyPresets("QBXT"));
    const qrb::CByteArray programs = chunkOf(emptyPresets("k7rw"), qrb::kPresetBankChunk);
    const qrb::CByteArray list = chunkOf(choices, qrb::kPresetListChunk);
    qrb::processState().resources->add("FactoryROM.cbf", programs.span());
    qrb::processState().resources->add("xotube-presets", list.span());
    CProductRig rig({44100.0, 2, 2, 0, 3});
    rig.start();

    const double end = qrb::platform::clockSeconds() + trafficSeconds();
    std::atomic<int> working{2};
    std::atomic<int> comparing{2};
    std::atomic<bool> isQuiet{false};
    const auto edit = [&](unsigned seed) {
        std::unique_ptr<CTrafficClient> client;
        for (; qrb::platform::clockSeconds() < end; ++seed) {
            client.reset(); // in the midst of whatever it did
            client = std::make_unique<CTrafficClient>(rig.instance(), seed);
            for (int i = 0; i < 3000 && qrb::platform::clockSeconds() < end; ++i)
                client->step();
        }
        client->settle();
        --working;
        while (!isQuiet)
            std::this_thread::yield();
        client->expectSame();
        EXPECT_GT(client->changeCount(), 0u);
        // A client that goes ends its views, which changes parameters.
        --comparing;
        while (comparing > 0)
            std::this_thread::yield();
    };
    CTrafficHost host(rig, 1);
    std::array<qrb::platform::CSystemThread, 2> editors;
    for (unsigned i = 0; i < 2; ++i)
        ASSERT_EQ(editors[i].start(
                      "editor", [&edit, i] { edit(1 + i * 1000000); }, qrb::platform::EThreadPriority::normal),
                  0);
    while (working > 0)
        host.step();
    host.finish();
    isQuiet = true;
}

TEST(TestInterfaceTraffic, AnEditorHearsOfStartsStopsAndTheSetup)
{
    CProductRig rig({});
    rig.start();
    CTrafficClient client(rig.instance(), 1);
    client.expectSame();
    EXPECT_EQ(client.takeNotes(), "");
    rig.instance().stop();
    client.expectSame();
    EXPECT_EQ(client.takeNotes(), "clear;start;") << "always active: what stops begins anew";
    rig.instance().start();
    client.expectSame();
    EXPECT_EQ(client.takeNotes(), "");
    rig.instance().runIdle();
    rig.instance().setInputs({4, true, false}, {1, true, false});
    rig.instance().setSampleRate(96000.0);
    EXPECT_TRUE(rig.instance().paramCollector().hasDeferred()) << "nobody would tell";
    rig.instance().runIdle();
    client.expectSame();
}

} // namespace
