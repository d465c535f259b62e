// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/VectorWidth.h"

namespace qrb {

bool hasVectorWidth(EVectorWidth width)
{
    return width != EVectorWidth::quads || __builtin_cpu_supports("avx2");
}

EVectorWidth widestVectors()
{
    return hasVectorWidth(EVectorWidth::quads) ? EVectorWidth::quads : EVectorWidth::pairs;
}

} // namespace qrb
