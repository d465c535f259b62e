// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CQrbStdAllocator.h"
#include "Core/CString.h"
#include "Core/CUpdateNotifier.h"
#include "Platform/CRecursiveLock.h"

#include <cstdint>

namespace qrb {

/// Small persistent blocks of one scope, one file each: the name of the block is the name of the file, its content one
/// zlib chunk. Shared by all instances in the process; another process sees a change when it starts or reloads.
/// Listeners attach with the name of a block and hear of writes of it. Nothing here reports failure: what can't be
/// read is as good as not there, and what can't be written is not announced. Thread: any but the audio thread; file
/// operations run under the scope's lock, notifications do not.
class CAppData : public CUpdateNotifier {
public:
    /// Where a scope's files lie. Folders end in "/" or are empty.
    struct CPlaces {
        const char* subfolder;       ///< below the user's and the machine's data folders
        const char* moduleSubfolder; ///< below the module's folder
        const char* resourcePrefix;  ///< of the names of built-in defaults
        const char* olderFolder;     ///< of an earlier layout below the user's data folder; empty for none
    };

    explicit CAppData(const CPlaces& places);
    ~CAppData() override;

    /// The scope "local", "group" or "global" of this process; null for another text.
    [[nodiscard]] static CAppData* findScope(const CString& storageType);

    [[nodiscard]] std::uint64_t getUpdateKey(const CUpdateKeyArg& arg) override;

    /// The bytes of a block; empty if there is none with this chunk id. Read once, then served from memory unless
    /// `forceReload` asks the sources again; if those have nothing any more, memory counts.
    [[nodiscard]] CByteArray readData(const CString& name, std::uint32_t chunkId, bool forceReload = false);
    /// Stores a block in the user's folder and tells the listeners. With the folder unusable nothing happens; if only
    /// the file fails, this process keeps the new bytes and nobody is told.
    void writeData(const CString& name, const CByteArray& data, const void* sender, std::uint32_t chunkId);

    /// A block that holds one string; `def` if it is missing or can't be decoded.
    [[nodiscard]] CString getString(const CString& name, const CString& def = {});
    void setString(const CString& name, const CString& value, const void* sender);

private:
    enum class EFolder { untried, usable, unusable };

    struct CBlock {
        std::uint32_t chunkId;
        CByteArray bytes;
    };

    void findPaths();
    [[nodiscard]] std::uint64_t numberOf(const CString& name);
    [[nodiscard]] bool loadFromSources(const CString& name, std::uint32_t chunkId, CByteArray& out) const;
    [[nodiscard]] bool loadFromResources(const CString& name, std::uint32_t chunkId, CByteArray& out) const;

    const CPlaces m_places;
    platform::CRecursiveLock m_lock{4000}; ///< guards everything below
    bool m_hasPaths = false;
    CString m_userPath; ///< paths end in "/"; empty if there is none
    CString m_commonPath;
    CString m_olderPath;
    EFolder m_folder = EFolder::untried; ///< whether the user path could be made
    std::uint64_t m_lastNumber = 0;
    CMap<CString, std::uint64_t> m_numbers; ///< only grows
    CMap<std::uint64_t, CBlock> m_cache;
};

/// What all applications of the maker share.
class CAppDataGlobal : public CAppData {
public:
    CAppDataGlobal();
};

/// What all its audio plug-ins share.
class CAppDataGroup : public CAppData {
public:
    CAppDataGroup();
};

/// What belongs to this product.
class CAppDataLocal : public CAppData {
public:
    CAppDataLocal();
};

} // namespace qrb
