#pragma once

#include <filesystem>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

namespace Orvant::Support {

/// A Debian package that has schemas, and documents that are written after them.
struct SchemaPackage {
    std::string name;
    std::vector<std::filesystem::path> folders;
};

/// For what GoogleTest prints.
std::ostream& operator<<(std::ostream& out, const SchemaPackage& package);

/// The packages that scripts/bootstrap.sh installs for these tests.
const std::vector<SchemaPackage>& schemaPackages();

/// @return the schemas of a package that differ from each other, sorted; none when it is missing
std::vector<std::filesystem::path> schemasOf(const SchemaPackage& package);

/// @return documents of a package, of many in one folder only some
std::vector<std::filesystem::path> documentsOf(const SchemaPackage& package);

/// @param from     a schema
/// @param location where it says that another one is, perhaps in the Web
/// @return that file, or one of the same name beside it or in any package; empty when there is none
std::filesystem::path schemaAt(const std::filesystem::path& from, const std::string& location);

/// @return local names that the files name which a schema imports, includes or redefines, and those
///         that these do
std::set<std::string> namesInSchemasUsedBy(const std::filesystem::path& schema);

} // namespace Orvant::Support
