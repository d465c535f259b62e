// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Fuzz/CFuzzInput.h"
#include "Tools/Render/CProductModule.h"
#include "Tools/Render/CRenderInstance.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qrb {
class CAudioParamCollector;
class CAudioParamRegistry;
} // namespace qrb

namespace fuzz {

/// All that users can see or get back of an instance's parameters, programs and history, as bytes to compare.
[[nodiscard]] std::string stateOf(qrb::CAudioParamCollector& params, qrb::CAudioParamRegistry& master);
/// Whether numbers have to be within their bounds: what is loaded is, what editors send need not be.
enum class EBounds { any, declared };
/// Ends the program if a parameter holds a number that is not finite or not within the bounds.
void requireValidValues(qrb::CAudioParamCollector& params, EBounds bounds);

/// The bytes that something saves.
template <class T>
[[nodiscard]] std::vector<std::uint8_t> savedBytes(const T& what);
/// The bytes in their chunk.
[[nodiscard]] std::vector<std::uint8_t> packed(CBytes payload, std::uint32_t chunk);

/// An instance of the product that plays two channels. There is one a process, which stays until its end; errors that
/// somebody would be shown, and the log, go nowhere.
class CFuzzProduct {
public:
    [[nodiscard]] static CFuzzProduct& instance();

    /// Brings everything back to how it was at first.
    void reset();
    /// The same, with a graph that begins anew.
    void restart();
    /// Plays a block. Within the declared bounds, its output is finite.
    void play(EBounds bounds = EBounds::declared);
    /// All parameters that there are at first, in the order of their paths.
    [[nodiscard]] qrb::CArray<qrb::CAudioParam*> boundParams();
    /// What a host would keep.
    [[nodiscard]] std::vector<std::uint8_t> saved();
    [[nodiscard]] std::string state() { return stateOf(params(), master()); }

    [[nodiscard]] render::CRenderInstance& wrapper() { return *m_instance; }
    [[nodiscard]] qrb::CAudioParamCollector& params() { return m_instance->paramCollector(); }
    [[nodiscard]] qrb::CAudioParamRegistry& master() { return *m_instance->paramRegistry(); }
    /// One of the registries; any number means one.
    [[nodiscard]] qrb::CAudioParamRegistry& registry(std::size_t index);

private:
    CFuzzProduct();

    std::string m_error;
    render::CProductModule m_module;
    std::unique_ptr<render::CRenderInstance> m_instance;
    std::vector<std::uint8_t> m_start; ///< state at first
};

} // namespace fuzz
