// SPDX-License-Identifier: GPL-3.0-or-later
// Writes first inputs for all fuzz programs: fuzz-seeds FOLDER makes FOLDER/<program>/<name>.
#include "Audio/CAudioParamUpdate.h"
#include "Audio/Interface/CParamInterfaceMessage.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CMemoryReaderStatic.h"
#include "Fuzz/CFuzzInterface.h"
#include "Fuzz/CFuzzProduct.h"
#include "Tools/DocCompiler/DocCompiler.h"

#include <filesystem>
#include <fstream>

using namespace fuzz;

namespace {

using CData = std::vector<std::uint8_t>;

std::filesystem::path folder;

CData joined(std::initializer_list<std::uint8_t> choices, CBytes bytes)
{
    CData all(choices);
    all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

void write(const char* program, const std::string& name, const CData& bytes)
{
    std::filesystem::create_directories(folder / program);
    std::ofstream file(folder / program / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    require(file.good(), "a seed can be written");
}

CData written(const qrb::CWriteSeqBuffer& buffer)
{
    qrb::CByteArray bytes;
    buffer.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

void writeChunks()
{
    constexpr std::uint32_t id = qrb::chunkId("fuzz");
    constexpr std::size_t kZeros = 100000;
    const CData few = {1, 2, 3, 4, 5, 1, 2, 3, 4, 5};
    for (const CData& data : {CData{}, few, CData(kZeros)}) {
        qrb::CWriteSeqBuffer zip;
        qrb::CWriteSeqBuffer lzf;
        requireSuccess(zip.writeCompressedData(data, id), "a chunk");
        requireSuccess(lzf.writeCompressedDataLZF(data, id), "a chunk");
        const std::string size = std::to_string(data.size());
        write("FuzzChunks", "zip" + size, joined({2}, written(zip)));
        write("FuzzChunks", "zip-direct" + size, joined({6}, written(zip)));
        write("FuzzChunks", "lzf" + size, joined({3}, written(lzf)));
        write("FuzzChunks", "lzf-direct" + size, joined({7}, written(lzf)));
    }
    qrb::CWriteSeqBuffer texts;
    for (const char* const text : {"", "plain", "\xc3\xa4\xe2\x82\xac", "\xf0\x9f\x98\x80"})
        requireSuccess(texts.writeString(qrb::CString::fromUtf8(text)), "a text");
    write("FuzzChunks", "texts", joined({8}, written(texts)));
}

/// The whole preset, and each of a few of its items alone, which is easier to change.
template <class F>
void eachPart(const qrb::CAudioPreset& whole, const F& use)
{
    constexpr std::size_t kStep = 7;
    use("whole", whole);
    std::size_t i = 0;
    for (const auto& [key, bytes] : whole.items) {
        if (i++ % kStep != 0)
            continue;
        qrb::CAudioPreset part;
        part.name = whole.name;
        part.items[key] = bytes;
        use(key.toUtf8(), part);
    }
}

void writePresets(CFuzzProduct& product)
{
    eachPart(product.master().capture(-1), [](const std::string& name, const qrb::CAudioPreset& preset) {
        const CData payload = savedBytes(preset);
        write("FuzzHostState", name, joined({1}, payload));
        write("FuzzPresets", "master-" + name, joined({3, 1, 0}, payload));
        if (name == "whole")
            write("FuzzHostState", "chunk", joined({0}, packed(payload, qrb::kPresetChunk)));
    });
    const auto count = static_cast<std::uint8_t>(product.params().registries().size());
    for (std::uint8_t i = 0; i < count; ++i)
        for (const std::uint8_t group : {std::uint8_t{0}, std::uint8_t{2}}) {
            const CData payload = savedBytes(product.registry(i).capture(group - 1));
            write("FuzzPresets", "registry" + std::to_string(i) + "-" + std::to_string(group),
                  joined({group == 0 ? std::uint8_t{3} : std::uint8_t{4}, i, group}, payload));
        }
    qrb::CAudioPresetList list;
    list.banks.emplace().name = "bank";
    list.banks[0].presets.append(product.registry(3).capture(0));
    list.banks[0].presets.append(product.registry(4).capture(0));
    write("FuzzPresets", "preset", joined({0, 0, 0}, savedBytes(list.banks[0].presets[0])));
    write("FuzzPresets", "bank", joined({1, 0, 0}, savedBytes(list.banks[0])));
    write("FuzzPresets", "list", joined({2, 0, 0}, savedBytes(list)));
}

void appendChange(CData& row, std::size_t param, const qrb::CAudioParamUpdate& update)
{
    qrb::CWriteSeqBuffer buffer;
    requireSuccess(update.save(buffer), "a change");
    const CData change = written(buffer);
    for (const std::size_t number : {param, change.size()}) {
        row.push_back(static_cast<std::uint8_t>(number));
        row.push_back(static_cast<std::uint8_t>(number >> 8));
    }
    row.insert(row.end(), change.begin(), change.end());
}

/// What each parameter is, and what it should not be.
void writeChanges(CFuzzProduct& product)
{
    const qrb::CArray<qrb::CAudioParam*> params = product.boundParams();
    const qrb::CAudioParamGuard guard(product.params());
    for (std::size_t i = 0; i < params.size(); ++i) {
        CData row;
        qrb::CAudioParamUpdate update = params[i]->editStorage(guard).wholeGroup(0, 0);
        appendChange(row, i, update);
        std::vector<double> values(update.cells().size());
        for (const double value : {1e300, -1e300, 1e9, -1e9, 0.3}) {
            values.assign(values.size(), value);
            update.values = values.data();
            if (!update.format.hasItems())
                appendChange(row, i, update);
        }
        write("FuzzChanges", params[i]->path().toUtf8(), row);
    }
}

/// A message as the programs take it.
void append(CData& row, std::span<const char* const> events, std::span<const std::uint8_t> message)
{
    for (std::size_t i = 0; i < events.size(); ++i) {
        const std::string_view event = events[i];
        if (message.size() < 4 + event.size() ||
            std::string_view(reinterpret_cast<const char*>(message.data()), 4 + event.size()).substr(4) != event ||
            message[0] != event.size())
            continue;
        message = message.subspan(4 + event.size());
        row.push_back(static_cast<std::uint8_t>(i));
        row.push_back(static_cast<std::uint8_t>(message.size()));
        row.push_back(static_cast<std::uint8_t>(message.size() >> 8));
        row.insert(row.end(), message.begin(), message.end());
        return;
    }
}

using qrb::CParamInterfaceMessage;

constexpr std::int32_t kId = 0x10001; // first number of any kind of the first client
constexpr std::int32_t kUndoId = 0x10001;
constexpr std::int32_t kUnusedId = 0x10040;

qrb::CByteArray change(qrb::CAudioParam& param, std::int32_t listener, std::int32_t undoId, std::int32_t group)
{
    CParamInterfaceMessage message("change-param");
    message.add(listener).add(undoId);
    const qrb::CAudioParamGuard guard(param.collector());
    requireSuccess(param.editStorage(guard).wholeGroup(0, group).save(message.out()), "a change");
    return message.bytes();
}

qrb::CByteArray presetMessage(const char* event, qrb::CAudioParamRegistry& registry, std::int32_t listener,
                              std::int32_t group)
{
    CParamInterfaceMessage message(event);
    message.add(listener);
    if (std::string_view(event) == "activate-preset")
        message.add(group);
    requireSuccess(registry.capture(group).save(message.out()), "a preset");
    return message.bytes();
}

template <class... F>
qrb::CByteArray plain(const char* event, const F&... fields)
{
    CParamInterfaceMessage message(event);
    (static_cast<void>(message.add(fields)), ...);
    return message.bytes();
}

void seed(const char* program, std::span<const char* const> events, const std::string& name,
          std::initializer_list<qrb::CByteArray> messages)
{
    CData row;
    for (const qrb::CByteArray& message : messages)
        append(row, events, message.span());
    write(program, name, row);
}

/// Rows of a few messages each, so that they can be mixed.
void writeClientMessages()
{
    CFuzzInterface world;
    const auto row = [](const std::string& name, std::initializer_list<qrb::CByteArray> messages) {
        seed("FuzzInterfaceBase", clientEvents, name, messages);
    };
    const qrb::CString path = "plugin.modMain.modThumpcraft.gate-params.attack";
    std::int32_t listener = kId;
    for (const char* const name : fuzzParams) {
        qrb::CAudioParam& param = world.params->getParam(pathOf(name));
        ++listener; // the first one follows the names of groups
        row(std::string("gesture-") + name,
            {plain("create-undo-data", kUndoId, qrb::CString("Turn"), true, 7), change(param, listener, kUndoId, 0),
             change(param, listener, kUndoId, 2), plain("submit-undo-data", kUndoId, qrb::CString()),
             plain("set-undo-history-pos", 0), plain("set-undo-history-pos", 1)});
    }
    row("params", {plain("listen-param", path, kUnusedId), plain("reset-param", kUnusedId, 0, 1, 0, false),
                   change(world.params->getParam(path), kUnusedId, 0, qrb::kAudioParamTemplateGroup),
                   plain("reset-param", kUnusedId, -1, -1, 0, true), plain("unlisten-param", kUnusedId)});
    row("programs", {plain("set-current-program", kId, 1), plain("rename-preset", kId, 0, qrb::CString("Mine")),
                     plain("activate-factory-preset", kId, 0), plain("activate-default-preset", kId)});
    row("shadow", {plain("update-shadow-preset", kId), plain("exchange-shadow-preset", kId)});
    row("registry", {plain("listen-registry", qrb::CString("plugin.param-registry-eq"), kUnusedId),
                     plain("request-preset", kUnusedId, 3, false, -1, 0), plain("request-bank", kId, 4, true),
                     plain("request-preset", kId, 3, false, 0, -1), plain("unlisten-registry", kUnusedId)});
    row("master", {presetMessage("activate-preset", *world.master, kId, -1)});
    auto& gate = *world.params->findRegistry("plugin.param-registry-gate");
    row("gate", {presetMessage("activate-preset", gate, kId + 1, 1), plain("remove-undo-data", kUndoId)});
    row("default", {presetMessage("set-default-preset", *world.master, kId, -1)});
    row("requests",
        {plain("request-undo-history", 1), plain("request-export-slot-names", 1),
         plain("request-internal-channel-count", 1), plain("request-group-count", 1),
         plain("request-io-channel-counts", 1), plain("request-sample-rate", 1), plain("import-channel-labels")});
    row("viz", {plain("listen-viz", 0, qrb::CString("meter"), kId), plain("request-viz-data", 1, 0.5),
                plain("unlisten-viz", kId)});
}

/// What a client is told, once as it listens and once as its wishes are carried out.
void writeBaseMessages()
{
    CFuzzInterface world;
    auto& sender = world.clients.front().connector();
    requireSuccess(sender.send(presetMessage("activate-preset", *world.master, kId, -1)), "a wish");
    requireSuccess(sender.send(plain("request-preset", kId, 3, false, -1, 0)), "a wish");
    requireSuccess(sender.send(plain("request-bank", kId, 3, false)), "a wish");
    requireSuccess(sender.send(plain("request-viz-data", 1, 0.5)), "a wish");
    world.base->startViz();
    world.base->stopViz();
    world.base->clearClients();
    qrb::CByteArray message;
    for (int i = 0; world.connector->exchange()->takeMessage(1, message); ++i)
        seed("FuzzInterfaceClient", baseEvents, "told" + std::to_string(i), {message});
}

void writeDocuments()
{
    constexpr const char* kDocuments[] = {
        R"(<root a="1" b="{a?2}"/>)",
        R"(<root><core:object name="x" a="3" w="^y"/><core:object name="y" a="{x.a}{^x.a?7}" w="^x"/></root>)",
        R"(<root a="5"><template name="t" class="core:object" a="1"><core:object name="in" b="{a}"/></template>
           <template name="u" class="t" b="2" w="in"/></root>)",
        R"(<root><core:attr-doubler name="d" a="1"/><core:object name="e" w="^d#+1" b="{@^d}"/></root>)",
    };
    int count = 0;
    for (const char* const xml : kDocuments) {
        const qrbdoc::Result result = qrbdoc::compileText(xml);
        require(result.ok(), result.errorText().c_str());
        write("FuzzDocuments", "document" + std::to_string(++count), result.bytes);
    }
}

} // namespace

int main(int count, char** args)
{
    require(count == 2, "usage: fuzz-seeds FOLDER");
    folder = args[1];
    writeChunks();
    writeDocuments();
    writePresets(CFuzzProduct::instance());
    writeChanges(CFuzzProduct::instance());
    writeClientMessages();
    writeBaseMessages();
    return 0;
}
