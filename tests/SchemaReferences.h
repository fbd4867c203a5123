#pragma once

#include <ReaderSupport.h>
#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <string>

namespace Orvant::Support {

/// What a schema refers to outside itself.
struct SchemaReference : TestCase {
    const char* doctype; ///< before the schema; URL stands for what is referred to
    const char* content; ///< in the schema, likewise
};

inline const SchemaReference schemaReferences[] = {
    {"Entity", "<!DOCTYPE a [<!ENTITY e SYSTEM 'URL'>]>", "&e;"},
    {"PublicEntity", "<!DOCTYPE a [<!ENTITY e PUBLIC 'p' 'URL'>]>", "&e;"},
    {"ParameterEntity", "<!DOCTYPE a [<!ENTITY % e SYSTEM 'URL'> %e;]>", ""},
    {"Dtd", "<!DOCTYPE a SYSTEM 'URL'>", ""},
    {"PublicDtd", "<!DOCTYPE a PUBLIC 'p' 'URL'>", ""},
    {"Import", "<!DOCTYPE a [<!ENTITY i 'i'>]>",
     "<xs:import xmlns:xs='http://www.w3.org/2001/XMLSchema' schemaLocation='URL'/>"},
    {"Include", "", "<include schemaLocation='URL'/>"},
    {"SchemaLocation", "",
     "<u xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
     "xsi:schemaLocation='http://www.orvant.com/OV_XsdReader URL'/>"}};

/// A suite file with the reference, and a reader's own.
inline Strings filesReferringTo(const std::string& url, const SchemaReference& reference) {
    const auto referring = [&](std::string text) {
        const auto at = text.find("URL");
        return at == std::string::npos ? text : text.replace(at, 3, url);
    };
    const std::string doctype = referring(reference.doctype);
    const std::string content = referring(reference.content);
    return {doctype + '\n' +
                suiteSchema("<xs:complexType name=\"A\"/>\n" + content +
                            "\n<xs:element name=\"a\" type=\"A\"/>"),
            doctype + readerSchema("<complexType name=\"A\"/>" + content +
                                   "<element name=\"a\" type=\"A\"/>")};
}

/// Reads both files, and expects what they hold themselves.
inline void expectOwnContentOnly(const FileName& file, const Strings& contents) {
    for (const bool sanitise : {true, false}) {
        writeFile(file, contents[sanitise ? 0 : 1]);
        XsdConfigReader reader(file);
        reader.readXSD(sanitise);
        EXPECT_THAT(reader.getXsdTree(), testing::ElementsAre(testing::Pair("A", testing::_)));
        EXPECT_THAT(reader.getRootelements(), testing::ElementsAre(testing::Pair("a", "A")));
        EXPECT_THAT(reader.getAttributes("A"), testing::IsEmpty());
    }
}

} // namespace Orvant::Support
