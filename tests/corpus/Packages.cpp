#include "Packages.h"

#include "SchemaText.h"

#include <TestSupport.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <set>
#include <system_error>

namespace Orvant::Support {

namespace {

using std::filesystem::path;

constexpr std::size_t documentsOfOneFolder = 40;

std::vector<path> filesUnder(const SchemaPackage& package, const std::string& extension) {
    std::vector<path> files;
    for (const path& folder : package.folders) {
        std::error_code missing;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, missing)) {
            if (entry.is_regular_file() && entry.path().extension() == extension)
                files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::map<std::string, path> schemasByName() {
    std::map<std::string, path> schemas;
    for (const SchemaPackage& package : schemaPackages()) {
        for (const path& schema : filesUnder(package, ".xsd"))
            schemas.emplace(schema.filename(), schema);
    }
    return schemas;
}

/// What a schema names.
struct NamesInSchema {
    std::vector<path> schemas;
    std::set<std::string> declarations; ///< without prefix
};

const NamesInSchema& namesInSchema(const path& schema) {
    static std::map<path, NamesInSchema> known;
    const auto [entry, isNew] = known.try_emplace(schema);
    auto& [schemas, declarations] = entry->second;
    if (!isNew)
        return entry->second;
    const std::string text = readFile(schema.string());
    const WrittenDocument document(text);
    for (const std::string& location : wordsIn(document.element(), {"schemaLocation"})) {
        if (const path file = schemaAt(schema, location); !file.empty())
            schemas.push_back(std::filesystem::canonical(file));
    }
    declarations = namesIn(document.element(),
                           {"base", "itemType", "memberTypes", "ref", "substitutionGroup", "type"});
    return entry->second;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const SchemaPackage& package) {
    return out << package.name;
}

const std::vector<SchemaPackage>& schemaPackages() {
    static const std::vector<SchemaPackage> packages = {
        {"docbook5-xml", {"/usr/share/xml/docbook/schema/xsd/5.0"}},
        {"foomatic-db", {"/usr/share/foomatic"}},
        {"gdal-data", {"/usr/share/gdal"}},
        {"gprconfig-kb", {"/usr/share/gprconfig"}},
        {"ismrmrd-schema", {"/usr/share/ismrmrd"}},
        {"libxerces-c-dev", {"/usr/share/doc/libxerces-c-dev/examples"}},
        {"opensaml-schemas", {"/usr/share/xml/opensaml"}},
        // Without OVAL, which is most of it, and would be most of the time of all tests here.
        {"openscap-common",
         {"/usr/share/openscap/cpe", "/usr/share/openscap/schemas/arf",
          "/usr/share/openscap/schemas/common", "/usr/share/openscap/schemas/cpe",
          "/usr/share/openscap/schemas/cve", "/usr/share/openscap/schemas/ocil",
          "/usr/share/openscap/schemas/sce", "/usr/share/openscap/schemas/sds",
          "/usr/share/openscap/schemas/xccdf"}},
        {"python3-xmlschema", {"/usr/lib/python3/dist-packages/xmlschema/schemas"}},
        {"sdformat-sdf", {"/usr/share/sdformat12"}},
        {"shibboleth-sp-common", {"/usr/share/xml/shibboleth", "/etc/shibboleth"}},
        {"xcb-proto", {"/usr/share/xcb"}},
        {"xmltooling-schemas", {"/usr/share/xml/xmltooling"}},
        {"xsdcxx", {"/usr/share/doc/xsdcxx"}},
    };
    return packages;
}

std::vector<path> schemasOf(const SchemaPackage& package) {
    std::vector<path> schemas;
    std::set<std::string> contents;
    for (const path& schema : filesUnder(package, ".xsd")) {
        if (contents.insert(readFile(schema.string())).second)
            schemas.push_back(schema);
    }
    return schemas;
}

std::vector<path> documentsOf(const SchemaPackage& package) {
    std::map<path, std::vector<path>> folders;
    for (const path& document : filesUnder(package, ".xml"))
        folders[document.parent_path()].push_back(document);
    std::vector<path> documents;
    for (const auto& [folder, files] : folders) {
        const std::size_t step = files.size() / documentsOfOneFolder + 1;
        for (std::size_t i = 0; i < files.size(); i += step)
            documents.push_back(files[i]);
    }
    return documents;
}

path schemaAt(const path& from, const std::string& location) {
    if (const path file = from.parent_path() / location; std::filesystem::exists(file))
        return file;
    const path name = path(location).filename();
    if (const path beside = from.parent_path() / name; std::filesystem::exists(beside))
        return beside;
    static const std::map<std::string, path> schemas = schemasByName();
    const auto found = schemas.find(name);
    return found == schemas.end() ? path() : found->second;
}

std::set<std::string> namesInSchemasUsedBy(const path& schema) {
    std::set<std::string> names;
    std::set<path> seen = {std::filesystem::canonical(schema)};
    std::vector<path> open = {schema};
    while (!open.empty()) {
        const path file = open.back();
        open.pop_back();
        for (const path& other : namesInSchema(file).schemas) {
            if (!seen.insert(other).second)
                continue;
            open.push_back(other);
            const auto& declarations = namesInSchema(other).declarations;
            names.insert(declarations.begin(), declarations.end());
        }
    }
    return names;
}

} // namespace Orvant::Support
