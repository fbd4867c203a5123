// What a schema declares, and how to reduce it: whole types, children of one type, attributes of
// one type.

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/XsdConfigReader.h>
#include <FileHandling/FileName.h>

#include <iostream>

namespace {

//! [list]
void list(Orvant::XsdConfigReader& reader) {
    for (const auto& [name, type] : reader.getRootelements()) {
        std::cout << name << ": " << type << '\n';
        for (const auto& [child, childType] : reader.getSubTypes(type))
            std::cout << "  " << child << ": " << childType << '\n';
        for (const auto& attribute : reader.getAttributes(type))
            std::cout << "  @" << attribute << '\n';
    }
}
//! [list]

} // namespace

int main() {
    //! [reduce]
    try {
        Orvant::XsdConfigReader reader("machine.xsd");
        reader.readXSD(true);
        list(reader);

        reader.keepXSDElement({"Machine", "ToolMagazine"});  // types, and what they require
        reader.keepXSDChildElement("Machine", {"magazine"}); // of its optional children
        reader.keepXSDChildAttributes("Machine", {"id"});    // of its optional attributes
        std::cout << "\nNot written:\n";
        for (const Orvant::XsdLoss& loss : reader.getLosses())
            std::cout << loss.line << ": " << loss.construct << " of " << loss.owner << ": "
                      << loss.effect << '\n';
        reader.writeXSD("reduced.xsd", true);
        std::cout << "\nReduced to\n";
        list(reader);
    } catch (const Orvant::ConfigException& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
    //! [reduce]
}
