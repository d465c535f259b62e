// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/Viz/CAudioVizDataInfo.h"
#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Audio/Viz/CAudioVizDataRGB.h"
#include "Audio/Viz/CAudioVizDataSpectrum.h"
#include "Audio/Viz/CAudioVizDataVScope.h"
#include "Audio/Viz/CAudioVizReader.h"
#include "Audio/Viz/CAudioVizWriter.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CQrbMemAllocator.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Audio/Viz/CVizProbe.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace qrb {
namespace {

const char* const kShared =
    "<shared><core:object name='audio'><core:object name='paramcvt'><audio:cvt-real name='real'/></core:object>"
    "<audio:param name='param-enable-viz' element-size='1' converter='audio.paramcvt.real' min-values='0' "
    "max-values='1' def-values='0' is-global='true' is-single-group='true' is-single-element='true'/>"
    "</core:object></shared>";
const char* const kInstance = "<root><audio:audio-env name='env'/><audio:param-collector name='params' env='env'/>"
                              "<audio:viz-collector name='viz' env='env' param-collector='params'/></root>";

class CVizWorld {
public:
    CVizWorld() : m_module(kShared, audioCreators()), root(m_module.loadRoot(kInstance)) {}

private:
    CTestModule m_module;

public:
    CObject& root;
    CAudioVizCollector& viz = dynamic_cast<CAudioVizCollector&>(CTestModule::find(root, "viz"));
    CAudioEnv& env = dynamic_cast<CAudioEnv&>(CTestModule::find(root, "env"));
    CAudioParamCollector& params = dynamic_cast<CAudioParamCollector&>(CTestModule::find(root, "params"));

