// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/Viz/CAudioInterfaceVizRequests.h"
#include "Audio/Viz/CAudioVizDataMeter.h"
#include "Audio/Viz/CVizExchange.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CTimer.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/CMessageLoop.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace qrb {
namespace {

/// Interface client that only writes down what is asked of it.
class CFakeClient : public CObject, public CAudioInterfaceVizRequests {
public:
    std::int32_t listenViz(std::int32_t kind, const CString& name) override
    {
        log += "+" + std::to_string(kind) + name.toUtf8();
        return ++lastId;
    }
    void unlistenViz(std::int32_t id) override { log += "-" + std::to_string(id); }
    void requestVizData(double time) override
    {
        ++requestCount;
        lastTime = time;
    }
    void requestExportSlotNames() override { log += "?"; }
    void setVizProcessor(CAudioInterfaceVizProcessor* newProcessor) override { processor = newProcessor; }

    std::string log;
    std::int32_t lastId = 0;
    int requestCount = 0;
    double lastTime = 0.0;
    CAudioInterfaceVizProcessor* processor = nullptr;
};

class CListener : public CVizListener {
public:
    void onVizIdle(const CVizListenerEntry&) override { log += "i"; }
    void onVizData(const CVizListenerEntry&, const CAudioVizData& data) override
    {
        log += std::to_string(static_cast<int>(dynamic_cast<const CAudioVizDataMeter&>(data).value)) + " ";
        if (onData)
            onData();
    }
    std::string take() { return std::exchange(log, {}); }

    std::string log;
    std::function<void()> onData;
};

/// A "viz-data" message in the making.
class CMessage {
public:
    explicit CMessage(double streamTime) { EXPECT_FALSE(out.writeDouble(streamTime)); }
    CMessage& source(const char* name, std::int32_t count)
    {
        EXPECT_FALSE(out.writeInt32(count));
        EXPECT_FALSE(out.writeString(name));
        return *this;
    }
    CMessage& meter(double time, double value, std::int32_t serial = -1, std::int32_t type = 0, std::int32_t size = 40)
    {
        CAudioVizDataMeter record;
        record.time = time;
        record.value = value;
        record.serial = serial;
        EXPECT_FALSE(out.writeInt32(size));
        EXPECT_FALSE(out.writeInt32(type));
        EXPECT_FALSE(record.save(out));
        return *this;
    }
    std::string send(CVizExchange& exchange, std::size_t cut = 0)
    {
        EXPECT_FALSE(out.writeInt32(0));
        CByteArray bytes;
        out.getContiguous(bytes);
        CMemoryReaderStatic in({bytes.data(), bytes.size() - cut});
        return errorText(exchange.onVizData(in));
    }

    CWriteSeqBuffer out;
};

class TestCVizExchange : public testing::Test {
protected:
    static constexpr CCreatorRow kRows[] = {creatorRow<CFakeClient>("test:client")};

