// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CObject.h"

#include <memory>

namespace qrb {

class CAudioParamCollector;
class CAudioParamFilter;

/// Declares that parameters of a process follow others: `src` and `dst` list their paths, relative to the process and
/// separated by commas. Child of a process definition, or of a group of parameters in one.
class CAudioParamFilterDef : public CObject {
public:
    static void declare(CObjectClassInfo& info);

    CErrorPtr init() override;

    /// Makes the filter of one instance's process; the collector owns it. Thread: any while no audio runs.
    [[nodiscard]] CErrorPtr addTo(CAudioParamCollector& collector, const CString& processPath) const;

protected:
    [[nodiscard]] virtual std::unique_ptr<CAudioParamFilter> createFilter() const = 0;

private:
    CArray<CString> m_sources;
    CArray<CString> m_destinations;
};

/// Definition of filters of class T.
template <class T>
class CAudioParamFilterDefOf : public CAudioParamFilterDef {
protected:
    [[nodiscard]] std::unique_ptr<CAudioParamFilter> createFilter() const override { return std::make_unique<T>(); }
};

} // namespace qrb
