// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CMemoryReaderStatic.h"
#include "Tests/Audio/AudioParamWorld.h"
#include "Tests/Audio/Presets/CPresetWorld.h"

namespace qrb {
namespace {

CByteArray bytesOfText(std::string_view text)
{
    return CByteArray(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

TEST(CAudioPreset, StandsOnAStreamByteForByte)
{
    const CTestModule module;
    CAudioPreset preset;
    preset.name = "main:Mix: Glue";
    EXPECT_EQ(preset.registryId(), "main");
    EXPECT_EQ(preset.visibleName(), "Mix: Glue");
    preset.items["list"] = bytesOfText("abc");
    preset.items["gain"] = bytesOfText("");
    Bytes wanted;
    wanted << "main:Mix: Glue" << 2 << "gain" << 0 << "list" << 3;
    wanted.data.insert(wanted.data.end(), {'a', 'b', 'c'});
    EXPECT_EQ(savedBytes(preset), wanted.data);

    CAudioPresetBank bank;
    bank.name = "Bank";
    bank.presets.append(preset);
    Bytes bankBytes;
    bankBytes << "Bank" << 1;
    bankBytes.data.insert(bankBytes.data.end(), wanted.data.begin(), wanted.data.end());
    EXPECT_EQ(savedBytes(bank), bankBytes.data);

    CAudioPresetList list;
    list.banks.append(bank);
    std::vector<std::uint8_t> listBytes{1, 0, 0, 0};
    listBytes.insert(listBytes.end(), bankBytes.data.begin(), bankBytes.data.end());
    EXPECT_EQ(savedBytes(list), listBytes);
    CAudioPresetList again;
    EXPECT_FALSE(again.load(listBytes));
    EXPECT_EQ(savedBytes(again), listBytes);
    EXPECT_FALSE(again.load((Bytes() << -5).data));
    EXPECT_TRUE(again.banks.empty());

    // A name without separator is all name and belongs to no registry.
    preset.name = "Alone";
    EXPECT_EQ(preset.registryId(), "");
    EXPECT_EQ(preset.visibleName(), "Alone");
}

TEST(CAudioPreset, DamagedDataLeavesTheOldContent)
{
    const CTestModule module;
    CAudioPreset preset;
    preset.name = "old";
    const auto loads = [&](const std::vector<std::uint8_t>& bytes) {
        CMemoryReaderStatic in(bytes);
        return !preset.load(in);
    };
    const std::vector<std::uint8_t> good = (Bytes() << "new" << 2 << "k" << 0 << "k" << 0).data;
    for (std::size_t cut = 0; cut < good.size(); ++cut)
        EXPECT_FALSE(loads({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(cut)})) << cut;
    EXPECT_FALSE(loads((Bytes() << "new" << -1).data));
    EXPECT_FALSE(loads((Bytes() << "new" << 2000000000 << "k" << 0).data));
    EXPECT_FALSE(loads((Bytes() << "new" << 1 << "k" << -1).data));
    EXPECT_FALSE(loads((Bytes() << "new" << 1 << "k" << 2000000000).data));
    EXPECT_EQ(preset.name, "old");
    EXPECT_TRUE(loads(good));
    EXPECT_EQ(preset.items.size(), 1u);

    // Records of a few bytes each must not grow into a memory of another order: 9 MB of them are refused.
    Bytes banks;
    banks << 1 << "" << 2000000000;
    banks.data.resize(9u << 20);
    CAudioPresetList list;
    EXPECT_NE(errorText(list.load(banks.data)).find("Too many"), std::string::npos);
    banks.data.assign(64u << 10, 0);
    banks.data[3] = 0x7F;
    EXPECT_TRUE(list.load(banks.data));
    EXPECT_TRUE(list.banks.empty());
}

TEST(CAudioParamDef, StateNamesComeFromAListOfPresets)
{
    CAudioPresetList list;
    for (const char* const name : {"QBXT:Warm tube;Warm", "QBXT:Hard", "QBXT:Distorted", "QBXT:"})
        (list.banks.empty() ? list.banks.emplace() : list.banks[0]).presets.emplace().name = name;
    const auto names = [](const std::vector<std::uint8_t>& bytes) {
        CTempFolders folders;
        CTempFolders::write(folders.user() / "Quorbel/Audio Plug-Ins/Thumpcraft/modes",
                            chunked(bytes, kPresetListChunk));
        const CTestModule module(R"(<root><audio:cvt-real name="real" decimals="2"/><audio:param name="p"
            element-size="1" converter="real" min-values="0" max-values="3" def-values="0" state-names="@modes"/></root>)",
                                 CTestModuleOptions{{audioCreators()}, &folders});
        const CAudioParamInfo& info = module.shared<CAudioParamDef>("p").info();
        std::string joined;
        for (std::size_t i = 0; i < info.longStateNames.size(); ++i)
            joined += info.longStateNames[i].toUtf8() + "/" + info.shortStateNames[i].toUtf8() + " ";
        return joined;
    };
    EXPECT_EQ(names(savedBytes(list)), "Warm tube/Warm Hard/Hard Distorted/Distort / ");
    // A file that a user damaged costs the names, not the module.
    std::vector<std::uint8_t> damaged = savedBytes(list);
    damaged.resize(20);
    EXPECT_EQ(names(damaged), "");
}

} // namespace
} // namespace qrb
