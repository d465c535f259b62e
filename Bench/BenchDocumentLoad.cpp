// SPDX-License-Identifier: GPL-3.0-or-later
// Loading a document of 7,000 objects with 30 attributes each, against what the XML parser needs for the same document
// as text; looking objects up in it; raising an event.
#include "Core/CApplication.h"
#include "Core/CModule.h"
#include "Core/CObject.h"
#include "Core/CObjectClassInfo.h"
#include "Tools/DocCompiler/DocCompiler.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <pugixml.hpp>
#include <string>
#include <vector>

namespace {

constexpr int kPanels = 70;
constexpr int kControls = 99; // and the panel itself: 100 objects
constexpr int kAttrs = 30;
constexpr std::int64_t kAllAttrs = std::int64_t{kPanels} * (kControls + 1) * kAttrs;

/// What an editor's document looks like: few names, values of which a third are found nowhere else, some expressions.
void writeAttrs(std::string& xml, int object)
{
    static const char* const kNames[] = {"x",          "y",    "width",     "height",     "color-name",
                                         "text-align", "font", "hint-text", "is-visible", "param-path"};
    for (int attr = 0; attr < kAttrs; ++attr) {
        xml += " " + std::string(kNames[attr % 10]) + (attr < 10 ? "" : "-" + std::to_string(attr / 10)) + "=\"";
        if (attr % 10 == 9)
            xml += "{palette-path}";
        else if (attr % 3 == 0)
            xml += "value " + std::to_string((object * kAttrs + attr) % 40000);
        else
            xml += "common-text-" + std::to_string((object + attr) % 200);
        xml += "\"";
    }
}

std::string makeXml()
{
    std::string xml = "<root palette-path=\"Main\">";
    for (int panel = 0; panel < kPanels; ++panel) {
        xml += "<ui:view name=\"Panel" + std::to_string(panel) + "\"";
        writeAttrs(xml, panel * 100);
        xml += ">";
        for (int control = 0; control < kControls; ++control) {
            xml += "<core:object name=\"Control" + std::to_string(control) + "\"";
            writeAttrs(xml, panel * 100 + control + 1);
            xml += "/>";
        }
        xml += "</ui:view>";
    }
    return xml + "</root>";
}

class CListener : public qrb::CObject {
public:
    static void declare(qrb::CObjectClassInfo& info)
    {
        CObject::declare(info);
        info.event<&CListener::onEvent>("on-event");
    }
    qrb::CErrorPtr onEvent()
    {
        ++calls;
        return {};
    }
    static inline std::int64_t calls = 0;
};

constexpr qrb::CCreatorRow kRows[] = {
    qrb::creatorRow<qrb::CObject>("ui:view"),
    qrb::creatorRow<CListener>("bench:listener"),
};

/// The module with the document, entered once for all benchmarks.
struct CWorld {
    CWorld() : xml(makeXml()), document(qrbdoc::compileText(xml).bytes)
    {
        qrb::CModuleConfig config;
        config.creators.append(kRows);
        config.resourceBytes.emplace("Bench.xml", document);
        check(qrb::CModule::enter(config));
    }
    ~CWorld() { qrb::CModule::leave(); }

    static void check(qrb::CErrorPtr error)
    {
        if (error) {
            std::fprintf(stderr, "%s\n", error->text().toUtf8().c_str());
            std::exit(1);
        }
    }
    static qrb::CObject& makeRoot(const char* document)
    {
        qrb::CObject* root = nullptr;
        check(qrb::CApplication::initRootObject(root, document));
        return *root;
    }

    std::string xml;
    std::vector<std::uint8_t> document;
};

CWorld& world()
{
    static CWorld made;
    return made;
}

void perAttribute(benchmark::State& state)
{
    state.counters["per attribute"] = benchmark::Counter(
        static_cast<double>(kAllAttrs), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void parseXml(benchmark::State& state)
{
    const std::string& xml = world().xml;
    for (auto _ : state) {
        pugi::xml_document document;
        if (!document.load_buffer(xml.data(), xml.size()))
            state.SkipWithError("not parsed");
        benchmark::DoNotOptimize(document);
    }
    perAttribute(state);
}
BENCHMARK(parseXml)->Unit(benchmark::kMillisecond);

void loadDocument(benchmark::State& state)
{
    static_cast<void>(world());
    for (auto _ : state) {
        qrb::CObject& root = CWorld::makeRoot("Bench.xml");
        state.PauseTiming();
        root.release();
        state.ResumeTiming();
    }
    perAttribute(state);
}
BENCHMARK(loadDocument)->Unit(benchmark::kMillisecond);

void loadAndReleaseDocument(benchmark::State& state)
{
    static_cast<void>(world());
    for (auto _ : state)
        CWorld::makeRoot("Bench.xml").release();
    perAttribute(state);
}
BENCHMARK(loadAndReleaseDocument)->Unit(benchmark::kMillisecond);

void findObject(benchmark::State& state)
{
    static_cast<void>(world());
    qrb::CObject& root = CWorld::makeRoot("Bench.xml");
    const qrb::CString absolute("Panel42.Control77");
    const qrb::CString relative("^^Panel7.Control3");
    qrb::CObject& from = *root.findObject(absolute);
    for (auto _ : state) {
        benchmark::DoNotOptimize(root.findObject(absolute));
        benchmark::DoNotOptimize(from.findObject(relative));
    }
    state.SetItemsProcessed(state.iterations() * 2);
    root.release();
}
BENCHMARK(findObject);

void raiseEvent(benchmark::State& state)
{
    static_cast<void>(world());
    qrb::CObject& root = CWorld::makeRoot("");
    root.setEventBridge(nullptr);
    CListener* sender = nullptr;
    CWorld::check(root.createChild(sender, "bench:listener", "sender", qrb::ERequireTemplate::no));
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        CListener* listener = nullptr;
        CWorld::check(root.createChild(listener, "bench:listener", "listener", qrb::ERequireTemplate::no));
        listener->listenObject(*sender, "change", "on-event");
    }
    const qrb::CString change("change");
    for (auto _ : state)
        CWorld::check(sender->raiseEvent(change));
    if (CListener::calls == 0)
        state.SkipWithError("nobody heard");
    root.release();
}
BENCHMARK(raiseEvent)->Arg(1)->Arg(10)->Arg(100);

} // namespace

BENCHMARK_MAIN();
