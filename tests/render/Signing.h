// SPDX-License-Identifier: MIT
#pragma once

#include "Render.h"

namespace render {

/// A document of two pages, signed by a certificate of its own; `reference` goes into the signature, `catalog` into the
/// catalog.
/// The folder gets the signer's key and certificate.
std::string signedDocument(const Folder& folder, const std::string& reference = {}, const std::string& catalog = {});

} // namespace render
