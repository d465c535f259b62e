// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbMemAllocator.h"

#include <algorithm>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace qrb {

/// Growable array with room for `Inline` items inside itself. Appending to a full array grows its capacity to
/// capacity * 2 + 1; resizing repeats capacity + capacity / 2 + 1 until the count fits. Growth moves the items, so
/// pointers to them do not survive it.
template <typename T, std::size_t Inline = 4>
class CArray {
    static_assert(alignof(T) <= 16, "the allocator aligns to 16 bytes");

public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    CArray() noexcept = default;
    CArray(std::initializer_list<T> items) requires std::copy_constructible<T>
    {
        assign(std::span<const T>(items.begin(), items.size()));
    }
    explicit CArray(std::span<const T> items) requires std::copy_constructible<T> { assign(items); }
    CArray(const CArray& other) requires std::copy_constructible<T> { assign(other.span()); }
    CArray(CArray&& other) noexcept { take(other); }
    CArray& operator=(const CArray& other) requires std::copy_constructible<T>
    {
        if (this != &other) {
            assign(other.span());
        }
        return *this;
    }
    CArray& operator=(CArray&& other) noexcept
    {
        if (this != &other) {
            freeAll();
            take(other);
        }
        return *this;
    }
    ~CArray() { freeAll(); }

    [[nodiscard]] std::size_t size() const noexcept { return m_count; }
    [[nodiscard]] bool empty() const noexcept { return m_count == 0; }
    [[nodiscard]] std::size_t capacity() const noexcept { return m_capacity; }
    [[nodiscard]] T* data() noexcept { return m_items; }
    [[nodiscard]] const T* data() const noexcept { return m_items; }
    [[nodiscard]] T* begin() noexcept { return m_items; }
    [[nodiscard]] T* end() noexcept { return m_items + m_count; }
    [[nodiscard]] const T* begin() const noexcept { return m_items; }
    [[nodiscard]] const T* end() const noexcept { return m_items + m_count; }
    [[nodiscard]] std::span<T> span() noexcept { return {m_items, m_count}; }
    [[nodiscard]] std::span<const T> span() const noexcept { return {m_items, m_count}; }

    [[nodiscard]] T& operator[](std::size_t index) noexcept
    {
        assert(index < m_count);
        return m_items[index];
    }
    [[nodiscard]] const T& operator[](std::size_t index) const noexcept
    {
        assert(index < m_count);
        return m_items[index];
    }
    [[nodiscard]] T& front() noexcept { return (*this)[0]; }
    [[nodiscard]] const T& front() const noexcept { return (*this)[0]; }
    [[nodiscard]] T& back() noexcept { return (*this)[m_count - 1]; }
    [[nodiscard]] const T& back() const noexcept { return (*this)[m_count - 1]; }

    /// Appends one item and returns it. The argument may be an item of this array.
    T& append(const T& item) { return emplace(item); }
    T& append(T&& item) { return emplace(std::move(item)); }
    /// Appends an item made from the arguments.
    template <typename... Args>
    T& emplace(Args&&... args)
    {
        if (m_count == m_capacity) [[unlikely]] {
            return growAndEmplace(std::forward<Args>(args)...);
        }
        T* item = ::new (static_cast<void*>(m_items + m_count)) T(std::forward<Args>(args)...);
        ++m_count;
        return *item;
    }
    /// Appends copies of all items, which are not of this array.
    void appendAll(std::span<const T> items) requires std::copy_constructible<T>
    {
        fit(m_count + items.size());
        std::uninitialized_copy(items.begin(), items.end(), m_items + m_count);
        m_count += items.size();
    }
    /// Puts an item before position `index`, at most size().
    T& insertAt(std::size_t index, T item)
    {
        assert(index <= m_count);
        emplace(std::move(item));
        std::rotate(m_items + index, m_items + m_count - 1, m_items + m_count);
        return m_items[index];
    }
    /// Removes `count` items from `index` on; those behind move up in order.
    void removeAt(std::size_t index, std::size_t count = 1)
    {
        assert(index <= m_count && count <= m_count - index);
        std::move(m_items + index + count, m_items + m_count, m_items + index);
        std::destroy_n(m_items + m_count - count, count);
        m_count -= count;
    }
    /// Removes the last item, of which there is one.
    void removeLast() { removeAt(m_count - 1); }
    /// Sets the count; new items are value-initialised (zero for plain types).
    void resize(std::size_t count)
    {
        if (count < m_count) {
            std::destroy_n(m_items + count, m_count - count);
        } else {
            fit(count);
            std::uninitialized_value_construct_n(m_items + m_count, count - m_count);
        }
        m_count = count;
    }
    /// Makes room for exactly `capacity` items unless there is room already.
    void reserve(std::size_t capacity)
    {
        if (capacity > m_capacity) {
            moveTo(newRoom(capacity), capacity);
        }
    }
    /// Removes all items, keeps the room.
    void clear() noexcept
    {
        std::destroy_n(m_items, m_count);
        m_count = 0;
    }
    /// Index of the first item equal to `item`, or size().
    template <typename U>
    [[nodiscard]] std::size_t indexOf(const U& item) const
    {
        return static_cast<std::size_t>(std::find(begin(), end(), item) - begin());
    }
    template <typename U>
    [[nodiscard]] bool contains(const U& item) const
    {
        return indexOf(item) != m_count;
    }

