// SPDX-License-Identifier: GPL-3.0-or-later
#include "Core/LzfPacking.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace qrb {

namespace {

using CBytes = std::span<const std::uint8_t>;

constexpr std::size_t kLongestRun = 32; ///< of bytes as they are
constexpr std::size_t kFarthest = 8192; ///< that a match stands back
constexpr std::size_t kShortestMatch = 3;
constexpr std::size_t kLongestMatch = 264;
constexpr std::size_t kLongMatch = 9; ///< from here on its length has a byte of its own
constexpr unsigned kTableBits = 13;

/// Where in the table the three bytes from a place on are remembered.
std::size_t slotOf(const std::uint8_t* bytes)
{
    const std::uint32_t triple = std::uint32_t{bytes[0]} << 16 | std::uint32_t{bytes[1]} << 8 | bytes[2];
    return triple * 2654435761U >> (32 - kTableBits);
}

std::size_t matchLength(CBytes data, std::size_t from, std::size_t at)
{
    const std::size_t limit = std::min(data.size() - at, kLongestMatch);
    std::size_t length = 0;
    while (length < limit && data[from + length] == data[at + length])
        ++length;
    return length;
}

void putRuns(CBytes bytes, CByteArray& packed)
{
    while (!bytes.empty()) {
        const CBytes run = bytes.first(std::min(bytes.size(), kLongestRun));
        packed.append(static_cast<std::uint8_t>(run.size() - 1));
        packed.appendAll(run);
        bytes = bytes.subspan(run.size());
    }
}

void putMatch(std::size_t distance, std::size_t length, CByteArray& packed)
{
    const std::size_t offset = distance - 1;
    const std::size_t shortLength = length < kLongMatch ? length - 2 : 7;
    packed.append(static_cast<std::uint8_t>(shortLength << 5 | offset >> 8));
    if (length >= kLongMatch)
        packed.append(static_cast<std::uint8_t>(length - kLongMatch));
    packed.append(static_cast<std::uint8_t>(offset & 0xFF));
}

} // namespace

void packLZF(CBytes data, CByteArray& packed)
{
    std::array<std::uint32_t, std::size_t{1} << kTableBits> places{}; // one more than where; 0 for nowhere yet
    packed.clear();
    packed.reserve(data.size() + (data.size() + kLongestRun - 1) / kLongestRun);
    std::size_t runStart = 0;
    for (std::size_t at = 0; at + kShortestMatch <= data.size();) {
        std::uint32_t& place = places[slotOf(&data[at])];
        const std::size_t behind = std::exchange(place, static_cast<std::uint32_t>(at + 1));
        const std::size_t distance = at + 1 - behind;
        const bool isNear = behind != 0 && distance <= kFarthest;
        const std::size_t length = isNear ? matchLength(data, at - distance, at) : 0;
        if (length < kShortestMatch) {
            ++at;
            continue;
        }
        putRuns(data.subspan(runStart, at - runStart), packed);
        putMatch(distance, length, packed);
        at += length;
        runStart = at;
    }
    putRuns(data.subspan(runStart), packed);
}

bool unpackLZF(CBytes packed, std::span<std::uint8_t> data)
{
    std::size_t in = 0;
    std::size_t out = 0;
    while (in < packed.size()) {
        const std::size_t control = packed[in++];
        if (control < kLongestRun) {
            const std::size_t count = control + 1;
            if (count > packed.size() - in || count > data.size() - out)
                return false;
            std::memcpy(&data[out], &packed[in], count);
            in += count;
            out += count;
            continue;
        }
        const bool isLong = control >> 5 == 7;
        if (packed.size() - in < (isLong ? 2 : 1))
            return false;
        const std::size_t length = isLong ? packed[in++] + kLongMatch : (control >> 5) + 2;
        const std::size_t distance = ((control & 0x1F) << 8 | packed[in++]) + 1;
        if (distance > out || length > data.size() - out)
            return false;
        for (const std::size_t end = out + length; out < end; ++out) // may reach into what it writes
            data[out] = data[out - distance];
    }
    return out == data.size();
}

} // namespace qrb
