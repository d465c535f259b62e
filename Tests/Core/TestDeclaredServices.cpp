// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAppData.h"
#include "Core/CAttrDoubler.h"
#include "Core/CLoopEventBridge.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CProcessState.h"
#include "Core/CSharedAttribute.h"
#include "Core/CStdEventBridge.h"
#include "Core/CTimer.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CSystemThread.h"
#include "Tests/Support/CTempFolders.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace qrb {
namespace {

/// Counts the events it listens to.
class CTickCounter : public CObject {
public:
    static void declare(CObjectClassInfo& info)
    {
        CObject::declare(info);
        info.event<&CTickCounter::onTick>("count");
    }
    CErrorPtr onTick()
    {
        ++m_ticks;
        return nullptr;
    }
    int m_ticks = 0;
};

constexpr CCreatorRow kRows[] = {creatorRow<CTickCounter>("test:counter")};

/// A tree on this thread with a message loop whose time the test moves.
class DeclaredServices : public testing::Test {
protected:
    /// Loads a document that may have a bridge: <ui:ui-event-bridge name="bridge"/>.
    CObject& load(const std::string& xml)
    {
        CObject& root = m_module.loadRoot(xml);
        if (CObject* const handler = root.findObject("bridge")) {
            m_bridge = std::make_unique<CLoopEventBridge>(m_loop, dynamic_cast<CStdEventBridge&>(*handler));
            root.setEventBridge(m_bridge.get());
        }
        return root;
    }
    template <class T>
    static T& find(CObject& root, const char* path)
    {
        return dynamic_cast<T&>(CTestModule::find(root, path));
    }
    std::string loadError(const std::string& xml)
    {
        std::string error;
        EXPECT_EQ(m_module.tryLoadRoot(xml, error), nullptr);
        return error.substr(0, error.find('\n'));
    }
    /// Two turns: what timers post comes in the second.
    void turnsAt(double seconds)
    {
        m_now = seconds;
        m_loop.pump();
        m_loop.pump();
    }

