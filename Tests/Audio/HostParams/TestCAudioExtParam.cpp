// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/HostParams/CAudioExtParam.h"

#include "Audio/HostParams/CAudioCCTable.h"
#include "Audio/HostParams/CAudioExtParamHostBridge.h"
#include "Audio/HostParams/CAudioExtParamList.h"
#include "Core/CAppData.h"
#include "Core/CChunkId.h"
#include "Tests/Audio/AudioParamWorld.h"
#include "Tests/Support/CTempFolders.h"

#include <utility>

namespace qrb {
namespace {

class CBridge final : public CAudioExtParamHostBridge {
public:
    void onExtParamChange(std::int32_t index, double normal) override { told.emplace_back(index, normal); }

    std::vector<std::pair<std::int32_t, double>> told;
};

/// Rows of the definition "list": 1, 2, 3 in group 0, 4 in group 1, from -10 to 10.
class CAudioExtParamTest : public testing::Test {
protected:
    static std::string instance(const std::string& rows)
    {
        return R"(<root><audio:audio-env name="env"/><audio:param-collector name="params" env="env"/>
            <audio:ext-param-list name="rows">)" +
               rows + R"(</audio:ext-param-list><audio:cctable name="cc"/></root>)";
    }
    static std::string row(const std::string& name, int group, int element)
    {
        return "<audio:ext-param name='" + name + "' ext-name='" + name +
               "' param-collector='params' param-name='list' group='" + std::to_string(group) + "' element-index='" +
               std::to_string(element) + "'/>";
    }
    CAudioExtParam& at(std::size_t index) { return *m_rows.params()[index]; }

    CTempFolders m_folders;
    AudioParamWorld m_world{&m_folders};
    CObject& m_root = m_world.module.loadRoot(instance(row("first", 0, 0) + row("far", 1, 3) + row("Clipper", 0, 1)));
    CAudioParamCollector& m_collector = AudioParamWorld::paramsOf(m_root);
    CAudioExtParamList& m_rows = dynamic_cast<CAudioExtParamList&>(CTestModule::find(m_root, "rows"));
    CAudioParam& m_param = m_collector.getParam("list");
    CBridge m_bridge;
};

TEST_F(CAudioExtParamTest, GrowsAGroupUpToItsElementAndHearsOfTemplatesAndItsOwnPlaceOnly)
{
    EXPECT_EQ(at(0).getDefaultNormal(), 0.5); // nothing is known of the parameter yet
    at(0).setNormal(0.25);
    m_param.bindInfo(m_world.info("list"));
    for (std::size_t i = 0; i < 3; ++i)
        at(i).setBridge(&m_bridge, static_cast<std::int32_t>(i));
    m_collector.runDeferred();
    m_bridge.told.clear();

    at(1).setNormal(1.0);
    at(1).setNormal(1.0);
    const auto values = [&](std::int32_t group) {
        const CAudioParamGuard guard(m_collector);
        const std::span<const double> cells = m_param.editStorage(guard).cells(group);
        return std::vector<double>(cells.begin(), cells.end());
    };
    EXPECT_EQ(values(1), (std::vector<double>{4, 2, 3, 10}));
    m_collector.runDeferred();
    EXPECT_TRUE(m_bridge.told.empty());

    m_param.setElement(0, 2, 5.0); // no row of that place
    m_param.setElement(0, 1, 5.0, &at(1));
    m_param.setElement(0, 1, 0.0, &at(1));
    m_param.setElement(0, 0, 6.0, &at(0)); // its own
    m_collector.runDeferred();
    EXPECT_EQ(std::exchange(m_bridge.told, {}), (std::vector<std::pair<std::int32_t, double>>{{2, 0.5}}));

    AudioParamRecord defaults(m_param.info()->format, kAudioParamTemplateGroup, 0, {10.0}, true);
    defaults.update.source = &at(0);
    m_param.update(defaults.update);
    at(2).setBridge(nullptr, 2); // takes back what waits
    m_collector.runDeferred();
    EXPECT_TRUE(m_bridge.told.empty());
    EXPECT_EQ(at(0).getNormal(), 1.0);
    EXPECT_EQ(at(2).getNormal(), 1.0);
}

TEST_F(CAudioExtParamTest, NamesOfOneToSevenCharactersAreAccepted)
{
    std::string error;
    for (const char* const name : {"", "Clippers"}) {
        EXPECT_EQ(m_world.module.tryLoadRoot(instance(row(name, 0, 0)), error), nullptr);
        EXPECT_NE(error.find("Externalized parameter name '" + std::string(name) + "' is too long"), std::string::npos);
    }
    EXPECT_EQ(m_world.module.tryLoadRoot(instance(row("far", 32, 0)), error), nullptr);
}

TEST_F(CAudioExtParamTest, ControllerTableReadsTheUsersBlockAndSkipsWhatLeadsNowhere)
{
    auto& table = dynamic_cast<CAudioCCTable&>(CTestModule::find(m_root, "cc"));
    EXPECT_EQ(table.get(7), nullptr);
    CWriteSeqBuffer block;
    EXPECT_FALSE(block.writeInt32(9)); // more than there are
    for (const auto& [controller, path] :
         std::vector<std::pair<int, const char*>>{{7, "rows.Clipper"}, {8, "nowhere"}, {128, "rows.first"}}) {
        EXPECT_FALSE(block.writeInt32(controller));
        EXPECT_FALSE(block.writeString(path));
    }
    CByteArray bytes;
    block.getContiguous(bytes);
    CAppData::findScope("local")->writeData("ccmap", bytes, nullptr, chunkId("adat"));
    for (std::int32_t controller = -1; controller <= CAudioCCTable::kControllerCount; ++controller)
        EXPECT_EQ(table.get(controller), controller == 7 ? &at(2) : nullptr);
}

} // namespace
} // namespace qrb
