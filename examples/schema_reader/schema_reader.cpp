// Reads a schema file, keeps some of its types and what these require, and writes the rest.
//
//   schema_reader SCHEMA OUTPUT TYPE...

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/XsdConfigReader.h>
#include <FileHandling/FileName.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Types = std::map<std::string, std::shared_ptr<Orvant::XsdElementProperty>>;

/// Prints the attributes and children of a type, down to the types that are not declared in the
/// schema. `path` are the types that are being printed: a type may contain itself.
void printContents(std::ostream& out, const Types& types, const std::string& typeName,
                   std::vector<std::string> path) {
    const auto type = types.find(typeName);
    if (type == types.end() || std::ranges::find(path, typeName) != path.end())
        return;
    path.push_back(typeName);
    const std::string indent(4 * path.size(), ' ');
    for (const std::string& attribute : type->second->attributes)
        out << indent << '@' << attribute << '\n';
    for (const auto& child : type->second->children) {
        out << indent << child->name << (child->type.empty() ? "" : ": ") << child->type
            << (child->maxOccurs == "unbounded" ? ", many" : "")
            << (child->minOccurs == 0 ? ", optional" : "") << '\n';
        printContents(out, types, child->type, path);
    }
}

std::string describe(Orvant::XsdConfigReader& reader) {
    std::ostringstream out;
    const Types types = reader.getXsdTree();
    for (const auto& [name, type] : reader.getRootelements()) {
        out << "  " << name << ": " << type << '\n';
        printContents(out, types, type, {});
    }
    out << "  Types:";
    for (const auto& [name, type] : types)
        out << ' ' << name;
    out << '\n';
    return out.str();
}

int reduce(const std::string& schema, const std::string& output,
           const std::vector<std::string>& typeNames) {
    Orvant::XsdConfigReader reader(schema);
    reader.readXSD(true);
    std::cout << schema << " declares\n" << describe(reader);

    reader.keepXSDElement(typeNames);
    const std::string kept = describe(reader);
    std::cout << "\nKept in " << output << '\n' << kept << "  Not written:\n";
    for (const Orvant::XsdLoss& loss : reader.getLosses())
        std::cout << "    " << loss.line << ": " << loss.construct << " of "
                  << (loss.owner.empty() ? "the schema" : loss.owner) << ": " << loss.effect
                  << '\n';
    reader.writeXSD(output, true);
    std::cout << "\nSize: " << std::filesystem::file_size(schema) << " bytes before, "
              << std::filesystem::file_size(output) << " bytes after\n";

    Orvant::XsdConfigReader readBack(output);
    readBack.readXSD(true);
    const bool same = describe(readBack) == kept;
    std::cout << "Read back: " << (same ? "the same tree" : "ANOTHER TREE") << '\n';
    return same ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 4) {
        std::cerr << "usage: schema_reader SCHEMA OUTPUT TYPE...\n";
        return 2;
    }
    try {
        return reduce(argv[1], argv[2], {argv + 3, argv + argc});
    } catch (Orvant::ConfigException& e) {
        std::cerr << "cannot reduce " << argv[1] << ": " << e.what() << ", type " << e.getType()
                  << '\n';
        return 1;
    }
}
