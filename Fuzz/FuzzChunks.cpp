// SPDX-License-Identifier: GPL-3.0-or-later
// Readers of chunks and strings. First byte: which reader, from memory or not, and whether the header's check is made to
// fit, without which few inputs get further.
#include "Core/CChunkId.h"
#include "Core/CInputStream.h"
#include "Core/CMemoryReader.h"
#include "Core/CMemoryReaderStatic.h"
#include "Core/CString.h"
#include "Core/CWriteSeqBuffer.h"
#include "Fuzz/CFuzzInput.h"

#include <cstring>
#include <vector>

using namespace fuzz;

namespace {

constexpr std::uint32_t kId = qrb::chunkId("fuzz");

std::uint32_t adlerOf(CBytes bytes)
{
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const std::uint8_t byte : bytes) {
        low = (low + byte) % 65521;
        high = (high + low) % 65521;
    }
    return high << 16 | low;
}

/// Makes id and check fit: the latter stands behind `fieldBytes` bytes behind the id.
void mend(std::vector<std::uint8_t>& chunk, std::size_t fieldBytes)
{
    if (chunk.size() < 8 + fieldBytes)
        return;
    std::memcpy(chunk.data(), &kId, sizeof(kId));
    const std::uint32_t check = adlerOf(CBytes(chunk).subspan(4, fieldBytes));
    std::memcpy(chunk.data() + 4 + fieldBytes, &check, sizeof(check));
}

void readChunk(qrb::CInputStream& in, bool isLZF)
{
    qrb::CByteArray data;
    data.append(1);
    if (isLZF ? in.readCompressedDataLZF(data, kId) : in.readCompressedData(data, kId)) {
        require(data.empty(), "a chunk that fails leaves nothing");
        return;
    }
    require(data.size() <= qrb::kMaxChunkBytes, "a chunk has its bounds");
    qrb::CWriteSeqBuffer out;
    requireSuccess(isLZF ? out.writeCompressedDataLZF(data.span(), kId) : out.writeCompressedData(data.span(), kId),
                   "what was read can be written");
    qrb::CByteArray written;
    out.getContiguous(written);
    qrb::CMemoryReaderStatic again(written.span());
    qrb::CByteArray same;
    requireSuccess(isLZF ? again.readCompressedDataLZF(same, kId) : again.readCompressedData(same, kId),
                   "what was written can be read");
    require(std::ranges::equal(same.span(), data.span()), "data comes back as it was");
}

void readStrings(qrb::CInputStream& in)
{
    qrb::CString text;
    while (!in.readString(text)) {
        qrb::CWriteSeqBuffer out;
        // Half a pair is dropped, and what UTF-8 was spelt badly may be longer as characters.
        requireSuccess(out.writeString(text), "a text can be written");
        qrb::CByteArray written;
        out.getContiguous(written);
        qrb::CMemoryReaderStatic again(written.span());
        qrb::CString same;
        if (again.readString(same))
            require(written.size() > qrb::kMaxStreamStringBytes, "a written text can be read");
        else
            require(same.length() <= text.length(), "a text does not grow");
    }
    require(text.empty(), "a text that fails is empty");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CFuzzInput input(data, size);
    const std::uint8_t choice = input.byte();
    const CBytes rest = input.rest();
    std::vector<std::uint8_t> bytes(rest.begin(), rest.end());
    const bool isLZF = (choice & 1) != 0;
    if ((choice & 2) != 0)
        mend(bytes, isLZF ? 8 : 4);
    qrb::CMemoryReaderStatic direct(bytes);
    qrb::CMemoryReader copied{qrb::CByteArray(std::span<const std::uint8_t>(bytes))};
    qrb::CInputStream& in = (choice & 4) != 0 ? static_cast<qrb::CInputStream&>(direct) : copied;
    if ((choice & 8) != 0)
        readStrings(in);
    else
        readChunk(in, isLZF);
    return 0;
}
