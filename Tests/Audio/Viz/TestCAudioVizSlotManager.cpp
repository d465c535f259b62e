// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Audio/Viz/CAudioVizWriter.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CUpdateListener.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Audio/Viz/CVizProbe.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

#include <optional>

namespace qrb {
namespace {

const char* const kShared =
    "<shared><core:object name='audio'><core:object name='paramcvt'><audio:cvt-real name='real'/>"
    "<audio:cvt-text name='text'/></core:object><audio:viz-slot-manager name='viz-slot-manager'/>"
    "<audio:param name='slots' element-size='1' converter='audio.paramcvt.real' min-values='0' max-values='48' "
    "def-values='0'/><audio:param name='names' data-type='string' element-size='1' converter='audio.paramcvt.text' "
    "def-values='A,B'/></core:object></shared>";

std::string instanceXml()
{
    return "<root><audio:audio-env name='env'/><audio:param-collector name='params' env='env'/>"
           "<audio:viz-collector name='viz' env='env' param-collector='params' export-slot-param='slots' "
           "export-color-param='colors' instance-name-param='names' group-names-param='names'/></root>";
}

class CCounter : public CUpdateListener {
public:
    ~CCounter() override { detach(); }
    void onUpdate(const CUpdateInfo&) override { ++count; }
    int count = 0;
};

class TestCAudioVizSlotManager : public testing::Test {
protected:
    struct CInstance {
        explicit CInstance(CTestModule& module) : root(module.loadRoot(instanceXml()))
        {
            for (const char* name : {"slots", "colors"})
                params.getParam(name).bindInfo(module.shared<CAudioParamDef>("audio.slots").info());
            params.getParam("names").bindInfo(module.shared<CAudioParamDef>("audio.names").info());
            writer.open(&viz, "m", "", EAudioVizType::meter);
        }
        /// One record of a group in each of the clients' next fetches.
        void post(std::int32_t group, double value)
        {
            auto record = writer.take<CAudioVizDataMeter>();
            ASSERT_NE(record, nullptr);
            record->group = group;
            record->time = 1e6; // a clock far ahead
            record->value = value;
            writer.post(std::move(record));
        }

        CObject& root;
        CAudioVizCollector& viz = dynamic_cast<CAudioVizCollector&>(CTestModule::find(root, "viz"));
        CAudioParamCollector& params = dynamic_cast<CAudioParamCollector&>(CTestModule::find(root, "params"));
        CAudioVizWriter writer;
    };

    std::string names(CAudioVizCollector& viz)
    {
        CWriteSeqBuffer out;
        EXPECT_FALSE(viz.writeSlotNames(out));
        CByteArray bytes;
        out.getContiguous(bytes);
        CMemoryReaderStatic in(bytes.span());
        std::int32_t count = 0;
        EXPECT_FALSE(in.readInt32(count));
        std::string text;
        for (std::int32_t i = 0; i < count; ++i) {
            std::int32_t slot = 0;
            CString name;
            EXPECT_FALSE(in.readInt32(slot));
            EXPECT_FALSE(in.readString(name));
            text += std::to_string(slot) + "=" + name.toUtf8() + ";";
        }
        return text;
    }

    CTestModule m_module{kShared, audioCreators()};
};

TEST_F(TestCAudioVizSlotManager, ShowsAGroupOfOneInstanceInAnother)
{
    std::optional<CInstance> from(std::in_place, m_module);
    CInstance to(m_module);
    CCounter counter;
    counter.attach(&to.viz, CAudioVizCollector::kExportSlotNames);
    EXPECT_EQ(names(to.viz), "");
    CVizProbe probe(to.viz);
    (void)probe.listen("m", 12);
    EXPECT_FALSE(from->writer.isActive());

    from->params.getParam("slots").setElement(0, 1, 13.0);
    from->params.getParam("colors").setElement(0, 1, 4.0);
    EXPECT_TRUE(probe.pull().empty());
    EXPECT_EQ(names(to.viz), "12=A (B)|color=4;");
    EXPECT_EQ(counter.count, 1);
    EXPECT_TRUE(from->writer.isActive()) << "who is shown elsewhere has work to do";
    EXPECT_FALSE(to.writer.isActive());
    (void)probe.pull();
    from->post(0, 5.0);
    from->post(1, 7.0);
    const auto records = probe.pull<CAudioVizDataMeter>("m");
    ASSERT_EQ(records.size(), 1u) << "the other group is not exported";
    EXPECT_EQ(records[0].value, 7.0);
    EXPECT_EQ(records[0].serial, 12);
    EXPECT_EQ(records[0].time, 0.0) << "due at once, whatever the other's clock says";

    // Who has the slot keeps it, who comes next gets it.
    to.params.getParam("slots").setElement(0, 0, 13.0);
    EXPECT_EQ(names(to.viz), "12=A (B)|color=4;");
    from->writer.close();
    m_module.releaseRoot(from->root);
    from.reset();
    EXPECT_EQ(names(to.viz), "12=A (A)|color=0;");
    EXPECT_TRUE(to.writer.isActive());
    (void)probe.pull();
    to.post(0, 9.0);
    EXPECT_EQ(probe.pull<CAudioVizDataMeter>("m").size(), 1u);
    to.viz.unlisten((1u << 16) + 1);
    EXPECT_FALSE(to.writer.isActive());
}

} // namespace
} // namespace qrb
