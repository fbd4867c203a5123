#pragma once

#include <FileSizeLimit.h>
#include <OwnProcess.h>
#include <TestSupport.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/XsdConfigReader.h>
#include <ConfigurationFramework/XsdElement.h>
#include <ConfigurationFramework/xsd/ov_schema.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Orvant::Support {

using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

inline const std::string readerNamespace = "http://www.orvant.com/OV_XsdReader";

inline const std::string suiteHeader =
    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
    "xmlns:ov=\"http://www.orvant.com/OV_QLV100\" xmlns=\"http://www.orvant.com/OV_QLV100\" "
    "targetNamespace=\"http://www.orvant.com/OV_QLV100\" elementFormDefault=\"qualified\">";

inline const std::string suiteHeaderWithoutPrefix =
    "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
    "xmlns=\"http://www.orvant.com/OV_QLV100\" "
    "targetNamespace=\"http://www.orvant.com/OV_QLV100\" elementFormDefault=\"qualified\">";

inline const std::string readerHeader =
    "<schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
    "xmlns:ov=\"http://www.orvant.com/OV_XsdReader\" xmlns=\"http://www.orvant.com/OV_XsdReader\" "
    "targetNamespace=\"http://www.orvant.com/OV_XsdReader\" elementFormDefault=\"qualified\">";

inline const std::string modelHeader =
    "<p1:schema xmlns:p1=\"http://www.orvant.com/OV_XsdReader\">";

inline const std::string sanitisingFile = ".tempFileForSanitazingTheInputOfTheXsdFile.xml";
inline const std::string rewritingFile =
    ".aVeryLongPathNameForAtemporaryFileInPlaceSoWeCouldParseOurXsd.xsd";

/// A schema of the suite that holds these lines.
inline std::string suiteSchema(const std::string& lines) {
    return suiteHeader + '\n' + lines + "\n</xs:schema>\n";
}

/// A schema in the reader's namespace that holds this.
inline std::string readerSchema(const std::string& content) {
    return "<schema xmlns=\"" + readerNamespace + "\">" + content + "</schema>";
}

inline std::unique_ptr<OV_XsdReader::ov_schema> parseDocument(const std::string& document) {
    std::istringstream in(document);
    return OV_XsdReader::schema_(in, xml_schema::flags::dont_validate);
}

inline std::unique_ptr<OV_XsdReader::ov_schema> parseSchema(const std::string& content) {
    return parseDocument(readerSchema(content));
}

inline std::string serialise(const OV_XsdReader::ov_schema& schema) {
    std::ostringstream out;
    OV_XsdReader::schema_(out, schema, xml_schema::namespace_infomap(), "UTF-8");
    return out.str();
}

/// The element tree of a schema in the reader's namespace that holds this.
inline XsdElement treeOf(const std::string& content) {
    return XsdElement(*parseSchema(content));
}

inline Strings typeNames(XsdElement& tree) {
    Strings names;
    for (const auto& [name, type] : tree.getXsdTree())
        names.push_back(name);
    return names;
}

inline Strings rootNames(XsdElement& tree) {
    Strings names;
    for (const auto& root : tree.getRootElements())
        names.push_back(root->name);
    return names;
}

inline Strings childNames(XsdElement& tree, const std::string& type) {
    Strings names;
    for (const auto& child : tree.getXsdTree().at(type)->children)
        names.push_back(child->name);
    return names;
}

/// @return the type of the ConfigException that the action throws, nothing when it throws none
template <typename Action>
std::optional<ConfigException::ExceptionType> failureOf(Action action) {
    try {
        action();
    } catch (ConfigException& e) {
        return e.getType();
    }
    return std::nullopt;
}

/// Gives a test access to a private member function, which explicit instantiations may name.
///
///     struct Update { using type = void (XsdElement::*)(); friend type memberOf(Update); };
///     template struct PrivateMember<Update, &XsdElement::update>;
///     (tree.*memberOf(Update()))();
template <typename Tag, typename Tag::type Member>
struct PrivateMember {
    friend typename Tag::type memberOf(Tag) { return Member; }
};

/// Runs an action while no file may become larger.
template <typename Action>
void withLargestFile(std::size_t size, const Action& action) {
    const FileSizeLimit limit(size);
    action();
}

/// A reader that has read a good schema from a file that is then overwritten.
class EarlierSchema : public testing::Test {
protected:
    EarlierSchema() {
        reader.readXSD(true);
        earlierTree = reader.getXsdTree();
    }

    /// Expects that reading throws, changes no file and leaves the tree as it was.
    void expectFailure(const std::string& bytes, bool sanitise,
                       ConfigException::ExceptionType type) {
        writeFile(file, bytes);
        EXPECT_EQ(type, failureOf([&] { reader.readXSD(sanitise); }));
        EXPECT_EQ(earlierTree, reader.getXsdTree());
        EXPECT_EQ(bytes, readFile(file));
    }
    /// Expects that for both ways of reading.
    void expectFailure(const std::string& bytes, ConfigException::ExceptionType type) {
        for (const bool sanitise : {true, false})
            expectFailure(bytes, sanitise, type);
    }

    TemporaryDirectory directory;
    FileName file = directory.file(
        "schema.xsd", suiteSchema("<xs:complexType name=\"Earlier\">\n<xs:sequence>\n"
                                  "<xs:element name=\"a\" type=\"xs:int\"/>\n</xs:sequence>\n"
                                  "</xs:complexType>\n<xs:element name=\"e\" type=\"Earlier\"/>"));
    XsdConfigReader reader{file};
    std::map<std::string, std::shared_ptr<XsdElementProperty>> earlierTree;
};

/// A reader that has read a schema of the suite with these lines.
class ReaderOfSchema : public XsdConfigReader {
public:
    ReaderOfSchema(const TemporaryDirectory& directory, const std::string& lines)
        : XsdConfigReader(directory.file("schema.xsd", suiteSchema(lines))) {
        readXSD(true);
    }
};

} // namespace Orvant::Support
