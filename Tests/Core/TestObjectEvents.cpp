// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CApplication.h"
#include "Core/CNotifyServer.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Core/CObjectEventBridge.h"
#include "Core/CStdEventBridge.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CSystemThread.h"
#include "Tests/Support/CTestModule.h"

#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <vector>

namespace qrb {

namespace {

class CEar : public CObject {
public:
    static void declare(CObjectClassInfo& info)
    {
        CObject::declare(info);
        info.event<&CEar::onPlain>("plain");
        info.event<&CEar::onArgs>("with-args");
    }
    CErrorPtr onPlain() { return hear("plain"); }
    CErrorPtr onArgs(const CEventArgs& args)
    {
        return hear(args.getString("event-name").toUtf8() + "<" + args.getString("sender").toUtf8() + ":" +
                    args.getString("v").toUtf8());
    }

    static std::string heard;
    std::function<void()> action;

private:
    CErrorPtr hear(const std::string& what)
    {
        heard += getName().toUtf8() + "=" + what + " ";
        if (action)
            std::exchange(action, nullptr)();
        if (getAttrBool("fails"))
            return QRB_ERROR("@qrbstr_CEar_hear Deaf.");
        return {};
    }
};

std::string CEar::heard;

/// Keeps what is posted until a test hands it on.
class CQueueBridge : public CObjectEventBridge {
public:
    [[nodiscard]] CErrorPtr post(const CEventArgs& args) override
    {
        const std::lock_guard guard(m_lock);
        m_posted.push_back(args);
        return {};
    }
    std::size_t handOn(CStdEventBridge& handler)
    {
        std::vector<CEventArgs> posted;
        {
            const std::lock_guard guard(m_lock);
            posted.swap(m_posted);
        }
        for (const CEventArgs& args : posted)
            EXPECT_FALSE(handler.handlePostedEvent(args));
        return posted.size();
    }

private:
    std::mutex m_lock;
    std::vector<CEventArgs> m_posted;
};

constexpr CCreatorRow kRows[] = {creatorRow<CEar>("test:ear")};
const char* const kTree = R"(<root><test:ear name="s"/><test:ear name="a"/><test:ear name="b"/><test:ear name="c"/>
                              <ui:ui-event-bridge name="bridge"/></root>)";

class ObjectEvents : public testing::Test {
protected:
    ObjectEvents() : module("<root/>", kRows), root(module.loadRoot(kTree))
    {
        CEar::heard.clear();
        root.setEventBridge(&bridge);
    }
    CEar& ear(const char* name) { return dynamic_cast<CEar&>(CTestModule::find(root, name)); }
    void listenAll()
    {
        for (const char* const name : {"b", "a", "c"})
            ear(name).listenObject(ear("s"), "e", "plain");
    }
    std::string raise()
    {
        CEar::heard.clear();
        const std::string error = errorText(ear("s").raiseEvent("e"));
        return error.empty() ? CEar::heard : CEar::heard + error;
    }
    CStdEventBridge& handler() { return dynamic_cast<CStdEventBridge&>(CTestModule::find(root, "bridge")); }

    CQueueBridge bridge;
    CTestModule module;
    CObject& root;
};

} // namespace

TEST_F(ObjectEvents, RunByName)
{
    CEventArgs args;
    args.set("v", 3.0);
    EXPECT_FALSE(ear("a").runEvent("plain", args));
    EXPECT_FALSE(ear("a").runEvent("with-args", args));
    EXPECT_FALSE(ear("a").runEvent("with-args"));
    EXPECT_EQ(CEar::heard, "a=plain a=<:3.0000 a=<: ");
    EXPECT_EQ(errorText(ear("a").runEvent("nothing")).substr(0, 24), "Unknown event 'nothing'.");
}

TEST_F(ObjectEvents, ReachListenersInTheOrderOfRegistration)
{
    listenAll();
    ear("b").listenObject(ear("s"), "e", "plain");     // once is enough
    ear("c").listenObject(ear("s"), "e", "with-args"); // another handler takes the place
    ear("a").listenObject(ear("b"), "e", "plain");     // another sender
    ear("a").listenObject(ear("s"), "f", "plain");     // another event
    ear("a").listenObject(ear("s"), "e", "no-such-handler");
    EXPECT_TRUE(module.hasLogged("Event handler 'no-such-handler' not found in listenObject()."));
    EXPECT_EQ(raise(), "b=plain a=plain c=e<s: ");
    ear("a").unlistenObject(ear("s"), "e");
    EXPECT_EQ(raise(), "b=plain c=e<s: ");
    EXPECT_FALSE(ear("b").setAttr("fails", "true"));
    EXPECT_EQ(raise().substr(0, 13), "b=plain Deaf.");
}

