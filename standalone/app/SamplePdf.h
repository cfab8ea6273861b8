// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace app {

/// Writes a PDF of one A4 page that shows the JPEG picture `page`, as it is, over the whole page. Throws
/// std::runtime_error where a file cannot be read or written.
void writeSamplePdf(const std::filesystem::path& page, const std::filesystem::path& pdf);

} // namespace app
