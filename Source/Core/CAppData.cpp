// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAppData.h"

#include "Core/CAppDataFile.h"
#include "Core/CChunkId.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CPathText.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"
#include "Core/CWriteSeqBuffer.h"
#include "Platform/Files.h"
#include "Platform/Folders.h"

#include <string>
#include <utility>

namespace qrb {

using platform::CScopedLock;

namespace {

constexpr std::uint32_t kStringChunk = chunkId("dstr");

/// Creates what is missing of a path; true when it is there as a folder.
bool createFolders(const CString& folder)
{
    const std::string path = pathToBytes(folder);
    if (path.empty())
        return false;
    for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1)) {
        const std::string prefix = path.substr(0, end + 1);
        // Looked at again after a failure: another process may have been quicker.
        if (!platform::directoryExists(prefix) && platform::createDirectory(prefix) != 0 &&
            !platform::directoryExists(prefix))
            return false;
    }
    return platform::directoryExists(path);
}

} // namespace

CAppData::CAppData(const CPlaces& places) : m_places(places) {}

CAppData::~CAppData()
{
    retire();
}

CAppDataGlobal::CAppDataGlobal() : CAppData({"Quorbel/", "", "AppDataGlobal_", "Quorbel/Audio Plug-Ins/"}) {}

CAppDataGroup::CAppDataGroup() : CAppData({"Quorbel/Audio Plug-Ins/", "", "AppDataGroup_", ""}) {}

CAppDataLocal::CAppDataLocal() : CAppData({"Quorbel/Audio Plug-Ins/Thumpcraft/", "Thumpcraft/", "AppDataLocal_", ""}) {}

CAppData* CAppData::findScope(const CString& storageType)
{
    CProcessState& state = processState();
    if (storageType == "local")
        return state.appDataLocal.get();
    if (storageType == "group")
        return state.appDataGroup.get();
    if (storageType == "global")
        return state.appDataGlobal.get();
    return nullptr;
}

std::uint64_t CAppData::getUpdateKey(const CUpdateKeyArg& arg)
{
    const CScopedLock guard(m_lock);
    return arg.name != nullptr ? numberOf(*arg.name) : arg.number;
}

std::uint64_t CAppData::numberOf(const CString& name)
{
    const auto [entry, isNew] = m_numbers.try_emplace(name, 0);
    if (isNew)
        entry->second = ++m_lastNumber;
    return entry->second;
}

void CAppData::findPaths()
{
    if (std::exchange(m_hasPaths, true))
        return;
    platform::IFolders& folders = *processState().folders;
    m_userPath = pathFromBytes(folders.userDataFolder());
    if (!m_userPath.empty()) {
        m_userPath += "/";
        if (*m_places.olderFolder != '\0')
            m_olderPath = m_userPath + m_places.olderFolder;
        m_userPath += m_places.subfolder;
    }
    m_commonPath = pathFromBytes(folders.machineDataFolder());
    if (!m_commonPath.empty()) {
        m_commonPath += "/";
        m_commonPath += m_places.subfolder;
    }
}

bool CAppData::loadFromSources(const CString& name, std::uint32_t chunkId, CByteArray& out) const
{
    CString modulePath = processState().moduleFolder;
    if (!modulePath.empty())
        modulePath += m_places.moduleSubfolder;
    for (const CString* folder : {&m_userPath, &m_commonPath, &m_olderPath, &std::as_const(modulePath)}) {
        if (!folder->empty() && CAppDataFile(*folder, name).read(chunkId, out))
            return true;
    }
    return loadFromResources(name, chunkId, out);
}

bool CAppData::loadFromResources(const CString& name, std::uint32_t chunkId, CByteArray& out) const
{
    const CString resource = CString(m_places.resourcePrefix) + name;
    const auto bytes = processState().resources->find(resource);
    if (!bytes)
        return false;
    if (const CErrorPtr error = CMemoryReaderStatic(*bytes).readCompressedData(out, chunkId)) {
        error->addLine(resource);
        logError(error);
        return false;
    }
    return true;
}

CByteArray CAppData::readData(const CString& name, std::uint32_t chunkId, bool forceReload)
{
    const CScopedLock guard(m_lock);
    findPaths();
    const std::uint64_t number = numberOf(name);
    const auto cached = m_cache.find(number);
    const bool isCached = cached != m_cache.end();
    if (!isCached || forceReload) {
        CByteArray bytes;
        if (loadFromSources(name, chunkId, bytes)) {
            m_cache[number] = {chunkId, bytes};
            return bytes;
        }
    }
    return isCached && cached->second.chunkId == chunkId ? cached->second.bytes : CByteArray();
}

void CAppData::writeData(const CString& name, const CByteArray& data, const void* sender, std::uint32_t chunkId)
{
    CUpdateInfo info;
    {
        const CScopedLock guard(m_lock);
        findPaths();
        if (m_folder == EFolder::untried)
            m_folder = createFolders(m_userPath) ? EFolder::usable : EFolder::unusable;
        if (m_folder == EFolder::unusable)
            return;
        info = {sender, numberOf(name)};
        m_cache[info.key] = {chunkId, data};
        if (!CAppDataFile(m_userPath, name).write(chunkId, data))
            return;
    }
    // Without the lock: listeners read the new value, and those of other scopes may be written from there.
    notify(&info);
}

CString CAppData::getString(const CString& name, const CString& def)
{
    CByteArray bytes = readData(name, kStringChunk);
    CString text;
    if (bytes.empty() || CMemoryReader(std::move(bytes)).readString(text))
        return def;
    return text;
}

void CAppData::setString(const CString& name, const CString& value, const void* sender)
{
    CWriteSeqBuffer buffer;
    CByteArray bytes;
    if (const CErrorPtr error = buffer.writeString(value)) {
        logError(error);
        return;
    }
    buffer.getContiguous(bytes);
    writeData(name, bytes, sender, kStringChunk);
}

} // namespace qrb
