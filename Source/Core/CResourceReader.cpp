// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/CResourceReader.h"

#include "Core/CFileReader.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CProcessState.h"
#include "Core/CResourceStore.h"

namespace qrb {

CErrorPtr CResourceReader::open(const CString& name)
{
    close();
    const CProcessState* state = processStateOrNull();
    if (state != nullptr && state->resources != nullptr) {
        if (const auto bytes = state->resources->find(name)) {
            m_reader = std::make_unique<CMemoryReaderStatic>(*bytes);
            return nullptr;
        }
    }
    auto file = std::make_unique<CFileReader>();
    QRB_TRY(file->open(name));
    m_reader = std::move(file);
    return nullptr;
}

const std::uint8_t* CResourceReader::getDirectData()
{
    return m_reader ? m_reader->getDirectData() : nullptr;
}

std::size_t CResourceReader::getDirectSize()
{
    return m_reader ? m_reader->getDirectSize() : 0;
}

CErrorPtr CResourceReader::skip(std::uint64_t count)
{
    QRB_TRY(requireOpen());
    QRB_TRY(m_reader->skip(count));
    return nullptr;
}

CErrorPtr CResourceReader::read(void* buffer, std::size_t count)
{
    QRB_TRY(requireOpen());
    QRB_TRY(m_reader->read(buffer, count));
    return nullptr;
}

CErrorPtr CResourceReader::readAvailable(void* buffer, std::size_t& count)
{
    QRB_TRY(requireOpen());
    QRB_TRY(m_reader->readAvailable(buffer, count));
    return nullptr;
}

CErrorPtr CResourceReader::getPosition(std::uint64_t& position)
{
    QRB_TRY(requireOpen());
    QRB_TRY(m_reader->getPosition(position));
    return nullptr;
}

CErrorPtr CResourceReader::getSize(std::uint64_t& size)
{
    QRB_TRY(requireOpen());
    QRB_TRY(m_reader->getSize(size));
    return nullptr;
}

CErrorPtr CResourceReader::setPosition(std::uint64_t position)
{
    QRB_TRY(requireOpen());
    QRB_TRY(m_reader->setPosition(position));
    return nullptr;
}

CErrorPtr CResourceReader::requireOpen() const
{
    if (!m_reader)
        return QRB_ERROR("@qrbstr_CResourceReader_requireOpen_NotOpen No resource is open.");
    return nullptr;
}

} // namespace qrb
