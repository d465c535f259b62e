// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CQrbStdAllocator.h"

#include <functional>
#include <unordered_map>

namespace qrb {

/// Map without order, for lookups in constant time; nodes from the library's allocator.
template <typename K, typename V>
using CHashMap = std::unordered_map<K, V, std::hash<K>, std::equal_to<K>, CQrbStdAllocator<std::pair<const K, V>>>;

} // namespace qrb
