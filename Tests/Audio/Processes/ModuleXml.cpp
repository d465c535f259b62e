// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/Processes/ModuleXml.h"

#include <cmath>

namespace qrb {

std::string moduleXml(const std::string& kind, std::initializer_list<std::string> params, const std::string& attrs,
                      const std::string& name)
{
    std::string xml = "<audio:" + kind + " name='" + (name.empty() ? kind : name) + "' " + attrs + ">";
    int index = 0;
    for (const std::string& param : params) {
        const std::string slot = std::to_string(index++);
        if (param.empty())
            continue;
        const bool isMarked = param[0] == '*' || param[0] == '+';
        const std::string use = param[0] == '*'   ? "use-all-elements='true'"
                                : param[0] == '+' ? "use-all-groups='true'"
                                                  : "";
        xml += "<audio:param-alloc name='slot" + slot + "' index='" + slot + "' param-name='^" +
               (isMarked ? param.substr(1) : param) + "' " + use + "/>";
    }
    return xml + "</audio:" + kind + ">";
}

std::string linkXml(const std::string& from, const std::string& to)
{
    return "<audio:process-link name='link' src='" + from + "' dst='" + to + "'/>";
}

bool isSoftSilence(double sample)
{
    return std::abs(std::abs(sample) - 1e-11) < 1e-16;
}

} // namespace qrb
