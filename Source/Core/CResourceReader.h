// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CPosInputStream.h"

#include <memory>

namespace qrb {

/// Reader over a resource, or over the file of that name where there is no such resource.
class CResourceReader : public CPosInputStream {
public:
    /// Closes what was open. A file's name is relative to the current directory of the process.
    CErrorPtr open(const CString& name);
    void close() { m_reader.reset(); }
    [[nodiscard]] bool isOpen() const { return m_reader != nullptr; }

    const std::uint8_t* getDirectData() override;
    std::size_t getDirectSize() override;
    CErrorPtr skip(std::uint64_t count) override;
    CErrorPtr read(void* buffer, std::size_t count) override;
    CErrorPtr readAvailable(void* buffer, std::size_t& count) override;
    CErrorPtr getPosition(std::uint64_t& position) override;
    CErrorPtr getSize(std::uint64_t& size) override;
    CErrorPtr setPosition(std::uint64_t position) override;

private:
    CErrorPtr requireOpen() const;

    std::unique_ptr<CPosInputStream> m_reader;
};

} // namespace qrb
