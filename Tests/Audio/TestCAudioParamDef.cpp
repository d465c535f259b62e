// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Core/CMemoryReaderStatic.h"
#include "Tests/Audio/AudioParamWorld.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace qrb {
namespace {

constexpr const char* kGood = R"(element-size="1" converter="real" min-values="0" max-values="9" def-values="1")";

/// The error of a document with that node, or "".
std::string failure(CTestModule& module, const std::string& node)
{
    std::string error;
    const std::string xml =
        R"(<root><audio:cvt-real name="real" decimals="2"/><audio:cvt-text name="text"/>)" + node + "</root>";
    (void)module.tryLoadRoot(xml, error);
    return error;
}

TEST(CAudioParamDef, RefusesWhatIsDeclaredWrongly)
{
    CTestModule module("<root/>", audioCreators());
    const std::pair<const char*, const char*> cases[] = {
        {R"(def-values="1")", "Invalid element size 0 specified."},
        {R"(element-size="2" data-type="raw")", "Invalid element size 2 for non-float data specified."},
        {R"(element-size="2" converter="real")", "Not enough converters defined 1 (should be 2)."},
        {R"(element-size="1" converter="nobody")", "Audio parameter converter 'nobody' not found."},
        {R"(element-size="2" converter="real" converter2="real" min-values="1")",
         "Not enough minimum values defined 1 (should be 2)."},
        {R"(element-size="1" converter="real" min-values="1")", "Not enough maximum values defined 0 (should be 1)."},
        {R"(element-size="1" converter="real" min-values="1" max-values="1")",
         "Zero default min-max values difference detected in element 0."},
        {R"(element-size="1" converter="real" min-values="1" max-values="2")", "No default values specified."},
        {R"(element-size="1" converter="real" min-values="1" max-values="2" def-values="one")",
         "Default values parsing error."},
        {R"(element-size="2" converter="real" converter2="real" min-values="0 0" max-values="1 1" def-values="0 1,0")",
         "Not enough default elements at pos 3."},
        {R"(element-size="1" converter="real" min-values="0" max-values="9" def-values="1" state-names="@no-such-list")",
         "No state names data available in 'no-such-list'."},
    };
    EXPECT_EQ(failure(module, std::string("<audio:param name='p' ") + kGood + "/>"), "");
    for (const auto& [attributes, message] : cases)
        EXPECT_EQ(failure(module, std::string("<audio:param name='p' ") + attributes + "/>").find(message), 0u)
            << attributes;
}

TEST(CAudioParamDef, ReadsDefaultsBoundsAndFlags)
{
    AudioParamWorld world;
    const CAudioParamInfo& list = world.info("list");
    EXPECT_EQ(numbers(list.defaults.cells(0)), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(numbers(list.defaults.cells(1)), (std::vector<double>{4}));
    EXPECT_EQ(numbers(list.defaultCells()), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(list.longStateNames[1], "Maximum");
    EXPECT_EQ(list.shortStateNames[0], "Lo-shlf");
    EXPECT_TRUE(list.isStorable && list.isGlobal);
    // Bounds stand in either order: the second component goes from 10 down to -10.
    const CAudioParamInfo& pair = world.info("pair");
    EXPECT_EQ(pair.clamped(1, 99.0), 10.0);
    EXPECT_EQ(pair.clamped(1, -99.0), -10.0);
    // Persistent wins over storable.
    EXPECT_TRUE(world.info("one").isPersistent && world.info("one").isGlobal && !world.info("one").isStorable);
    EXPECT_EQ(texts(world.info("text").defaults, 0), "L|R|IN3|");

    CObject& root = world.module.loadRoot(R"(<root><audio:cvt-text name="text"/><audio:param name="name"
        element-size="1" data-type="str" converter="^text" def-values=" "/></root>)");
    const auto& blank = dynamic_cast<CAudioParamDef&>(CTestModule::find(root, "name")).info();
    EXPECT_EQ(blank.defaults.text(0, 0), " ");
    EXPECT_EQ(blank.components[0].converterPath, "text");
}

TEST(CAudioParamDef, ItsDescriptionIsReadBackFromBytes)
{
    AudioParamWorld world;
    Bytes expected;
    expected << 1 << 1 << 1 << 0 << "List"
             << "def.list"
             << "" << 1 << 0 << 0 << 0 << "cvt.real" << -10.0 << 10.0;
    expected << 2 << "Lo-shelf"
             << "Lo-shlf"
             << "Maximum"
             << "Maximum";
    expected << 1 << 1 << 0 << 2 << 3 << 1.0 << 2.0 << 3.0 << 1 << 4.0;
    EXPECT_EQ(bytesOf(world.info("list")), expected.data);

    CAudioParamInfo read;
    for (std::size_t size = 0; size < expected.data.size(); ++size) {
        CMemoryReaderStatic cut(std::span<const std::uint8_t>(expected.data).first(size));
        EXPECT_TRUE(bool(read.load(cut))) << size;
        EXPECT_TRUE(read.components.empty());
    }
    CMemoryReaderStatic whole(expected.data);
    EXPECT_EQ(errorText(read.load(whole)), "");
    EXPECT_EQ(bytesOf(read), expected.data);
    EXPECT_EQ(read.components[0].converter, world.info("list").components[0].converter);
    EXPECT_EQ(numbers(read.defaultCells()), (std::vector<double>{1, 2, 3}));
    auto broken = expected.data;
    std::fill(broken.end() - 8, broken.end(), std::uint8_t{0xFF});
    CMemoryReaderStatic noNumber(broken);
    EXPECT_TRUE(bool(read.load(noNumber))) << "a default has to be a number";
    expected.data[0] = 2;
    CMemoryReaderStatic other(expected.data);
    EXPECT_EQ(errorText(read.load(other)).find("Unsupported data set version 2."), 0u);
}

TEST(CAudioParamRemapDef, TakesPairsFromAttributesAndText)
{
    CTestModule module("<root/>", audioCreators());
    CObject& root = module.loadRoot(R"(<root><audio:param-remap name="m" orig=" a " new="/b.c">
        <content name="content" value="d = e ; f=^g"/></audio:param-remap>
        <audio:param-remap name="n"><content name="content" value="d=e  f=g"/></audio:param-remap></root>)");
    const auto& pairs = dynamic_cast<CAudioParamRemapDef&>(CTestModule::find(root, "m")).pairs();
    ASSERT_EQ(pairs.size(), 3u);
    EXPECT_EQ(pairs[0].original + ">" + pairs[0].renamed, "a>/b.c");
    EXPECT_EQ(pairs[1].original + ">" + pairs[1].renamed, "d>e");
    EXPECT_EQ(pairs[2].original + ">" + pairs[2].renamed, "f>^g");
    EXPECT_EQ(dynamic_cast<CAudioParamRemapDef&>(CTestModule::find(root, "n")).pairs().size(), 2u);
    EXPECT_EQ(failure(module, "<audio:param-remap name='m'/>").find("No remappings defined."), 0u);
    EXPECT_EQ(failure(module, "<audio:param-remap name='m'><content name='content' value='a=b=c'/></audio:param-remap>")
                  .find("Invalid remapping string 'a=b=c' defined."),
              0u);
    const std::pair<const char*, const char*> cases[] = {
        {"<audio:param-alloc name='a' index='1'/>", "Invalid parameter name specified."},
        {"<audio:param-alloc name='a' param-name='p' index='-1'/>", "Invalid parameter's 'p' index '-1' specified."},
        {"<audio:param-shared-storage name='a'/>", "Invalid parameter name specified."},
        {"<audio:param-shared-storage name='a' param='p'/>", "Invalid shared data name specified."},
        {"<audio:param-shared-storage name='a' param='p' data-name='d' storage-type='far'/>",
         "Invalid storage type \"far\" specified."},
    };
    for (const auto& [node, message] : cases)
        EXPECT_EQ(failure(module, node).find(message), 0u) << node;
}

} // namespace
} // namespace qrb