    platform::CMessageLoop m_loop;
    CTestModule m_module{"<root/>", CTestModuleOptions{{audioCreators(), kRows}, nullptr}};
    CObject& m_root = m_module.loadRoot(
        "<root><test:client name='client'/><ui:viz-exchange name='exchange' interface-client='client' "
        "timer-tag='core:timer' fps='10' inactive-timeout='0.6'/></root>");
    CFakeClient& m_client = dynamic_cast<CFakeClient&>(CTestModule::find(m_root, "client"));
    CVizExchange& m_exchange = dynamic_cast<CVizExchange&>(CTestModule::find(m_root, "exchange"));
    CListener m_a;
    CListener m_b;
};

TEST_F(TestCVizExchange, AsksForEachSourceOnceAndFetchesOnItsTimer)
{
    EXPECT_EQ(m_client.processor, &m_exchange);
    EXPECT_EQ(dynamic_cast<CTimer&>(CTestModule::find(m_root, "exchange.timer")).interval(), 0.1);
    m_exchange.tick(1.0);
    EXPECT_EQ(m_client.requestCount, 0) << "nobody listens";
    const std::int32_t first = m_exchange.addListener("x", m_a, 1.0);
    const std::int32_t second = m_exchange.addListener("x", m_b, 1.0);
    const std::int32_t third = m_exchange.addListener("x", m_b, 1.0, 5);
    EXPECT_EQ(m_client.log, "+-1x+5x");
    m_exchange.tick(7.5);
    EXPECT_EQ(m_client.requestCount, 1);
    EXPECT_EQ(m_client.lastTime, 7.5);
    m_exchange.removeListener(first);
    m_exchange.removeListener(first);
    m_exchange.removeListener(third);
    EXPECT_EQ(m_client.log, "+-1x+5x-2");
    m_exchange.removeListener(second);
    EXPECT_EQ(m_client.log, "+-1x+5x-2-1");
    (void)m_exchange.addListener("y", m_a, 1.0);
    m_exchange.release();
    EXPECT_EQ(m_client.log, "+-1x+5x-2-1+-1y-3");
    EXPECT_EQ(m_client.processor, nullptr);
}

TEST_F(TestCVizExchange, HoldsRecordsBackUntilTheirTime)
{
    (void)m_exchange.addListener("x", m_a, 1.0);
    (void)m_exchange.addListener("y", m_b, 1.0);
    (void)m_exchange.addListener("x", m_b, 1.0, 5);
    EXPECT_EQ(CMessage(1.0).source("x", 3).meter(3.0, 3).meter(0.5, 1).meter(2.0, 2).source("y", 1).meter(2.5, 9).send(
                  m_exchange),
              "");
    EXPECT_EQ(m_a.take(), "1 ");
    EXPECT_EQ(CMessage(2.5).source("x", 2).meter(2.4, 4).meter(0.0, 8, 5).send(m_exchange), "");
    EXPECT_EQ(m_a.take(), "2 4 ");
    EXPECT_EQ(m_b.take(), "9 8 ") << "a slot's records are for who asked for the slot";
    ASSERT_FALSE(m_exchange.onClearClient());
    EXPECT_EQ(CMessage(9.0).send(m_exchange), "");
    EXPECT_EQ(m_a.take(), "") << "what was held back is gone";
}

TEST_F(TestCVizExchange, TellsIdleListenersOnce)
{
    (void)m_exchange.addListener("x", m_a, 0.35); // three ticks of 100 ms
    (void)m_exchange.addListener("x", m_b, 0.0);  // the exchange's own six
    const auto tick = [&](int count) {
        for (int i = 0; i < count; ++i)
            m_exchange.tick(0.0);
        return m_a.take() + "/" + m_b.take();
    };
    EXPECT_EQ(tick(2), "/");
    EXPECT_EQ(tick(1), "i/");
    EXPECT_EQ(tick(2), "/");
    EXPECT_EQ(tick(10), "/i");
    EXPECT_EQ(CMessage(1.0).source("x", 1).meter(0.5, 1).send(m_exchange), "");
    EXPECT_EQ(tick(3), "1 i/1 ");
    ASSERT_FALSE(m_exchange.onStopViz());
    EXPECT_EQ(tick(20), "/i");
    ASSERT_FALSE(m_exchange.onStartViz());
    EXPECT_EQ(tick(20), "i/i");
}

TEST_F(TestCVizExchange, SkipsUnknownTypesAndStopsAtDamage)
{
    (void)m_exchange.addListener("x", m_a, 1.0);
    EXPECT_EQ(CMessage(1.0).source("x", 2).meter(0.5, 1, -1, 77).meter(0.5, 2).send(m_exchange), "");
    EXPECT_EQ(m_a.take(), "2 ");
    EXPECT_NE(CMessage(1.0).source("x", 2).meter(0.5, 1).meter(0.5, 2).send(m_exchange, 20), "");
    EXPECT_EQ(m_a.take(), "1 ") << "what came before the damage counts";
    for (const std::int32_t size : {-1, 39, 0x7FFFFFFF})
        EXPECT_NE(CMessage(1.0).source("x", 1).meter(0.5, 1, -1, 0, size).send(m_exchange), "") << size;
    EXPECT_NE(CMessage(1.0).source("x", -1).send(m_exchange), "");
    EXPECT_EQ(m_a.take(), "");
    CMessage flood(0.0);
    flood.source("x", 5000);
    for (int i = 0; i < 5000; ++i)
        flood.meter(1.0 + i, i);
    EXPECT_EQ(flood.send(m_exchange), "");
    EXPECT_FALSE(m_a.take().empty()) << "what is held back is bounded";
}

TEST_F(TestCVizExchange, ListenersComeAndGoWhileTheyAreCalled)
{
    std::int32_t handle = m_exchange.addListener("x", m_a, 1.0);
    (void)m_exchange.addListener("x", m_b, 1.0);
    m_a.onData = [&] {
        m_exchange.removeListener(handle);
        handle = m_exchange.addListener("z", m_a, 1.0);
    };
    EXPECT_EQ(CMessage(1.0).source("x", 2).meter(0.5, 1).meter(0.5, 2).send(m_exchange), "");
    EXPECT_EQ(m_a.take() + "/" + m_b.take(), "1 /1 2 ");
}

TEST_F(TestCVizExchange, KeepsTheNamesOfExportSlots)
{
    CWriteSeqBuffer out;
    ASSERT_FALSE(out.writeInt32(1));
    ASSERT_FALSE(out.writeInt32(12));
    ASSERT_FALSE(out.writeString("Drums (2)|color=3"));
    CByteArray bytes;
    out.getContiguous(bytes);
    CMemoryReaderStatic in(bytes.span());
    EXPECT_EQ(errorText(m_exchange.onExportSlotNames(in)), "");
    EXPECT_EQ(m_exchange.exportSlotNames().at(12), "Drums (2)|color=3");
    CMemoryReaderStatic cut({bytes.data(), bytes.size() - 1});
    EXPECT_NE(errorText(m_exchange.onExportSlotNames(cut)), "");
    EXPECT_EQ(m_exchange.exportSlotNames().size(), 1u);
}

} // namespace
} // namespace qrb
