// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioWrapper.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CWorkerBatch.h"
#include "Core/CWorkerThread.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CSystemThread.h"
#include "Tests/Audio/CWrapperWorld.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <thread>

namespace qrb {
namespace {

constexpr int kLatency = 100; // of the test product at 44100 Hz

CExternalEvent levelAt(int offset, double value)
{
    return {offset, EExternalEventKind::parameter, 0, value};
}

std::vector<double> noise(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<double> samples;
    for (int i = 0; i < count; ++i)
        samples.push_back(static_cast<double>(random()) / 2147483648.0 - 1.0);
    return samples;
}

class CAudioWrapperTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(errorText(m_wrapper.init()), "");
        m_wrapper.setInputs({1, true, false});
        m_wrapper.setOutputs({1, true, false});
        m_wrapper.start();
        CRecorder::calls().clear();
    }

    /// One block of mono doubles from the given input.
    std::vector<double> run(std::vector<double> input)
    {
        std::vector<double> output(input.size(), 99.0);
        const void* in[] = {input.data()};
        void* out[] = {output.data()};
        m_wrapper.processBlock(in, out, static_cast<int>(input.size()));
        return output;
    }

    CWrapperWorld m_world;
    CTestWrapper m_wrapper;
};

TEST_F(CAudioWrapperTest, StartMakesTheLatencyKnownAndTellsItOnce)
{
    EXPECT_TRUE(m_wrapper.isActive());
    EXPECT_EQ(m_wrapper.env().latency(), kLatency);
    EXPECT_EQ(m_wrapper.latencyChangeCount, 1);
    EXPECT_TRUE(m_wrapper.isLatencyChangePending());
    EXPECT_EQ(m_wrapper.param("plugin.modMain.host-latency-change"), 1.0);
    EXPECT_EQ(m_wrapper.getLatencySamples(), kLatency);
    EXPECT_FALSE(m_wrapper.isLatencyChangePending());
    EXPECT_EQ(m_wrapper.param("plugin.modMain.host-latency-change"), 0.0);
    m_wrapper.setSampleRate(96000.0);
    run(noise(10, 1));
    EXPECT_EQ(m_wrapper.latencyChangeCount, 2);
    EXPECT_EQ(m_wrapper.getLatencySamples(), 200);
    EXPECT_EQ(m_wrapper.getTailSamples(), 48000);
}

TEST_F(CAudioWrapperTest, BlocksAreCutAtEventsAndAt512Samples)
{
    m_wrapper.addEvent(levelAt(700, 0.5));
    run(noise(1000, 1));
    const std::vector<CRecorder::CCall> expected = {{512, 1, 1.0}, {188, 1, 1.0}, {300, 1, 0.5}};
    EXPECT_EQ(CRecorder::calls(), expected);
}

TEST_F(CAudioWrapperTest, EventsOfOneOffsetActTogetherAndTheLastWins)
{
    m_wrapper.addEvent(levelAt(60, 0.2));
    m_wrapper.addEvent(levelAt(-5, 0.7)); // before the block: at its first sample
    m_wrapper.addEvent(levelAt(60, 0.4));
    m_wrapper.addEvent(levelAt(5000, 0.1)); // behind it: at its last sample
    run(noise(100, 1));
    const std::vector<CRecorder::CCall> expected = {{60, 1, 0.7}, {39, 1, 0.4}, {1, 1, 0.1}};
    EXPECT_EQ(CRecorder::calls(), expected);
}

TEST_F(CAudioWrapperTest, WhileParametersAreHeldElsewhereEventsWaitInTheirOrder)
{
    platform::CAutoResetEvent isHeld;
    platform::CAutoResetEvent mayLeave;
    std::thread holder([&] {
        const CAudioParamGuard guard(m_wrapper.paramCollector());
        isHeld.signal();
        mayLeave.wait();
    });
    isHeld.wait();
    m_wrapper.addEvent(levelAt(10, 0.2));
    m_wrapper.addEvent(levelAt(20, 0.4));
    run(noise(30, 1));
    mayLeave.signal();
    holder.join();
    m_wrapper.addEvent(levelAt(5, 0.6));
    run(noise(30, 1));
    const std::vector<CRecorder::CCall> expected = {
        {10, 1, 1.0}, {10, 1, 1.0}, {10, 1, 1.0}, {5, 1, 0.4}, {25, 1, 0.6}};
    EXPECT_EQ(CRecorder::calls(), expected);
    m_wrapper.refuseCount = 1;
    m_wrapper.addEvent(levelAt(0, 0.8));
    CRecorder::calls().clear();
    run(noise(600, 1));
    EXPECT_EQ(CRecorder::calls()[0], (CRecorder::CCall{512, 1, 0.6}));
    EXPECT_EQ(CRecorder::calls()[1], (CRecorder::CCall{88, 1, 0.8}));
}