TEST_F(ObjectEvents, ListenersThatGoDuringDeliveryAreNotCalled)
{
    listenAll();
    ear("b").action = [this] { ear("c").unlistenObject(ear("s"), "e"); };
    EXPECT_EQ(raise(), "b=plain a=plain ");
    ear("b").action = [this] { ear("a").release(); };
    EXPECT_EQ(raise(), "b=plain ");
    ear("b").action = [this] { ear("c").listenObject(ear("s"), "e", "plain"); };
    EXPECT_EQ(raise(), "b=plain "); // who joins waits for the next delivery
    EXPECT_EQ(raise(), "b=plain c=plain ");
    // Nested: the inner delivery removes a listener that the outer one still has before it.
    ear("b").action = [this] {
        ear("b").action = [this] { ear("c").release(); };
        EXPECT_FALSE(ear("s").raiseEvent("e"));
    };
    EXPECT_EQ(raise(), "b=plain b=plain ");
}

TEST_F(ObjectEvents, SenderListenerOrTreeMayGoInAHandler)
{
    listenAll();
    ear("b").action = [this] { ear("s").release(); };
    EXPECT_EQ(raise(), "b=plain ");
    CObject* other = &module.loadRoot(kTree);
    other->setEventBridge(&bridge);
    auto& sender = dynamic_cast<CEar&>(CTestModule::find(*other, "s"));
    auto& listener = dynamic_cast<CEar&>(CTestModule::find(*other, "a"));
    listener.listenObject(sender, "e", "plain");
    ear("a").listenObject(sender, "e", "plain"); // from another tree, which outlives the sender's
    ear("a").action = [this, other] { module.releaseRoot(*other); };
    CEar::heard.clear();
    EXPECT_FALSE(sender.raiseEvent("e"));
    EXPECT_EQ(CEar::heard, "a=plain a=plain ");
    ear("a").release();
}

TEST_F(ObjectEvents, NoThreadNoDelivery)
{
    CObject& other = module.loadRoot(kTree);
    auto& listener = dynamic_cast<CEar&>(CTestModule::find(other, "a"));
    listener.listenObject(CTestModule::find(other, "s"), "e", "plain");
    EXPECT_FALSE(CTestModule::find(other, "s").raiseEvent("e"));
    listener.listenObject(module.shared(), "e", "plain"); // no notify server there
    EXPECT_FALSE(module.shared().raiseEvent("e"));
    EXPECT_EQ(CEar::heard, "");
}

TEST_F(ObjectEvents, PostedEventsFindTheirListenerOrNobody)
{
    ear("a").listenObject(ear("s"), "e", "with-args");
    CEventArgs args;
    args.set("v", "1");
    EXPECT_FALSE(ear("s").raiseEvent("e", args, EPost::always));
    EXPECT_EQ(CEar::heard, "");
    EXPECT_EQ(bridge.handOn(handler()), 1u);
    EXPECT_EQ(CEar::heard, "a=e<s:1 ");

    CEar::heard.clear();
    EXPECT_FALSE(ear("s").raiseEvent("e", args, EPost::always));
    ear("a").release();
    CObject* successor = nullptr;
    ASSERT_FALSE(root.createChild(successor, "test:ear", "a", ERequireTemplate::no));
    EXPECT_EQ(bridge.handOn(handler()), 1u);
    EXPECT_EQ(CEar::heard, ""); // the name is the same, the object is not
}

TEST_F(ObjectEvents, CrossThreadsThroughTheBridge)
{
    ear("a").listenObject(ear("s"), "e", "with-args");
    CEar& sender = ear("s");
    CEar& doomed = ear("c");
    platform::CSystemThread thread;
    ASSERT_EQ(thread.start(
                  "raiser",
                  [&] {
                      CEventArgs args;
                      for (std::int32_t i = 0; i < 100; ++i) {
                          args.set("v", i);
                          EXPECT_FALSE(sender.raiseEvent("e", args));
                      }
                      EXPECT_FALSE(doomed.releaseBridged());
                  },
                  platform::EThreadPriority::normal),
              0);
    std::size_t handed = 0;
    while (handed < 50) // meanwhile, listeners come and go here
        handed += bridge.handOn(handler()), ear("b").listenObject(sender, "e", "plain"),
            ear("b").unlistenObject(sender, "e");
    thread.join();
    bridge.handOn(handler());
    EXPECT_NE(CEar::heard.find("a=e<s:99 "), std::string::npos);
    EXPECT_EQ(root.findObject("c"), nullptr);
}

} // namespace qrb
