#pragma once

#include <FileHandling/FileName.h>

#include <xercesc/sax2/DefaultHandler.hpp>

namespace Orvant::Tool {

/// Parses a file for what the library does not tell, opening no other one.
/// @param handler must not throw
/// @return false when the file is not well-formed XML
bool parseFile(const FileName& file, xercesc::DefaultHandler& handler);

} // namespace Orvant::Tool