    [[nodiscard]] double enable(const char* name) { return params.getParam(CString(name) + "-enable").value(); }
};

bool postMeter(CAudioVizWriter& writer, double value, std::int32_t index = 0)
{
    auto record = writer.take<CAudioVizDataMeter>();
    if (record == nullptr)
        return false;
    record->channel = 1;
    record->group = 2;
    record->index = index;
    record->time = 0.5;
    record->value = value;
    record->peak = 2.0 * value;
    writer.post(std::move(record));
    return true;
}

TEST(CAudioVizCollector, MessagesHaveTheirFormAndDropWhatNobodyHears)
{
    CVizWorld world;
    CVizProbe probe(world.viz);
    (void)probe.listen("a");
    CAudioVizWriter writer;
    writer.open(&world.viz, "a#3", "", EAudioVizType::meter);
    EXPECT_TRUE(writer.isActive()) << "the position in a name does not count";
    EXPECT_FALSE(postMeter(writer, 1.0)) << "readers make the records";
    world.env.setTimeNow(0.25);
    (void)probe.pullBytes();
    ASSERT_TRUE(postMeter(writer, 1.0, 3));
    const std::vector<std::uint8_t> expected = {
        0,  0, 0, 0, 0, 0, 0xD0, 0x3F,                                        // stream time 0.25
        1,  0, 0, 0, 1, 0, 0,    0,    'a',                                   // one record of "a"
        40, 0, 0, 0, 0, 0, 0,    0,                                           // its size and type
        1,  0, 0, 0, 2, 0, 0,    0,    3,    0,    0,    0,                   // channel, group, index
        0,  0, 0, 0, 0, 0, 0xE0, 0x3F, 0xFF, 0xFF, 0xFF, 0xFF,                // time, serial
        0,  0, 0, 0, 0, 0, 0xF0, 0x3F, 0,    0,    0,    0,    0, 0, 0, 0x40, // value, peak
        0,  0, 0, 0};
    EXPECT_EQ(probe.pullBytes(), expected);

    ASSERT_TRUE(postMeter(writer, 1.0));
    world.viz.flush();
    EXPECT_TRUE(probe.pull().empty());
    CVizProbe stranger(world.viz, 9);
    ASSERT_TRUE(postMeter(writer, 1.0));
    EXPECT_TRUE(stranger.pull().empty());
    EXPECT_EQ(probe.pull()["a"].size(), 1u) << "one client does not take what is another's";
}

TEST(CAudioVizCollector, TheLatestRecordsStayAndMemoryIsReused)
{
    CVizWorld world;
    CVizProbe probe(world.viz);
    CVizProbe idler(world.viz, 2);
    (void)probe.listen("m");
    (void)idler.listen("m");
    CAudioVizWriter writer;
    writer.open(&world.viz, "m", "", EAudioVizType::meter);
    (void)probe.pull();
    const std::uint64_t before = CQrbMemAllocator::allocateCount();
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(postMeter(writer, i));
    EXPECT_EQ(CQrbMemAllocator::allocateCount(), before);
    const auto check = [](const std::vector<CAudioVizDataMeter>& records, int last) {
        ASSERT_EQ(records.size(), 64u);
        for (int i = 0; i < 64; ++i)
            EXPECT_EQ(records[static_cast<std::size_t>(i)].value, last - 63 + i);
    };
    check(probe.pull<CAudioVizDataMeter>("m"), 999);
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(postMeter(writer, 1000 + i));
    EXPECT_EQ(probe.pull()["m"].size(), 50u);
    check(idler.pull<CAudioVizDataMeter>("m"), 1049);

    // Each line of a spectrum has its own two, of its own size.
    (void)probe.listen("s");
    CAudioVizWriter lines[2];
    for (int line = 0; line < 2; ++line) {
        lines[line].open(&world.viz, "s", "", EAudioVizType::spectrum);
        lines[line].setBinCount(line == 0 ? 33 : 129);
    }
    (void)probe.pull();
    for (int i = 0; i < 5; ++i) {
        for (int line = 0; line < 2; ++line) {
            auto record = lines[line].take<CAudioVizDataSpectrum>();
            ASSERT_NE(record, nullptr);
            EXPECT_EQ(record->bins.capacity(), line == 0 ? 33u : 129u);
            record->channel = line;
            record->index = i;
            lines[line].post(std::move(record));
        }
    }
    int sums[2] = {};
    const auto pulled = probe.pull();
    for (const auto& record : pulled.at("s"))
        sums[record->channel] += record->index;
    EXPECT_EQ(sums[0], 3 + 4);
    EXPECT_EQ(sums[1], 3 + 4);
}

TEST(CAudioVizCollector, EnablesASourceFromItsFirstListenerToItsLast)
{
    CVizWorld world;
    CVizProbe probe(world.viz);
    CVizProbe other(world.viz, 2);
    const std::uint32_t first = probe.listen("a");
    const std::uint32_t second = other.listen("a");
    EXPECT_EQ(world.enable("a"), 1.0);
    EXPECT_EQ(world.enable("b"), 0.0);
    world.viz.listen(-1, "a", first); // known
    world.viz.unlisten(first);
    world.viz.unlisten(first);
    world.viz.unlisten(77);
    EXPECT_EQ(world.enable("a"), 1.0);
    world.viz.unlisten(second);
    EXPECT_EQ(world.enable("a"), 0.0);

    for (std::uint32_t i = 0; i < 3000; ++i) // a client can't take memory without end
        world.viz.listen(-1, CString("x") + CString(std::to_string(i).c_str()), 0x30000 + i);
    EXPECT_TRUE(world.params.getParam("x1000-enable").isBound());
    EXPECT_FALSE(world.params.getParam("x1500-enable").isBound());
}

TEST(CAudioVizCollector, LearnsTheRateOfItsFastestClient)
{
    CVizWorld world;
    CVizProbe slow(world.viz);
    CVizProbe fast(world.viz, 2);
    (void)slow.listen("a");
    (void)fast.listen("a");
    for (int i = 0; i < 100; ++i) {
        (void)slow.pull(100.0 + i / 20.0);
        (void)fast.pull(7.0 + i / 60.0 + 0.001 * (i % 2));
    }
    EXPECT_EQ(world.env.vizUpdateRate, 60.0);
    (void)fast.pull(500.0); // a pause is no rate
    EXPECT_EQ(world.env.vizUpdateRate, 60.0);
}

TEST(CAudioVizCollector, OneThreadPostsWhileOthersReadAndComeAndGo)
{
    CVizWorld world;
    CVizProbe probe(world.viz);
    (void)probe.listen("m");
    std::atomic<bool> isDone{false};
    std::thread audio([&] {
        CAudioVizWriter writer;
        writer.open(&world.viz, "m", "", EAudioVizType::meter);
        for (int posted = 1; !isDone;)
            posted += postMeter(writer, posted) ? 1 : 0;
    });
    std::thread visitor([&] {
        CVizProbe guest(world.viz, 2);
        while (!isDone) {
            const std::uint32_t id = guest.listen("m");
            (void)guest.pull();
            world.viz.flush();
            world.viz.unlisten(id);
        }
    });
    double last = 0.0;
    while (last < 20000.0 && !HasFailure()) {
        for (const CAudioVizDataMeter& record : probe.pull<CAudioVizDataMeter>("m")) {
            EXPECT_GT(record.value, last);
            EXPECT_EQ(record.peak, 2.0 * record.value);
            last = record.value;
        }
    }
    isDone = true;
    audio.join();
    visitor.join();
}

TEST(CAudioVizData, RecordsSurviveAStreamAndRefuseDamage)
{
    CTestModule module;
    CAudioVizDataInfo info;
    info.text = "clip";
    info.code = -7;
    CAudioVizDataSpectrum spectrum;
    spectrum.bins = {0.25, 0.5, 1e-300};
    spectrum.sampleRate = 48000.0;
    spectrum.blockSize = 4;
    spectrum.spectrumKind = 2;
    spectrum.average = 1.5;
    CAudioVizDataVScope scope;
    scope.samples = {1.0, -1.0};
    scope.marks = {3, 1, 2};
    CAudioVizDataRGB colour;
    colour.components = {0.1, 0.2, 0.3};
    CAudioVizDataMeter meter;
    CAudioVizData plain;
    for (CAudioVizData* record :
         std::initializer_list<CAudioVizData*>{&info, &spectrum, &scope, &colour, &meter, &plain}) {
        record->channel = 3;
        record->time = 2.5;
        CWriteSeqBuffer out;
        ASSERT_FALSE(record->save(out));
        CByteArray bytes;
        out.getContiguous(bytes);
        const auto load = [&](std::size_t count, CAudioVizData& into) {
            CMemoryReaderStatic in({bytes.data(), count});
            return errorText(into.load(in)).empty();
        };
        const auto copy = CAudioVizData::create(static_cast<std::int32_t>(record->type()));
        for (std::size_t count = 0; count < bytes.size(); ++count)
            ASSERT_FALSE(load(count, *copy));
        EXPECT_EQ(copy->channel, 0) << "nothing of a record that failed stays";
        ASSERT_TRUE(load(bytes.size(), *copy));
        CWriteSeqBuffer again;
        ASSERT_FALSE(copy->save(again));
        CByteArray bytesAgain;
        again.getContiguous(bytesAgain);
        EXPECT_TRUE(bytes == bytesAgain);
    }
    EXPECT_EQ(CAudioVizData::create(6), nullptr);
    CWriteSeqBuffer out;
    ASSERT_FALSE(plain.save(out));
    ASSERT_FALSE(out.writeInt32(0x7FFFFFFF)); // a count that is not there
    CByteArray bytes;
    out.getContiguous(bytes);
    CMemoryReaderStatic in(bytes.span());
    EXPECT_NE(errorText(spectrum.load(in)), "");
    EXPECT_EQ(spectrum.bins.size(), 3u);
}

TEST(CAudioVizReader, AQueueOfASourceWhoseWriterHasGoneKeepsTheLatest)
{
    CAudioVizReader reader;
    reader.addListener(-1, "a");
    for (int i = 0; i < 3; ++i)
        reader.add(-1, "a", encodeVizData(CAudioVizDataMeter()), 0);
    CWriteSeqBuffer out(64);
    ASSERT_FALSE(reader.write(out));
    CByteArray bytes;
    out.getContiguous(bytes);
    EXPECT_EQ(bytes[0], 1);
}

} // namespace
} // namespace qrb
