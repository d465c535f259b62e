// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CUpdateListener.h"

namespace qrb {

/// A listener that passes its calls on to an owner, which outlives it.
template <typename T>
class COwnedUpdateListener : public CUpdateListener {
public:
    explicit COwnedUpdateListener(T& owner) : m_owner(owner) {}

    [[nodiscard]] T& owner() const { return m_owner; }

private:
    T& m_owner;
};

} // namespace qrb
