#pragma once

#include <string>

namespace Suite {

/// @return a table with a row for each value that is registered: where it is, what it is, which
///         layer decided it and which element locks it
std::string settingsTable();

} // namespace Suite