    friend bool operator==(const CArray& a, const CArray& b) requires std::equality_comparable<T>
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    [[nodiscard]] T* inlineRoom() noexcept { return reinterpret_cast<T*>(m_inline); }
    [[nodiscard]] bool isInline() const noexcept { return static_cast<const void*>(m_items) == m_inline; }
    [[nodiscard]] static T* newRoom(std::size_t capacity)
    {
        // A count that overflows asks for everything, which the allocator refuses by ending the process.
        const bool fits = capacity <= static_cast<std::size_t>(-1) / kItemSize;
        return static_cast<T*>(CQrbMemAllocator::allocate(fits ? capacity * kItemSize : static_cast<std::size_t>(-1)));
    }
    void moveTo(T* room, std::size_t capacity)
    {
        if constexpr (std::is_trivially_copyable_v<T>) {
            if (m_count != 0) {
                std::memcpy(static_cast<void*>(room), m_items, m_count * kItemSize);
            }
        } else {
            std::uninitialized_move_n(m_items, m_count, room);
            std::destroy_n(m_items, m_count);
        }
        if (!isInline()) {
            CQrbMemAllocator::release(m_items);
        }
        m_items = room;
        m_capacity = capacity;
    }
    template <typename... Args>
    T& growAndEmplace(Args&&... args)
    {
        const std::size_t capacity = m_capacity * 2 + 1;
        T* room = newRoom(capacity);
        // Made before the move, since the arguments may refer to an item of this array.
        T* item = ::new (static_cast<void*>(room + m_count)) T(std::forward<Args>(args)...);
        moveTo(room, capacity);
        ++m_count;
        return *item;
    }
    void fit(std::size_t count)
    {
        std::size_t capacity = m_capacity;
        while (capacity < count) {
            const std::size_t grown = capacity + capacity / 2 + 1;
            capacity = grown > capacity ? grown : count;
        }
        reserve(capacity);
    }
    void assign(std::span<const T> items)
    {
        clear();
        appendAll(items);
    }
    /// Takes the items of `other`, which stays empty; this array holds nothing yet.
    void take(CArray& other) noexcept
    {
        if (other.isInline()) {
            m_items = inlineRoom();
            m_capacity = Inline;
            m_count = other.m_count;
            std::uninitialized_move_n(other.m_items, m_count, m_items);
            other.clear();
        } else {
            m_items = std::exchange(other.m_items, other.inlineRoom());
            m_capacity = std::exchange(other.m_capacity, Inline);
            m_count = std::exchange(other.m_count, 0);
        }
    }
    void freeAll() noexcept
    {
        std::destroy_n(m_items, m_count);
        if (!isInline()) {
            CQrbMemAllocator::release(m_items);
        }
    }

    // Items may be pointers, of which this is meant to be the size.
    static constexpr std::size_t kItemSize = sizeof(T); // NOLINT(bugprone-sizeof-expression)

    std::size_t m_count = 0;
    std::size_t m_capacity = Inline;
    T* m_items = inlineRoom();
    alignas(T) std::byte m_inline[Inline == 0 ? 1 : Inline * kItemSize];
};

/// Bytes of a stream, a chunk or a message.
using CByteArray = CArray<std::uint8_t, 16>;

} // namespace qrb
