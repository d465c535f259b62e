// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CResourceStore.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace product {

/// Data files by the names under which the module asks for them.
struct CDataFiles {
    std::vector<std::span<const qrb::CResourceRow>> linked; ///< linked-in tables; of one name the last counts
    std::map<std::string, std::vector<std::uint8_t>> read; ///< files of their own, in place of linked ones of that name
};

/// Holds the module entered with the product's document and classes, as a host that has loaded it would, only that it
/// neither reads nor changes the user's settings.
class CDocumentModule {
public:
    static constexpr const char* kDocument = "SharedData.xml";

    /// On failure `error` gets one line, and the module is not entered.
    CDocumentModule(CDataFiles files, std::string& error);
    ~CDocumentModule();
    CDocumentModule(const CDocumentModule&) = delete;
    CDocumentModule& operator=(const CDocumentModule&) = delete;

    [[nodiscard]] bool isEntered() const { return m_isEntered; }

private:
    CDataFiles m_files;
    bool m_isEntered = false;
};

} // namespace product
