// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace qrb {

class CAudioParam;
class CAudioParamReader;
class CAudioParamStorage;

/// One parameter that a node reads. Stays at its address, since the parameter's reader writes its mask.
struct CAudioBoundParam {
    int index = 0; ///< of the allocation
    CAudioParam* param = nullptr;
    const CAudioParamStorage* storage = nullptr;
    CAudioParamReader* reader = nullptr;
    std::uint32_t mask = 0;    ///< bit g: group g (modulo 32) changed since the node last looked
    std::uint32_t touched = 0; ///< what the mask held when the running update began
    bool isSmooth = false;
    bool isAllGroups = false;
    bool isAllElements = false;
};

/// A node's or a module's handle on a parameter it reads: the values, and what counts while there are none.
struct CAudioParamSlot {
    const CAudioParamStorage* storage = nullptr; ///< null: not bound
    int index = -1;
    double unbound = 0.0;

    [[nodiscard]] bool isBound() const { return storage != nullptr; }
    /// Component 0 at the group and element; `unbound` where there is no value.
    [[nodiscard]] double value(int group, int element) const;
    /// The same rounded; what is no number gives 0, what is out of range the nearest integer.
    [[nodiscard]] int valueInt(int group, int element) const;
    [[nodiscard]] int groupCount() const;
    /// Elements of the group, the single group where the parameter has but one.
    [[nodiscard]] int elementCount(int group) const;
};

} // namespace qrb