TEST_F(CAudioWrapperTest, NothingRunsWithoutSamplesOrChannelsAndEventsStay)
{
    m_wrapper.addEvent(levelAt(3, 0.5));
    run({});
    float silence[16] = {};
    void* out[] = {silence};
    m_wrapper.processBlock(nullptr, out, 16);
    m_wrapper.setOutputs({});
    run(noise(16, 1));
    EXPECT_TRUE(CRecorder::calls().empty());
    m_wrapper.setOutputs({1, true, false});
    run(noise(16, 1));
    ASSERT_EQ(CRecorder::calls().size(), 1u);
    EXPECT_EQ(CRecorder::calls()[0].level, 0.5);
}

TEST_F(CAudioWrapperTest, PrimingAppliesWhatIsPending)
{
    m_wrapper.stop();
    EXPECT_FALSE(m_wrapper.isActive());
    m_wrapper.addEvent(levelAt(400, 0.25));
    m_wrapper.start();
    CRecorder::calls().clear();
    run(noise(8, 1));
    EXPECT_EQ(CRecorder::calls()[0].level, 0.25);
}

TEST_F(CAudioWrapperTest, StopForgetsTheSignal)
{
    run(std::vector<double>(50, 1.0));
    m_wrapper.stop();
    m_wrapper.start();
    for (const double sample : run(std::vector<double>(300, 0.0)))
        ASSERT_EQ(sample, 0.0);
}

TEST_F(CAudioWrapperTest, TheOutputDoesNotDependOnHowTheHostCuts)
{
    const std::vector<double> input = noise(9000, 5);
    std::vector<double> whole;
    for (const int cut : {9000, 1, 17, 512, 4096}) {
        m_wrapper.stop();
        m_wrapper.start();
        std::vector<double> output;
        for (int begin = 0; begin < 9000; begin += cut) {
            m_wrapper.addEvent(levelAt(0, 0.5)); // overruled at once
            const auto first = input.begin() + begin;
            const auto last = input.begin() + std::min(9000, begin + cut);
            m_wrapper.addEvent(levelAt(0, 1.0));
            const std::vector<double> block = run({first, last});
            output.insert(output.end(), block.begin(), block.end());
        }
        if (whole.empty())
            whole = output;
        EXPECT_EQ(output, whole) << cut;
    }
    EXPECT_TRUE(std::equal(whole.begin() + kLatency, whole.end(), input.begin()));
}

TEST_F(CAudioWrapperTest, SteadyBlocksTakeNoMemory)
{
    for (int i = 0; i < 20; ++i) {
        m_wrapper.addEvent(levelAt(100, i * 0.01));
        run(noise(700, 1));
        CRecorder::calls().clear();
        EXPECT_TRUE(i <= 4 || m_wrapper.getBlockAllocations() == 0) << i;
    }
}

TEST_F(CAudioWrapperTest, EveryHostFormatCarriesTheSameSignal)
{
    for (const bool isDouble : {false, true})
        for (const bool isInterleaved : {false, true}) {
            m_wrapper.stop();
            m_wrapper.setInputs({2, isDouble, isInterleaved}, {1, !isDouble, false}, nullptr);
            m_wrapper.setOutputs({4, isDouble, isInterleaved});
            m_wrapper.start();
            constexpr int kCount = 600;
            // Channel c holds c + n / 1024, which a float tells exactly.
            const auto value = [](int channel, int n) { return channel + n / 1024.0; };
            std::vector<double> doubles(4 * kCount, 99.0);
            std::vector<float> floats(4 * kCount, 99.0f);
            std::vector<double> outDoubles(4 * kCount, 99.0);
            std::vector<float> outFloats(4 * kCount, 99.0f);
            const auto place = [&](int channel, int n, int channelCount) {
                return static_cast<std::size_t>(isInterleaved ? n * channelCount + channel : channel * kCount + n);
            };
            for (int channel = 0; channel < 2; ++channel)
                for (int n = 0; n < kCount; ++n) {
                    doubles[place(channel, n, 2)] = value(channel, n);
                    floats[place(channel, n, 2)] = static_cast<float>(value(channel, n));
                }
            std::vector<double> keyDoubles;
            std::vector<float> keyFloats;
            for (int n = 0; n < kCount; ++n) {
                keyDoubles.push_back(value(2, n));
                keyFloats.push_back(static_cast<float>(value(2, n)));
            }
            const void* in[2] = {};
            void* out[4] = {};
            for (int channel = 0; channel < 4; ++channel) {
                const std::size_t begin = static_cast<std::size_t>(isInterleaved ? 0 : channel * kCount);
                if (channel < 2)
                    in[channel] = isDouble ? static_cast<const void*>(&doubles[begin]) : &floats[begin];
                out[channel] = isDouble ? static_cast<void*>(&outDoubles[begin]) : &outFloats[begin];
            }
            const void* key[] = {isDouble ? static_cast<const void*>(keyFloats.data()) : keyDoubles.data()};
            m_wrapper.setInputs({2, isDouble, isInterleaved}, {1, !isDouble, false}, key);
            m_wrapper.processBlock(in, out, kCount);
            for (int channel = 0; channel < 4; ++channel)
                for (int n = 0; n < kCount; ++n) {
                    const std::size_t at = place(channel, n, 4);
                    const double got = isDouble ? outDoubles[at] : static_cast<double>(outFloats[at]);
                    // The fourth channel has no line.
                    ASSERT_EQ(got, n < kLatency || channel == 3 ? 0.0 : value(channel, n - kLatency))
                        << channel << ", " << n << (isDouble ? " double" : " float") << (isInterleaved ? " mixed" : "");
                }
        }
}

