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
/// All are new: whatever had their name is removed, and a link that appears there in the meantime
/// is not followed.
///
/// All functions throw FileNameException for a name that no file system could hold.
namespace SchemaFiles {

/// @return true for a file that has the name of a scratch file, or is a link that leads to or
///         through one: the schema service would delete it
bool isScratchFile(const FileName& file);

/// @return the bytes of a schema file
/// @throws SchemaFileFailure when it cannot be read
std::string read(const FileName& file);

/// @return the name of the scratch file that a schema file is copied to in order to be rewritten
FileName sanitisingCopy(const FileName& file);

/// Removes whatever has a name, to free it for a new file. A directory stays.
/// @return true when nothing has that name now
bool makePlace(const FileName& file);

/// makePlace() for a scratch file.
/// @throws SchemaFileFailure when something keeps that name
void makePlaceForScratch(const FileName& file);

/// Creates a file of these bytes where makePlace() has made place.
/// @throws SchemaFileFailure when that fails; there is then no such file,
///         except one that somebody else may have put there
void make(const FileName& file, std::string_view bytes);

/// Rewrites a file through a scratch file beside it. Every line ends with a line feed afterwards; a
/// file that cannot be opened is treated as empty.
/// @throws SchemaFileFailure when that fails; the file is then as it was
void rewriteLines(const FileName& file,
                  const std::function<std::string(const std::string&)>& rewrite);

/// Writes a schema, as the model has it, to a file for which makePlace() has made place.
/// @throws SchemaFileFailure when the file cannot be written
/// @throws xml_schema::serialization when XML cannot hold the schema
void write(const OV_XsdReader::ov_schema& schema, const FileName& file);

} // namespace SchemaFiles

} // namespace Orvant
