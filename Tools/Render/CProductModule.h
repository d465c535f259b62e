// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace render {

/// Holds the module entered with the product's documents and classes, as a host that has loaded it would.
class CProductModule {
public:
    /// On failure `error` gets one line, and the module is not entered.
    explicit CProductModule(std::string& error);
    ~CProductModule();
    CProductModule(const CProductModule&) = delete;
    CProductModule& operator=(const CProductModule&) = delete;

    [[nodiscard]] bool isEntered() const { return m_isEntered; }

private:
    bool m_isEntered = false;
};

} // namespace render
