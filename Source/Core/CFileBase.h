// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CPosStream.h"
#include "Core/CString.h"
#include "Platform/CSystemFile.h"

namespace qrb {

/// Open file: handle and name. Nothing here locks a file against other processes.
class CFileBase : public virtual CPosStream {
public:
    CFileBase() = default;
    /// Closes; a failure to do so is logged and dropped.
    ~CFileBase() override;
    CFileBase(const CFileBase&) = delete;
    CFileBase& operator=(const CFileBase&) = delete;

    /// Closes the file; without an open file nothing happens.
    CErrorPtr close();
    [[nodiscard]] bool isOpen() const { return m_file.isOpen(); }
    /// Name as it was opened, or "stdin", "stdout", "stderr".
    [[nodiscard]] const CString& getFileName() const { return m_name; }

    CErrorPtr getPosition(std::uint64_t& position) override;
    CErrorPtr getSize(std::uint64_t& size) override;
    CErrorPtr setPosition(std::uint64_t position) override;

protected:
    platform::CSystemFile m_file;
    CString m_name;
};

} // namespace qrb