    double m_now = 0.0;
    platform::CMessageLoop m_loop{[this] { return m_now; }};
    CTempFolders m_folders;
    std::unique_ptr<CLoopEventBridge> m_bridge;
    CTestModule m_module{"<root/>", CTestModuleOptions{{kRows}, &m_folders}};
};

TEST_F(DeclaredServices, TimerIntervalsAreLimitedAndAbsentOnesNeverTick)
{
    const auto interval = [this](const char* attrs) {
        CObject& root = load(std::string("<root><core:timer name='t' ") + attrs + "/></root>");
        const double seconds = find<CTimer>(root, "t").interval();
        EXPECT_EQ(find<CTimer>(root, "t").isTicking(), seconds > 0.0) << attrs;
        m_module.releaseRoot(root);
        return seconds;
    };
    EXPECT_EQ(interval(""), 0.0);
    EXPECT_EQ(interval("fps='0'"), 1000.0);
    EXPECT_EQ(interval("fps='2000'"), 0.001);
    EXPECT_EQ(interval("interval='0'"), 0.001);
    EXPECT_EQ(interval("interval='words'"), 0.001);
    EXPECT_EQ(interval("interval='0.25'"), 0.25);
}

TEST_F(DeclaredServices, TimerRaisesItsTickThroughTheBridge)
{
    CObject& root = load("<root><ui:ui-event-bridge name='bridge'/><core:timer name='t' fps='4'/>"
                         "<test:counter name='c'/></root>");
    CTimer& timer = find<CTimer>(root, "t");
    CTickCounter& counter = find<CTickCounter>(root, "c");
    counter.listenObject(timer, "tick", "count");
    m_now = 0.25;
    m_loop.pump();
    EXPECT_EQ(counter.m_ticks, 0) << "never inside the loop's callback";
    m_loop.pump();
    EXPECT_EQ(counter.m_ticks, 1);

    m_now = 0.4;
    EXPECT_FALSE(timer.setAttr("fps", "4", ESetter::now));
    turnsAt(0.5);
    EXPECT_EQ(counter.m_ticks, 2) << "the same rate again must not restart the timer";
    EXPECT_FALSE(timer.setAttr("interval", "2", ESetter::now));
    turnsAt(2.4);
    EXPECT_EQ(counter.m_ticks, 2);
    turnsAt(2.5);
    EXPECT_EQ(counter.m_ticks, 3);
    timer.release();
    turnsAt(10.0);
    EXPECT_EQ(counter.m_ticks, 3);
}

TEST_F(DeclaredServices, TimerReleasedOnAnotherThreadStopsTicking)
{
    CObject& root = load("<root><ui:ui-event-bridge name='bridge'/><core:timer name='t' fps='4'/></root>");
    platform::CSystemThread other;
    ASSERT_EQ(other.start(
                  "other", [&] { m_module.releaseRoot(root); }, platform::EThreadPriority::normal),
              0);
    other.join();
    m_now = 1.0;
    EXPECT_EQ(m_loop.pump(), 1u) << "the system's timer, which this thread could not be asked to stop";
    m_now = 2.0;
    EXPECT_EQ(m_loop.pump(), 0u);
    EXPECT_TRUE(m_module.logLines().empty() || !m_module.hasLogged("tick"));
}

TEST_F(DeclaredServices, TimerOnAThreadWithoutLoopIsAnError)
{
    std::string error;
    platform::CSystemThread other;
    const auto body = [&] { error = loadError("<root><core:timer name='t' fps='1'/></root>"); };
    ASSERT_EQ(other.start("other", body, platform::EThreadPriority::normal), 0);
    other.join();
    EXPECT_EQ(error.substr(0, 21), "Timer creation error ");
}

TEST_F(DeclaredServices, SharedAttributeFollowsWritesOfAnyInstanceInALaterTurn)
{
    const char* const xml = "<root><ui:ui-event-bridge name='bridge'/>"
                            "<core:shared-attribute name='ui-scale' storage-type='local' attribute='x' def-value='1'/>"
                            "<core:object name='view'><core:object name='a' y='{*/ui-scale x}'/></core:object></root>";
    CObject& writer = m_module.loadRoot(xml);
    CObject& root = load(xml);
    EXPECT_EQ(find<CObject>(root, "ui-scale").getAttrString("x"), "1");
    EXPECT_EQ(find<CObject>(root, "view.a").getAttrString("y"), "1");
    platform::CSystemThread other;
    const auto write = [&] { find<CSharedAttribute>(writer, "ui-scale").setValue("{x}2"); };
    ASSERT_EQ(other.start("other", write, platform::EThreadPriority::normal), 0);
    other.join();
    EXPECT_EQ(find<CObject>(root, "ui-scale").getAttrString("x"), "1");
    m_loop.pump();
    EXPECT_EQ(find<CObject>(root, "ui-scale").getAttrString("x"), "{x}2") << "stored text is not expanded";
    EXPECT_EQ(find<CObject>(root, "view.a").getAttrString("y"), "{x}2");
    EXPECT_EQ(find<CObject>(writer, "ui-scale").getAttrString("x"), "1") << "no bridge, no update";
    EXPECT_FALSE(find<CSharedAttribute>(writer, "ui-scale").load());
    EXPECT_EQ(find<CObject>(writer, "ui-scale").getAttrString("x"), "{x}2");

    find<CSharedAttribute>(root, "ui-scale").setValue("3");
    CTestModule::find(root, "ui-scale").release();
    m_loop.pump(); // the event for the one that is gone
    EXPECT_EQ(processState().appDataLocal->getString("ui-scale"), "3");
}

TEST_F(DeclaredServices, SharedAttributeRefusesWrongDeclarations)
{
    EXPECT_EQ(loadError("<root><core:shared-attribute name='s' storage-type='here' attribute='x'/></root>"),
              "Invalid storage type \"here\" specified.");
    EXPECT_EQ(loadError("<root><core:shared-attribute name='s' storage-type='group'/></root>"),
              "No attached attribute name specified.");
}

TEST_F(DeclaredServices, AttrDoublerHandsItsValueToAllTargets)
{
    CObject& root = load("<root><core:object name='source' v='1'/><core:object name='a'/><core:object name='b'/>"
                         "<core:attr-doubler name='d' target='a  b' attr='copy' value='{*/source v}'/></root>");
    const auto copies = [&] {
        return find<CObject>(root, "a").getAttrString("copy") + find<CObject>(root, "b").getAttrString("copy");
    };
    EXPECT_EQ(copies(), "11");
    EXPECT_FALSE(find<CObject>(root, "source").setAttr("v", "2"));
    EXPECT_EQ(copies(), "22");
    find<CObject>(root, "a").release();
    EXPECT_FALSE(find<CObject>(root, "source").setAttr("v", "3"));
    EXPECT_EQ(find<CObject>(root, "b").getAttrString("copy"), "3") << "a target may go first";
    EXPECT_EQ(loadError("<root><core:attr-doubler name='d' target='  ' attr='x'/></root>"),
              "No target objects specified.");
    EXPECT_EQ(loadError("<root><core:attr-doubler name='d' target='nobody' attr='x'/></root>"),
              "Target object 'nobody' not found.");
}

} // namespace
} // namespace qrb
