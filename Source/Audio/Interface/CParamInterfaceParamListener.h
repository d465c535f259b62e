// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CCheckedObject.h"
#include "Core/CError.h"

namespace qrb {

class CInputStream;
struct CAudioParamUpdate;

/// Follows one parameter through an interface client. All calls come on the client's thread; it may leave the client in
/// any of them.
class CParamInterfaceParamListener : public CCheckedObject {
public:
    /// The parameter has got its description, which stands next in the stream: a CAudioParamInfo.
    virtual CErrorPtr onParamInfo(CInputStream& in) = 0;
    /// A change; the values are valid during the call.
    virtual CErrorPtr onParamValue(const CAudioParamUpdate& update) = 0;
};

} // namespace qrb
