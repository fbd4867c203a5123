#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace OV_XsdReader {
class ov_schema;
}

namespace Orvant {

class FileName;

/// The files that the schema service makes: scratch files beside a schema file, and what it writes.
/// All are new: what stood in their place is removed, and a link that comes there in the meantime
/// is not followed.
///
/// All functions throw FileNameException for a name that no file system could hold.
namespace SchemaFiles {

/// @return true for a file that has the name of a scratch file, or is a link that leads to or
///         through one: the schema service would delete it
bool isScratchFile(const FileName& file);

/// @return the name of the scratch file that a schema file is copied to for being rewritten
FileName sanitisingCopy(const FileName& file);

/// Takes away what has a name, for a new file to have it. A directory stays.
/// @return true when nothing has that name now
bool makePlace(const FileName& file);

/// Makes a file of these bytes in a place that makePlace() has made.
/// @throws ConfigException of type SourceNotFound when that fails; there is no such file then, but
///         what somebody else may have put there
void make(const FileName& file, std::string_view bytes);

/// Rewrites a file through a scratch file beside it. Every line ends with a line feed afterwards; a
/// file that cannot be opened is taken for empty.
/// @throws ConfigException of type SourceNotFound when that fails; the file is then as it was
void rewriteLines(const FileName& file,
                  const std::function<std::string(const std::string&)>& rewrite);

/// Writes a schema as the model has it to a file for which there is place.
/// @throws ConfigException of type SourceNotFound when the file cannot be written
/// @throws xml_schema::serialization when XML cannot hold the schema
void write(const OV_XsdReader::ov_schema& schema, const FileName& file);

} // namespace SchemaFiles

} // namespace Orvant
