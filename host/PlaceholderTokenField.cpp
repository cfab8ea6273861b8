// SPDX-License-Identifier: MIT
#include <host/PlaceholderTokenField.h>

namespace host {

PlaceholderMenuDelegate::~PlaceholderMenuDelegate() = default;

PlaceholderTokenField::PlaceholderTokenField() = default;
PlaceholderTokenField::~PlaceholderTokenField() = default;

} // namespace host
