// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"
#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Core/CApplication.h"
#include "Core/CModule.h"
#include "Core/CObject.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Tools/DocCompiler/DocCompiler.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr const char* kShared = R"(<root><audio:cvt-real name="real" decimals="2"/>
    <audio:param name="p" element-size="1" converter="real" min-values="0" max-values="1" def-values="0,0,0,0"/></root>)";
constexpr const char* kInstance =
    R"(<root><audio:audio-env name="env"/><audio:param-collector name="params" env="env"/></root>)";

void check(qrb::CErrorPtr error)
{
    if (error) {
        std::fprintf(stderr, "%s\n", error->text().toUtf8().c_str());
        std::abort();
    }
}

/// A module with one instance of one parameter.
class World {
public:
    World()
    {
        qrb::CModuleConfig config;
        config.creators.append(qrb::audioCreators());
        config.resourceBytes.emplace("SharedData.xml", m_shared.bytes);
        config.resourceBytes.emplace("Instance.xml", m_instance.bytes);
        config.sharedDocument = "SharedData.xml";
        check(qrb::CModule::enter(config));
        check(qrb::CApplication::initRootObject(m_root, "Instance.xml"));
        collector = dynamic_cast<qrb::CAudioParamCollector*>(m_root->findObject("params"));
        param = &collector->getParam("p");
        param->bindInfo(dynamic_cast<qrb::CAudioParamDef*>(qrb::processState().sharedObject->findObject("p"))->info());
        param->attachReader(storage, &dirty, &mask, -1, -1);
        collector->env().setActive(true);
        collector->flushQueue();
    }
    ~World()
    {
        m_root->release();
        qrb::CModule::leave();
    }

    qrb::CAudioParamCollector* collector = nullptr;
    qrb::CAudioParam* param = nullptr;
    const qrb::CAudioParamStorage* storage = nullptr;
    std::uint8_t dirty = 0;
    std::uint32_t mask = 0;

private:
    qrbdoc::Result m_shared = qrbdoc::compileText(kShared);
    qrbdoc::Result m_instance = qrbdoc::compileText(kInstance);
    qrb::CObject* m_root = nullptr;
};

/// From the call that changes a parameter to the module that has read the new value, on one thread.
void updateToReader(benchmark::State& state)
{
    World world;
    double value = 0.0;
    for (auto _ : state) {
        value = value < 1.0 ? value + 0.01 : 0.0;
        world.param->setElement(0, 2, value);
        world.collector->flushQueue();
        if (world.dirty == 0 || world.storage->value(0, 2) != value)
            state.SkipWithError("the reader was not told");
        world.dirty = 0;
        world.mask = 0;
    }
}
BENCHMARK(updateToReader);

/// A block's worth of changes, applied together.
void manyUpdatesAFlush(benchmark::State& state)
{
    World world;
    for (auto _ : state) {
        for (int i = 0; i < 64; ++i)
            world.param->setElement(i % 8, i % 4, i / 64.0);
        world.collector->flushQueue();
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(manyUpdatesAFlush);

void readValue(benchmark::State& state)
{
    World world;
    for (auto _ : state)
        benchmark::DoNotOptimize(world.storage->value(0, 2));
}
BENCHMARK(readValue);

} // namespace

BENCHMARK_MAIN();
