// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/Viz/VizArrays.h"

#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

#include <bit>
#include <cstring>

namespace qrb {

static_assert(std::endian::native == std::endian::little, "items go to the stream as they lie in memory");

namespace {

template <class T>
CErrorPtr writeItems(COutputStream& out, std::span<const T> items)
{
    QRB_TRY(out.writeInt32(static_cast<std::int32_t>(items.size())));
    return items.empty() ? CErrorPtr{} : out.write(items.data(), items.size_bytes());
}

template <class T>
CErrorPtr readItems(CInputStream& in, CArray<T, 0>& items)
{
    std::int32_t count = 0;
    QRB_TRY(in.readInt32(count));
    if (count < 0 || count > kMaxVizArrayItems)
        return QRB_ERROR("@qrbstr_CAudioVizData_load_Count Invalid item count %1.", count);
    CByteArray bytes; // grows only as bytes come
    QRB_TRY(in.readBytes(bytes, static_cast<std::uint64_t>(count) * sizeof(T)));
    items.resize(static_cast<std::size_t>(count));
    if (count > 0)
        std::memcpy(items.data(), bytes.data(), bytes.size());
    return {};
}

} // namespace

CErrorPtr writeVizArray(COutputStream& out, std::span<const double> items)
{
    return writeItems(out, items);
}

CErrorPtr writeVizArray(COutputStream& out, std::span<const std::int32_t> items)
{
    return writeItems(out, items);
}

CErrorPtr readVizArray(CInputStream& in, CArray<double, 0>& items)
{
    return readItems(in, items);
}

CErrorPtr readVizArray(CInputStream& in, CArray<std::int32_t, 0>& items)
{
    return readItems(in, items);
}

} // namespace qrb