TEST_F(CAudioWrapperTest, MissingPointersAreSilenceInAndNothingOut)
{
    m_wrapper.setInputs({2, true, false});
    m_wrapper.setOutputs({2, true, false});
    std::vector<double> input(300, 1.0);
    std::vector<double> output(300, 99.0);
    const void* in[] = {input.data(), nullptr};
    void* out[] = {nullptr, output.data()};
    m_wrapper.processBlock(in, out, 300);
    EXPECT_EQ(output, std::vector<double>(300, 0.0));
}

TEST_F(CAudioWrapperTest, OversamplingFollowsRateAndOfflineState)
{
    const char* const mode = "plugin.modMain.host-oversampling-mode";
    EXPECT_EQ(m_wrapper.param(mode), 0.0); // what real time allows, less one
    m_wrapper.setOffline(true);
    EXPECT_EQ(m_wrapper.param("plugin.modMain.host-offline"), 1.0);
    EXPECT_EQ(m_wrapper.param(mode), 2.0);
    m_wrapper.setSampleRate(96000.0);
    EXPECT_EQ(m_wrapper.param(mode), 1.0);
    m_wrapper.setSampleRate(192000.0);
    EXPECT_EQ(m_wrapper.param(mode), 0.0);
    m_wrapper.setSampleRate(72000.0);
    EXPECT_EQ(m_wrapper.param(mode), 1.0);
    m_wrapper.setOffline(false);
    EXPECT_EQ(m_wrapper.param("plugin.modMain.host-offline"), 0.0);
    EXPECT_EQ(m_wrapper.param(mode), 0.0);
    m_wrapper.setHostBPM(123.0);
    EXPECT_EQ(m_wrapper.param("plugin.modMain.host-bpm"), 123.0);
}

TEST_F(CAudioWrapperTest, AStateIsOneChunkThatBringsEverythingBack)
{
    const auto value = [](CTestWrapper& wrapper, const char* name, int group, int element) {
        return wrapper.paramCollector().getParam(CString("plugin.modMain.") + name).value(group, element);
    };
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        for (int i = 0; i < 10; ++i)
            m_wrapper.paramCollector()
                .getParam("plugin.modMain.mix")
                .setElement(static_cast<int>(random() % 8), static_cast<int>(random() % 9),
                            static_cast<double>(random()) / 1e9);
        m_wrapper.paramCollector()
            .getParam("plugin.modMain.keep")
            .setElement(0, 0, static_cast<double>(random()) / 1e9);
        CWriteSeqBuffer out;
        ASSERT_EQ(errorText(m_wrapper.saveState(out)), "");
        CByteArray bytes;
        out.getContiguous(bytes);
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "aprs");

        CTestWrapper other;
        ASSERT_EQ(errorText(other.init()), "");
        other.paramCollector().getParam("plugin.modMain.mix").setElement(0, 0, 8.5);
        for (const std::size_t cut : {std::size_t{0}, std::size_t{11}, bytes.size() / 2, bytes.size() - 1}) {
            CMemoryReaderStatic damaged(bytes.span().first(cut));
            EXPECT_NE(errorText(other.loadState(damaged)), "");
        }
        EXPECT_EQ(value(other, "mix", 0, 0), 8.5);
        EXPECT_EQ(value(other, "keep", 0, 0), 5.0);
        CMemoryReaderStatic in(bytes.span());
        ASSERT_EQ(errorText(other.loadState(in)), "");
        for (int group = 0; group < 9; ++group)
            for (int element = 0; element < 10; ++element)
                EXPECT_EQ(value(other, "mix", group, element), value(m_wrapper, "mix", group, element));
        EXPECT_EQ(value(other, "keep", 0, 0), value(m_wrapper, "keep", 0, 0));
        CWriteSeqBuffer again;
        ASSERT_EQ(errorText(other.saveState(again)), "");
        CByteArray bytesAgain;
        again.getContiguous(bytesAgain);
        EXPECT_EQ(bytesAgain, bytes);
    }
}

TEST_F(CAudioWrapperTest, EndOfAnInstanceEndsIdleWorkers)
{
    class CNumberJob final : public CWorkerThread {
    public:
        explicit CNumberJob(std::uint64_t& number) : m_number(number) {}
        CErrorPtr run() override
        {
            m_number = platform::CSystemThread::currentId();
            return nullptr;
        }

    private:
        std::uint64_t& m_number;
    };
    const auto workerNumber = [] {
        std::uint64_t number = 0;
        CWorkerBatch batch;
        EXPECT_FALSE(batch.add(std::make_unique<CNumberJob>(number)));
        batch.start();
        EXPECT_FALSE(batch.finish());
        return number;
    };
    const std::uint64_t number = workerNumber();
    EXPECT_EQ(workerNumber(), number);
    std::make_unique<CTestWrapper>().reset();
    EXPECT_NE(workerNumber(), number);
}

} // namespace
} // namespace qrb
