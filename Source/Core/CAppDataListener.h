// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/COwnedUpdateListener.h"

namespace qrb {

/// A listener of application data: it attaches to a scope with the name of a data block.
template <typename T>
class CAppDataListener : public COwnedUpdateListener<T> {
public:
    using COwnedUpdateListener<T>::COwnedUpdateListener;
};

} // namespace qrb
