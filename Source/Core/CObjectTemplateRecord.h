// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Core/CArray.h"
#include "Core/CCheckedObject.h"
#include "Core/CObjectDocumentData.h"
#include "Core/CString.h"

#include <cstdint>
#include <memory>
#include <span>

namespace qrb {

/// What makes an object a stored template: the class of its instances and the sealed payload, read anew for each.
struct CObjectTemplateRecord : public CCheckedObject {
    CString classTag;
    CDocumentRef document;                 ///< strings of the payload, and its bytes if the document lies in memory
    CByteArray ownPayload;                 ///< copy of the payload of a document that came from a file
    std::span<const std::uint8_t> payload; ///< root prefix and node
};

} // namespace qrb
