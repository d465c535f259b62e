// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fuzz/CFuzzInterface.h"

#include "Audio/CAudioParamUpdate.h"
#include "Core/CApplication.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Fuzz/CFuzzProduct.h"
#include "Tools/DocCompiler/DocCompiler.h"

namespace fuzz {

namespace {

constexpr const char* kEditor = R"(<root>
    <other:param-interface-client-connector-uni name="connector" base-connector="plugin.interface-base-connector"/>
    <audio:interface-client name="client" client-connector="connector"
        group-names-param="plugin.modMain.io-params.group-names"/></root>)";
constexpr const char* kEditorDocument = "fuzz-editor";

/// One of each kind, and what presets and names hang on.
constexpr const char* kParams[] = {"preset-name",
                                   "instance-name",
                                   "bypass-enable",
                                   "io-params.group-names",
                                   "io-params.in-routing",
                                   "modThumpcraft.xo-freq",
                                   "modThumpcraft.comp-attack",
                                   "modThumpcraft.eq-params.gain",
                                   "modThumpcraft.gate-params.attack",
                                   "modThumpcraft.gate-params.mode-name"};
constexpr const char* kRegistries[] = {"plugin.param-registry", "plugin.param-registry-gate"};
constexpr const char* kNoRegistry = "plugin.no-registry";

void addEditorDocument()
{
    static const std::vector<std::uint8_t> bytes = [] {
        qrbdoc::Result result = qrbdoc::compileText(kEditor);
        require(result.ok(), "the editor's document compiles");
        return std::move(result.bytes);
    }();
    qrb::processState().resources->add(kEditorDocument, bytes);
}

template <class T>
void find(qrb::CObject& root, const char* path, T*& out)
{
    out = dynamic_cast<T*>(root.findObject(path));
    require(out != nullptr, path);
}

constexpr const char* kClientEvents[] = {"listen-param",
                                         "unlisten-param",
                                         "change-param",
                                         "reset-param",
                                         "create-undo-data",
                                         "submit-undo-data",
                                         "remove-undo-data",
                                         "request-undo-history",
                                         "set-undo-history-pos",
                                         "listen-registry",
                                         "unlisten-registry",
                                         "set-current-program",
                                         "rename-preset",
                                         "activate-factory-preset",
                                         "activate-preset",
                                         "request-preset",
                                         "request-bank",
                                         "set-default-preset",
                                         "activate-default-preset",
                                         "exchange-shadow-preset",
                                         "update-shadow-preset",
                                         "listen-viz",
                                         "unlisten-viz",
                                         "request-viz-data",
                                         "request-export-slot-names",
                                         "request-internal-channel-count",
                                         "request-group-count",
                                         "request-io-channel-counts",
                                         "request-sample-rate",
                                         "import-channel-labels"};
constexpr const char* kBaseEvents[] = {"update-undo-history",
                                       "update-param-info",
                                       "update-param",
                                       "update-registry",
                                       "registry-data",
                                       "start-viz",
                                       "stop-viz",
                                       "clear-client",
                                       "update-internal-channel-count",
                                       "update-group-count",
                                       "update-io-channel-counts",
                                       "update-sample-rate",
                                       "viz-data",
                                       "export-slot-names"};

} // namespace

const std::span<const char* const> fuzzParams = kParams;
const std::span<const char* const> clientEvents = kClientEvents;
const std::span<const char* const> baseEvents = kBaseEvents;

qrb::CString pathOf(const char* param)
{
    return qrb::CString("plugin.modMain.") + param;
}

qrb::CByteArray takeMessage(CFuzzInput& input, std::span<const char* const> events)
{
    const std::size_t choice = input.byte();
    qrb::CByteArray message;
    if (choice < events.size()) {
        const std::string name = events[choice];
        for (std::size_t i = 0; i < 4; ++i)
            message.append(static_cast<std::uint8_t>(name.size() >> (8 * i)));
        for (const char character : name)
            message.append(static_cast<std::uint8_t>(character));
    }
    message.appendAll(input.block());
    return message;
}

