// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Presets/CAudioParamRegistry.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioPresetGuard.h"
#include "Audio/Presets/CAudioParamUndo.h"
#include "Audio/Presets/CAudioPresetList.h"
#include "Core/CAppData.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Core/CTextSplit.h"

#include <utility>

namespace qrb {

namespace {

constexpr const char* kFactoryName = "Factory ROM";
constexpr const char* kSessionName = "Session Bank";
constexpr const char* kFirstProgramName = "Default";
constexpr const char* kDefaultPresetData = "default-preset";
constexpr const char* kInstanceNameKey = "instance-name";

CErrorPtr readBank(const CString& resource, CAudioPresetBank& bank)
{
    const auto bytes = processState().resources->find(resource);
    if (!bytes)
        return QRB_ERROR("@qrbstr_CAudioParamRegistry_readBank_NoResource No preset bank '%1' found.", resource);
    CMemoryReaderStatic in(*bytes);
    CByteArray payload;
    QRB_TRY(in.readCompressedData(payload, kPresetBankChunk));
    CMemoryReaderStatic presets(payload.span());
    return bank.load(presets);
}

} // namespace

void CAudioParamRegistry::declare(CObjectClassInfo& info)
{
    CObject::declare(info);
}

CAudioParamRegistry::CAudioParamRegistry() = default;

CAudioParamRegistry::~CAudioParamRegistry()
{
    m_nameListener.detach();
    if (m_collector != nullptr)
        m_collector->removeRegistry(*this);
}

CErrorPtr CAudioParamRegistry::init()
{
    QRB_TRY(CObject::init());
    m_hierarchy = getAttrString("hierarchy");
    if (!m_hierarchy.endsWith("."))
        m_hierarchy += ".";
    QRB_TRY(readRemaps(getAttrString("def-name-remap")));
    m_isMaster = getAttrBool("is-master");
    m_isEnumerated = getAttrBool("is-enumerated");
    m_isElementEnum = m_isEnumerated && getAttrBool("is-element-enum");
    m_id = getAttrString("id");
    m_isGlobalStorable = getAttrBool("is-global-param-storable");
    m_naming = getAttrString("preset-naming");
    m_namePath = getAttrString("preset-name-param");
    m_groupNamesPath = getAttrString("group-names-param");
    if (m_isMaster)
        createBanks();
    if (m_isEnumerated)
        readChoices();
    return {};
}

CErrorPtr CAudioParamRegistry::readRemaps(const CString& text)
{
    for (const CString& item : split(text, ' ')) {
        const CArray<CString> sides = split(item, '=', EEmpty::keep);
        if (sides.size() != 2)
            return QRB_ERROR("@qrbstr_CAudioParamRegistry_readRemaps_Invalid Invalid remapping string '%1' defined.",
                             item);
        m_remaps.append({sides[0].trimmed(), sides[1].trimmed()});
    }
    return {};
}

CErrorPtr CAudioParamRegistry::initChilds()
{
    QRB_TRY(CObject::initChilds());
    QRB_TRY(findObjectByAttr("param-collector", m_collector));
    if (!getAttrString("param-undo").empty())
        QRB_TRY(findObjectByAttr("param-undo", m_undo));
    m_collector->addRegistry(*this);
    return {};
}

void CAudioParamRegistry::createBanks()
{
    // What cannot be read leaves the session with a program of defaults: no file keeps the instance from starting.
    const CString file = getAttrString("file");
    if (CErrorPtr error = file.empty() ? CErrorPtr() : readBank(file, m_factory))
        logError(error);
    m_session = m_factory;
    m_factory.name = kFactoryName;
    m_session.name = kSessionName;
    if (m_session.presets.empty())
        m_session.presets.emplace().name = CAudioPreset::joinName(m_id, kFirstProgramName);
    m_histories.resize(m_session.presets.size());
    readDefaultPreset();
}

void CAudioParamRegistry::readDefaultPreset()
{
    CAppData* const local = CAppData::findScope("local");
    const CByteArray bytes = local != nullptr ? local->readData(kDefaultPresetData, kPresetChunk) : CByteArray();
    if (bytes.empty())
        return;
    CMemoryReaderStatic in(bytes.span());
    CAudioPreset preset;
    CErrorPtr error = preset.load(in);
    if (!error)
        error = checkId(preset);
    if (error) {
        logError(error);
        return;
    }
    m_session.at(0) = std::move(preset);
    m_isDefaultLoaded = true;
}

void CAudioParamRegistry::readChoices()
{
    const CString name = getAttrString("store-name");
    const bool isGlobal = name.startsWith("/");
    CAppData* const store = CAppData::findScope(isGlobal ? "global" : "local");
    const CByteArray bytes =
        store != nullptr ? store->readData(isGlobal ? name.substr(1) : name, kPresetListChunk) : CByteArray();
    if (bytes.empty())
        return;
    CAudioPresetList list;
    if (CErrorPtr error = list.load(bytes.span()))
        logError(error);
    else if (!list.banks.empty())
        m_choices = std::make_unique<CAudioPresetBank>(std::move(list.banks[0]));
}

bool CAudioParamRegistry::isAbove(const CString& path) const
{
    return path.length() > m_hierarchy.length() && path.startsWith(m_hierarchy);
}

CErrorPtr CAudioParamRegistry::applyInitial()
{
    if (!m_isMaster)
        return {};
    const CAudioPresetGuard preset(*m_collector);
    const CAudioParamGuard guard(*m_collector);
    CErrorPtr error = applyStart(m_session.at(0));
    if (error && m_isDefaultLoaded) {
        // The user's own file: what was built in serves instead.
        logError(error);
        m_isDefaultLoaded = false;
        const platform::CScopedLock lock(m_bankLock);
        CAudioPreset& first = m_session.at(0);
        first = m_factory.presets.empty() ? CAudioPreset() : m_factory.at(0);
        if (m_factory.presets.empty())
            first.name = CAudioPreset::joinName(m_id, kFirstProgramName);
        error = applyStart(first);
    }
    // A name that came with a built-in preset is nobody's.
    CAudioParam* const instanceName = m_isDefaultLoaded ? nullptr : findMember(kInstanceNameKey);
    if (instanceName != nullptr && instanceName->isBound())
        instanceName->update(instanceName->info()->defaults.wholeGroup(0, 0));
    setNameParam(m_session.at(0).name, 0, this, {});
    if (CAudioParam* const name = nameParam())
        m_nameListener.attach(m_collector, CAudioParamCollector::listenerKey(*name));
    return error;
}

CErrorPtr CAudioParamRegistry::applyStart(const CAudioPreset& preset)
{
    QRB_TRY(applyPreset(preset, {.withPersistent = true}, {}));
    return applyPreset(preset, {.place = {.isReset = true}, .withPersistent = true}, {});
}

void CAudioParamRegistry::tellListeners(const void* source)
{
    CUpdateInfo info;
    info.sender = source;
    notify(&info);
}

} // namespace qrb
