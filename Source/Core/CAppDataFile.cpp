// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CAppDataFile.h"

#include "Core/CError.h"
#include "Core/CFileReader.h"
#include "Core/CFileWriter.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CPathText.h"
#include "Platform/Files.h"

namespace qrb {

namespace {

enum class EOutcome { good, missing, broken };

EOutcome readBlock(const CString& path, std::uint32_t chunkId, CByteArray& out)
{
    CFileReader reader;
    if (reader.open(path))
        return EOutcome::missing;
    if (const CErrorPtr error = reader.readCompressedData(out, chunkId)) {
        error->addLine(path);
        logError(error);
        return EOutcome::broken;
    }
    return EOutcome::good;
}

void remove(const CString& path)
{
    // What is left behind does no harm: the copy counts only while the file is broken.
    static_cast<void>(platform::removeFile(pathToBytes(path)));
}

/// A file beyond this is none that a block was written to: a chunk of the largest size packs to less.
constexpr std::uint64_t kMaxFileBytes = 80u << 20;

CErrorPtr readWhole(const CString& path, CByteArray& out)
{
    CFileReader reader;
    QRB_TRY(reader.open(path));
    std::uint64_t size = 0;
    QRB_TRY(reader.getSize(size));
    if (size > kMaxFileBytes)
        return QRB_ERROR("@qrbstr_CAppDataFile_readWhole_Size The file '%1' is too large for a block of data.", path);
    return reader.readBytes(out, size);
}

CErrorPtr writeWhole(const CString& path, const CByteArray& bytes)
{
    CFileWriter writer;
    QRB_TRY(writer.open(path));
    QRB_TRY(writer.write(bytes.data(), bytes.size()));
    return writer.close();
}

CErrorPtr writeBlock(const CString& path, std::uint32_t chunkId, const CByteArray& data)
{
    CFileWriter writer;
    QRB_TRY(writer.open(path));
    QRB_TRY(writer.writeCompressedData(data.span(), chunkId));
    return writer.close();
}

} // namespace

CAppDataFile::CAppDataFile(const CString& folder, const CString& name)
    : m_path(folder + name), m_copyPath(folder + "." + name)
{
}

bool CAppDataFile::read(std::uint32_t chunkId, CByteArray& out) const
{
    const EOutcome outcome = readBlock(m_path, chunkId, out);
    if (outcome != EOutcome::broken)
        return outcome == EOutcome::good;
    return readBlock(m_copyPath, chunkId, out) == EOutcome::good;
}

bool CAppDataFile::write(std::uint32_t chunkId, const CByteArray& data) const
{
    if (!keepOldContent(chunkId))
        return false;
    if (const CErrorPtr error = writeBlock(m_path, chunkId, data)) {
        error->addLine(m_path);
        logError(error);
        // A torso would stand before the sources that come later; with a copy beside it, it leads to the old block.
        if (!platform::fileExists(pathToBytes(m_copyPath)))
            remove(m_path);
        return false;
    }
    remove(m_copyPath);
    return true;
}

bool CAppDataFile::keepOldContent(std::uint32_t chunkId) const
{
    CByteArray bytes;
    if (readWhole(m_path, bytes))
        return true; // nothing there that anyone could read
    CByteArray block;
    if (CMemoryReaderStatic(bytes.span()).readCompressedData(block, chunkId))
        return true; // broken by an earlier write: the copy of that one is the better block
    if (const CErrorPtr error = writeWhole(m_copyPath, bytes)) {
        error->addLine(m_copyPath);
        logError(error);
        remove(m_copyPath);
        return false;
    }
    return true;
}

} // namespace qrb
