// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace qrb {

class CSampleBufferPool;

/// What stands in front of a buffer's samples.
///
///     offset 0          8      16         24     32        40
///            | rawBlock | pool | nextFree | capacity | bin | references | samples, 16-byte aligned ...
struct CSampleBufferHeader {
    void* rawBlock;
    CSampleBufferPool* pool;
    CSampleBufferHeader* nextFree;
    std::size_t capacity; ///< bytes
    std::int32_t bin;
    std::int32_t references;
    std::uint64_t reserved;
};
static_assert(sizeof(CSampleBufferHeader) == 48);

/// How the samples in a buffer stand for those of a block. Blocks that half consist of zeros, or of which half will be
/// dropped, travel as the other half alone between nodes that know of it.
enum class ESampleForm : std::uint8_t {
    whole,   ///< each is there
    stuffed, ///< half as many: each stands for its double and a zero behind it
    thinned  ///< half as many: each stands for itself and one behind it that nobody hears
};

/// Counted reference to a buffer of the pool; the last one gives the buffer back.
///
/// A buffer is written by whoever took it from the pool, before it is handed on; from then on it is read only, unless
/// isUnique() holds. Thread: audio, one instance's buffers never meet another's.
class CSampleBuffer {
public:
    CSampleBuffer() noexcept = default;
    CSampleBuffer(const CSampleBuffer& other) noexcept
        : m_header(other.m_header), m_offset(other.m_offset), m_form(other.m_form)
    {
        if (m_header != nullptr) {
            ++m_header->references;
        }
    }
    CSampleBuffer(CSampleBuffer&& other) noexcept
        : m_header(std::exchange(other.m_header, nullptr)), m_offset(other.m_offset), m_form(other.m_form)
    {
    }
    CSampleBuffer& operator=(const CSampleBuffer& other) noexcept
    {
        CSampleBuffer copy(other);
        std::swap(m_header, copy.m_header);
        m_offset = copy.m_offset;
        m_form = copy.m_form;
        return *this;
    }
    CSampleBuffer& operator=(CSampleBuffer&& other) noexcept
    {
        std::swap(m_header, other.m_header);
        m_offset = other.m_offset;
        m_form = other.m_form;
        other.clear();
        return *this;
    }
    ~CSampleBuffer() { clear(); }

    /// Gives the reference up.
    void clear() noexcept
    {
        if (m_header != nullptr && --m_header->references == 0) {
            giveBack();
        }
        m_header = nullptr;
    }

    [[nodiscard]] explicit operator bool() const noexcept { return m_header != nullptr; }
    [[nodiscard]] bool isUnique() const noexcept { return m_header != nullptr && m_header->references == 1; }
    /// Number of doubles there is room for.
    [[nodiscard]] int capacity() const noexcept
    {
        return m_header == nullptr ? 0 : static_cast<int>(m_header->capacity / sizeof(double)) - m_offset;
    }
    /// Samples; null for an empty reference.
    [[nodiscard]] double* data() noexcept { return samples(); }
    [[nodiscard]] const double* data() const noexcept { return samples(); }

    /// How to read the samples; told by whoever hands the reference on.
    [[nodiscard]] ESampleForm form() const noexcept { return m_form; }
    void setForm(ESampleForm form) noexcept { m_form = form; }

    /// A reference to the samples from `start` on.
    [[nodiscard]] CSampleBuffer from(int start) const noexcept
    {
        CSampleBuffer part(*this);
        part.m_offset += start;
        return part;
    }
    /// Whether both refer to one buffer, perhaps to different samples of it.
    [[nodiscard]] bool sharesSamplesWith(const CSampleBuffer& other) const noexcept
    {
        return m_header == other.m_header;
    }

    friend bool operator==(const CSampleBuffer& a, const CSampleBuffer& b) noexcept = default;

private:
    friend class CSampleBufferPool;
    explicit CSampleBuffer(CSampleBufferHeader* header) noexcept : m_header(header) {}

    [[nodiscard]] double* samples() const noexcept
    {
        return m_header == nullptr ? nullptr : reinterpret_cast<double*>(m_header + 1) + m_offset;
    }
    void giveBack() noexcept;

    CSampleBufferHeader* m_header = nullptr;
    int m_offset = 0; ///< samples in front of the first one
    ESampleForm m_form = ESampleForm::whole;
};

} // namespace qrb
