// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <string>

namespace qrb {

/// A node of tag "audio:KIND" whose slots 0, 1, ... are parameters of the process around it. An empty name leaves its
/// slot unbound; a name with "*" in front reads all elements, one with "+" all groups.
[[nodiscard]] std::string moduleXml(const std::string& kind, std::initializer_list<std::string> params,
                                    const std::string& attrs = "", const std::string& name = "");

/// A link of the process.
[[nodiscard]] std::string linkXml(const std::string& from, const std::string& to);

/// Whether a sample is the noise that stands for silence.
[[nodiscard]] bool isSoftSilence(double sample);

} // namespace qrb
