// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CPluginProject.h"

#include "Core/CObject.h"
#include "Tests/Audio/CWrapperWorld.h"

#include <gtest/gtest.h>

namespace qrb {
namespace {

class CPluginProjectTest : public testing::Test {
protected:
    /// First line of the failure, or empty. `attrs` come behind those of a good project and win.
    std::string read(const char* name, const char* value)
    {
        CObject& root = m_module.loadRoot("<root " + goodProject() + "/>");
        EXPECT_FALSE(root.setAttr(name, value));
        const CErrorPtr error = m_project.read(root);
        return error ? error->line(0).toUtf8() : std::string();
    }

    CTestModule m_module;
    CPluginProject m_project;
};

TEST_F(CPluginProjectTest, GoodValuesArriveAndBadOnesAreNamed)
{
    EXPECT_EQ(read("app-version", "1.2"), "");
    EXPECT_EQ(m_project.version, (std::array<int, 3>{1, 2, 0}));
    EXPECT_EQ(m_project.code, 0x74657374u);
    EXPECT_EQ(m_project.internalChannelCount, 8);
    EXPECT_EQ(read("app-version", "10.20.30"), "");
    EXPECT_EQ(m_project.version, (std::array<int, 3>{10, 20, 30}));
    for (const char* bad : {"1", "1.", "1.x", "1.-2", "1.2.3.4", ""})
        EXPECT_EQ(read("app-version", bad), std::string("Invalid version specification in string '") + bad + "'.");
    EXPECT_EQ(read("app-name", ""), "Plug-in name is empty.");
    EXPECT_EQ(read("app-vendor", ""), "Vendor name is empty.");
    EXPECT_EQ(read("plugin-code", "abcde"), "Invalid plug-in code in string 'abcde'.");
    for (const char* bad : {"0", "17"})
        EXPECT_EQ(read("plugin-intchannel-count", bad), "Invalid 'plugin-intchannel-count' attribute value.");
    for (const char* bad : {"0", "9"})
        EXPECT_EQ(read("plugin-group-count", bad), "Invalid 'plugin-group-count' attribute value.");
}

TEST_F(CPluginProjectTest, TailIsOptionalAndRubbishMeansTheUsualOne)
{
    EXPECT_EQ(read("plugin-tail", "1.5"), "");
    EXPECT_EQ(m_project.tailSeconds, 1.5);
    EXPECT_EQ(read("plugin-tail", ""), "");
    EXPECT_FALSE(m_project.tailSeconds.has_value());
    EXPECT_EQ(read("plugin-tail", "long"), "");
    EXPECT_EQ(m_project.tailSeconds, 0.4);
}

} // namespace
} // namespace qrb