qrb::CErrorPtr CMirror::onParamInfo(qrb::CInputStream& in)
{
    const auto fullName = [] { return qrb::CString(); };
    QRB_TRY(info.load(in));
    if (values.format() != info.format)
        values.setFormat(info.format);
    return {};
}

qrb::CErrorPtr CMirror::onParamValue(const qrb::CAudioParamUpdate& update)
{
    values.apply(update);
    return {};
}

CFuzzClient::CFuzzClient(qrb::CObject& engine)
{
    addEditorDocument();
    requireSuccess(qrb::CApplication::initRootObject(m_root, {}), "a client's tree");
    m_root->setEventBridge(nullptr); // events go to this thread only
    requireSuccess(m_root->setAttrValue(qrb::CParamInterfaceClientConnectorUni::kBaseRootAttr,
                                        qrb::CObjectAttr::pointer(&engine), qrb::ESetter::now),
                   "the engine's root");
    requireSuccess(m_root->loadXMLData(kEditorDocument, qrb::ERunInit::yes), "a client's document");
    qrb::CAudioInterfaceClient* client = nullptr;
    find(*m_root, "client", client);
    find(*m_root, "connector", m_connector);
    client->setVizProcessor(&m_listener);
    for (const char* const name : kParams)
        require(client->listenParam(pathOf(name), m_mirrors[name]) != 0, "a client can listen");
    for (const char* const path : kRegistries)
        require(client->listenRegistry(path, m_listener) != 0, "a client can listen");
    require(client->listenRegistry(kNoRegistry, m_listener) != 0, "a client can listen for what is not there");
}

CFuzzClient::~CFuzzClient()
{
    m_root->release();
}

void CFuzzClient::pull()
{
    requireSuccess(m_connector->onTick(), "messages are taken whatever they say");
}

void CFuzzClient::requireMirrors(qrb::CAudioParamCollector& params) const
{
    for (const auto& [name, mirror] : m_mirrors) {
        const qrb::CAudioParam& param = params.getParam(pathOf(name.c_str()));
        const qrb::CAudioParamGuard guard(params);
        const qrb::CAudioParamStorage& values = param.editStorage(guard);
        require(mirror.info.format == values.format(), "a mirror has the format");
        const std::int32_t groups = std::max(values.groupCount(), mirror.values.groupCount());
        for (std::int32_t group = 0; group < groups; ++group) {
            require(values.elementCount(group) == mirror.values.elementCount(group), "a mirror has the elements");
            for (std::int32_t i = 0; i < values.elementCount(group); ++i)
                require(values.format().hasItems() ? values.text(group, i) == mirror.values.text(group, i)
                                                   : values.value(group, i) == mirror.values.value(group, i),
                        "a mirror has the values");
        }
    }
}

CFuzzInterface::CFuzzInterface()
{
    CFuzzProduct& product = CFuzzProduct::instance();
    requireSuccess(qrb::CApplication::initRootObject(m_root, {}), "an instance's tree");
    qrb::CObject* plugin = nullptr;
    requireSuccess(m_root->createChild(plugin, "plugin", "plugin", qrb::ERequireTemplate::yes),
                   "an instance's objects");
    find(*m_root, "plugin.param-collector", params);
    find(*m_root, "plugin.interface-base", base);
    find(*m_root, "plugin.interface-base-connector", connector);
    find(*m_root, "plugin.param-registry", master);
    for (const char* const name : kParams) {
        const qrb::CAudioParamInfo* const info = product.params().getParam(pathOf(name)).info();
        require(info != nullptr, name);
        params->getParam(pathOf(name)).bindInfo(*info);
    }
    params->completeRegistries();
    params->flushQueue();
    base->setDataProvider(&m_provider);
    clients.emplace_back(*m_root);
    clients.emplace_back(*m_root);
}

CFuzzInterface::~CFuzzInterface()
{
    clients.clear();
    require(m_provider.openGestures == 0, "every gesture that began has ended");
    base->setDataProvider(nullptr);
    base->disconnect();
    m_root->release();
}

std::string CFuzzInterface::state()
{
    return stateOf(*params, *master);
}

} // namespace fuzz
