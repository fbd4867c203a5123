#include <ConfigurationFramework/ConfigWriter.h>

#include <EntitySupport.h>
#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <random>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Orvant {
namespace {

using Support::configuration;
using Support::nestedEntities;
using Support::openBody;
using Support::openFile;
using Support::openString;
using Support::readString;
using Support::refusal;
using Support::repeated;
using Support::TemporaryDirectory;
using testing::HasSubstr;
using testing::Not;

/// A server on this machine that nobody should call.
class Listener {
public:
    Listener() : m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(m_socket, generic, size) != 0 || listen(m_socket, 8) != 0 ||
            getsockname(m_socket, generic, &size) != 0)
            throw std::runtime_error("no listening socket");
        m_port = ntohs(address.sin_port);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { close(m_socket); }

    std::string url() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/external"; }
    bool wasCalled() const {
        pollfd descriptor{m_socket, POLLIN, 0};
        return poll(&descriptor, 1, 50) != 0;
    }

private:
    int m_socket;
    unsigned m_port = 0;
};

// What is outside the document.

struct ExternalCase : Support::TestCase {
    std::string document; ///< with URL where the address goes; S holds the text "a"
    std::string external; ///< what is there
};

class ExternalReference : public testing::TestWithParam<ExternalCase> {
protected:
    static std::string document(const std::string& url) {
        std::string text = GetParam().document;
        return text.replace(text.find("URL"), 3, url);
    }
    static void expectNothingOf(SimpleConfigReader reader) {
        std::string value;
        bool editable = false;
        EXPECT_EQ(ConfigurationAccessResult::Success, reader.getString("S", value, editable));
        EXPECT_EQ("a", value);
        EXPECT_TRUE(editable);
    }
    static void expectNothingOf(const std::string& written) {
        EXPECT_THAT(written, HasSubstr("<S>a</S>"));
        EXPECT_THAT(written, Not(HasSubstr("secret")));
    }
};

TEST_P(ExternalReference, ReadsNoFile) {
    const TemporaryDirectory directory;
    directory.file("external", GetParam().external);
    for (const std::string& url :
         {"file://" + (directory.path() / "external").string(), std::string("external")}) {
        const FileName settings = directory.file("settings.xml", document(url));
        expectNothingOf(openFile(settings));
        expectNothingOf(openString(document(url)));
        expectNothingOf(ConfigWriter(settings, "").getAsString());
        expectNothingOf(ConfigWriter(FileName(), document(url)).getAsString());
    }
}

TEST_P(ExternalReference, MakesNoConnection) {
    const Listener listener;
    expectNothingOf(openString(document(listener.url())));
    expectNothingOf(ConfigWriter(FileName(), document(listener.url())).getAsString());
    EXPECT_FALSE(listener.wasCalled());
}

const std::string externalDeclarations =
    "<!ATTLIST S editable CDATA 'false' leaked CDATA 'secret'>";

std::string doctype(const std::string& rest) {
    return "<!DOCTYPE Configuration " + rest + ">" + configuration("<S>a</S>");
}

INSTANTIATE_TEST_SUITE_P(
    References, ExternalReference,
    testing::Values(
        ExternalCase{"Entity", configuration("<S>a</S>&e;", "<!ENTITY e SYSTEM 'URL'>"), "secret"},
        ExternalCase{"PublicEntity", configuration("<S>a</S>&e;", "<!ENTITY e PUBLIC 'p' 'URL'>"),
                     "secret"},
        ExternalCase{"ParameterEntity", configuration("<S>a</S>", "<!ENTITY % e SYSTEM 'URL'> %e;"),
                     externalDeclarations},
        ExternalCase{"Dtd", doctype("SYSTEM 'URL'"), externalDeclarations},
        ExternalCase{"PublicDtd", doctype("PUBLIC 'p' 'URL'"), externalDeclarations},
        ExternalCase{"DtdNextToAnInternalOne", doctype("SYSTEM 'URL' [<!ENTITY i 'i'>]"),
                     externalDeclarations},
        ExternalCase{"UnparsedEntity",
                     configuration("<S>a</S>", "<!NOTATION n SYSTEM 'URL'>"
                                               "<!ENTITY e SYSTEM 'secret' NDATA n>"),
                     "x"},
        ExternalCase{"Schema",
                     "<Configuration version='1.0' "
                     "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                     "xsi:noNamespaceSchemaLocation='URL'><S>a</S></Configuration>",
                     "no schema"},
        ExternalCase{"Inclusion",
                     configuration("<S>a</S><i:include "
                                   "xmlns:i='http://www.w3.org/2001/XInclude' href='URL'/>"),
                     "<secret/>"}),
    Support::nameOf<ExternalCase>);

// What is inside the document.

TEST(InternalDtd, DeclaresEntities) {
    const std::string document =
        configuration("<P key='&long;'><S>b&long;</S></P>", "<!ENTITY long 'very long'>");
    auto reader = openString(document);
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.tagExists("P"));
    std::set<std::string> keys;
    openString(document).getKeys("P", keys);
    EXPECT_THAT(keys, testing::ElementsAre("very long"));
    EXPECT_THAT(ConfigWriter(FileName(), document).getAsString(), HasSubstr("<S>bvery long</S>"));
}

TEST(InternalDtd, DeclaresDefaultAttributes) {
    const std::string document = "<!DOCTYPE Configuration ["
                                 "<!ATTLIST Configuration version CDATA '1.0'>"
                                 "<!ATTLIST S editable CDATA 'false' key CDATA 'k'>]>"
                                 "<Configuration><S>a</S><S editable='true' key='l'>b</S>"
                                 "</Configuration>";
    auto reader = openString(document);
    std::set<std::string> keys;
    reader.getKeys("S", keys);
    EXPECT_THAT(keys, testing::ElementsAre("k", "l"));
    std::string value;
    bool editable = true;
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.getString("S", value, editable));
    EXPECT_FALSE(editable);
    ASSERT_EQ(ConfigurationAccessResult::Success, reader.setCurrentKeyedNode("S", "l"));
    reader.getEditable(editable);
    EXPECT_TRUE(editable);
}

// How many references a document may hold.

/// @return what the reader and the writer say about a document, nothing if they open it
std::vector<std::optional<int>> refusalTypes(const std::string& document) {
    std::vector<std::optional<int>> types;
    const auto open = [&](auto call) {
        auto exception = refusal(call);
        types.push_back(exception ? std::optional<int>(exception->getType()) : std::nullopt);
    };
    open([&] { openString(document); });
    open([&] { ConfigWriter(FileName(), document); });
    return types;
}

const auto isOpened = testing::Each(std::nullopt);
const auto isRefused =
    testing::ElementsAre(ConfigException::ParserReportedErrors, ConfigException::InvalidDocument);

const std::string simpleEntity = "<!ENTITY a 'v'>";

struct ReferenceCase : Support::TestCase {
    std::function<std::string(std::size_t)> document; ///< with a number of references
};

class EntityReferences : public testing::TestWithParam<ReferenceCase> {};

TEST_P(EntityReferences, AreTenThousandAtMost) {
    EXPECT_THAT(refusalTypes(GetParam().document(10'000)), isOpened);
    EXPECT_THAT(refusalTypes(GetParam().document(10'001)), isRefused);
}

INSTANTIATE_TEST_SUITE_P(
    Places, EntityReferences,
    testing::Values(
        ReferenceCase{
            "Text",
            [](std::size_t count) { return configuration(repeated("&a;", count), simpleEntity); }},
        ReferenceCase{"Attribute",
                      [](std::size_t count) {
                          return configuration("<S key='" + repeated("&a;", count) + "'/>",
                                               simpleEntity);
                      }},
        ReferenceCase{"TextAndAttributes",
                      [](std::size_t count) {
                          return configuration(repeated("<S key='&a;'/>", 5'000) +
                                                   repeated("<S>&a;</S>", count - 5'000),
                                               simpleEntity);
                      }},
        ReferenceCase{"Nested",
                      [](std::size_t count) {
                          return configuration("&b;", simpleEntity + "<!ENTITY b '" +
                                                          repeated("&a;", count - 1) + "'>");
                      }}),
    Support::nameOf<ReferenceCase>);

TEST(EntityReferences, CountForEachDocumentByItself) {
    const std::string document = configuration("<S>x</S>" + repeated("&a;", 10'000), simpleEntity);
    for (int i = 0; i < 3; ++i) {
        auto reader = openString(document);
        EXPECT_EQ("x", readString(reader, "S"));
    }
}

TEST(EntityReferences, LeaveRoomForWhateverStandsBehindTheLast) {
    std::string declarations = "<!ENTITY % p ''>" + repeated("%p;", 5'000) + simpleEntity;
    std::string elements;
    for (int i = 0; i < 50; ++i) {
        const std::string name = "N" + std::to_string(i);
        declarations += "<!ELEMENT " + name + " (S|T)*><!ATTLIST " + name + " a CDATA 'x' b ID " +
                        "#IMPLIED c (d|e) 'd'>";
        elements += "<" + name + " b='" + name + "' f='g'><!--h--></" + name + "><?i j?>";
    }
    const auto references = [](std::size_t count) {
        return "<S>" + repeated("&a;", count) + "</S>";
    };
    EXPECT_THAT(refusalTypes(configuration(references(5'000) + elements, declarations)), isOpened);
    EXPECT_THAT(refusalTypes(configuration(references(5'001) + elements, declarations)), isRefused);
    declarations.insert(0, "<!ENTITY % q ''>" + repeated("%q;", 5'000));
    EXPECT_THAT(refusalTypes(configuration(elements, declarations)), isOpened);
}

TEST(EntityReferences, AreNotThoseThatXmlPredefinesOrThatNameCharacters) {
    auto reader = openBody("<S>" + repeated("&amp;", 20'000) + repeated("&#65;", 20'000) + "</S>");
    EXPECT_EQ(std::string(20'000, '&') + std::string(20'000, 'A'), readString(reader, "S"));
}

TEST(EntityReferences, AreWrittenAsWhatTheyStandFor) {
    ConfigWriter writer(FileName(),
                        configuration("<S>" + repeated("&a;", 10'000) + "</S>", simpleEntity));
    EXPECT_THAT(writer.getAsString(), HasSubstr(">" + std::string(10'000, 'v') + "<"));
}

struct BombCase : Support::TestCase {
    std::string document;
};

class EntityBomb : public testing::TestWithParam<BombCase> {};

TEST_P(EntityBomb, IsRefused) {
    EXPECT_THAT(refusalTypes(GetParam().document), isRefused);
}

const std::string nestedTexts = nestedEntities("", "&", "lol");

INSTANTIATE_TEST_SUITE_P(
    Places, EntityBomb,
    testing::Values(
        BombCase{"Text", configuration("<S>&e6;</S>", nestedTexts)},
        BombCase{"Attribute", configuration("<S key='&e6;'/>", nestedTexts)},
        BombCase{"DefaultAttribute",
                 configuration("<S/>", nestedTexts + "<!ATTLIST S key CDATA '&e6;'>")},
        // Each comes with its percent sign escaped, which makes it a reference of the
        // entity that holds it.
        BombCase{"ParameterEntity", configuration("", nestedEntities("% ", "&#37;", " ") + "%e6;")},
        BombCase{"EntityInItself", configuration("&a;", "<!ENTITY a '&b;'><!ENTITY b '&a;'>")},
        BombCase{"ParameterEntityInItself",
                 configuration("", "<!ENTITY % a '&#37;b;'><!ENTITY % b '&#37;a;'>"
                                   "%a;")}),
    Support::nameOf<BombCase>);

/// A document with an attribute that is that many characters long when its references are expanded.
std::string withLongAttribute(std::size_t length) {
    return configuration("<S key='" + repeated("&e;", length / 10'000) + "'/>",
                         "<!ENTITY e '" + std::string(10'000, 'x') + "'>");
}

TEST(DocumentConfinement, RefusesToFillTheMemoryWithAnAttribute) {
    EXPECT_THAT(refusalTypes(withLongAttribute(510'000)), isOpened);
    EXPECT_THAT(refusalTypes(withLongAttribute(520'000)), isRefused);
}

// What both open or neither opens: else an application could read what it can never save.

void expectAgreement(const std::string& document) {
    const auto types = refusalTypes(document);
    // A reader refuses other versions, too.
    if (types[0] != ConfigException::InvalidVersion) {
        EXPECT_EQ(types[0].has_value(), types[1].has_value()) << document.substr(0, 2'000);
    }
}

TEST(ReaderAndWriter, AgreeOnVersionsOfXmlAndDocumentTypes) {
    for (const char* const version :
         {"1.0", "1.1", "1.2", "1.6", "1.10", "1.", "1.a", "2.0", "", " 1.0", "1.0 ", "one"})
        expectAgreement("<?xml version='" + std::string(version) + "'?>" + configuration(""));
    EXPECT_THAT(refusalTypes("<?xml version='1.1'?>" + configuration("")), isOpened);
    EXPECT_THAT(
        refusalTypes("<?xml version='1.2'?>" + configuration("")),
        testing::ElementsAre(ConfigException::InvalidDocument, ConfigException::InvalidDocument));
    for (const char* const doctype :
         {"Configuration", "other", "a:b", "a:b:c", ":a", "a:", ":", "a:1", "a\xC3\xA4", "1",
          "a SYSTEM 'x'", "a:b:c PUBLIC 'p' 'x'", "a []", "a:b:c [<!ENTITY e 'e'>]", ""})
        expectAgreement("<!DOCTYPE " + std::string(doctype) + ">" + configuration(""));
}

TEST(ReaderAndWriter, AgreeOnDamagedDocuments) {
    const std::string whole =
        "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><!--c--><?p i?>"
        "<!DOCTYPE Configuration [<!ENTITY a 'v'><!ENTITY b '<B k=\"l\">&a; &#65;</B>'>"
        "<!ENTITY % p '<!ENTITY c \"c\">'>%p;<!ELEMENT A (B|C)*><!NOTATION n SYSTEM 'n'>"
        "<!ATTLIST A key CDATA 'k' t (x|y) 'x' i ID #IMPLIED><!--d--><?q?>]>"
        "<Configuration version='1.0'><A key='&a;'>x &b;<![CDATA[ <c> ]]></A><A i='i'/>&c;"
        "\xC3\xA4 <L editable='false'><item>1</item><item/></L><!--e--></Configuration><?r?>\n";
    EXPECT_THAT(refusalTypes(whole), isOpened);
    // A name outside the first 65,536 characters, which scanner and DOM do not see alike.
    const std::string far = "\xF0\x90\x80\x80";
    for (const std::string& odd :
         {configuration("<?" + far + " x?>"), configuration("<" + far + "/>"),
          configuration("<A " + far + "='x'/>"), "<?" + far + "?>" + configuration(""),
          configuration("", "<?" + far + "?>"),
          configuration("<A/>", "<!ATTLIST A " + far + " CDATA 'x'>"),
          configuration("&" + far + ";", "<!ENTITY " + far + " 'x'>"),
          "<!DOCTYPE " + far + ">" + configuration("")})
        for (const std::string version : {"1.0", "1.1"})
            expectAgreement("<?xml version='" + version + "'?>" + odd);
    const std::string pieces = "<>&;'\"=/!?[]-%#:x1 \n\t\x01\x80\xFF";
    std::mt19937 random(7);
    const auto position = [&random](const std::string& text) { return random() % text.size(); };
    for (int i = 0; i < 3'000; ++i) {
        std::string damaged = whole;
        for (auto changes = random() % 3 + 1; changes > 0; --changes)
            switch (random() % 4) {
            case 0:
                damaged[position(damaged)] = pieces[position(pieces)];
                break;
            case 1:
                damaged.erase(position(damaged), random() % 8 + 1);
                break;
            case 2:
                damaged.insert(position(damaged), 1, pieces[position(pieces)]);
                break;
            default:
                damaged.insert(position(damaged), damaged.substr(position(damaged), 20));
            }
        expectAgreement(damaged);
    }
}

TEST(DocumentConfinement, TellsTheLogWhatItDidNotOpen) {
    const Support::LogCapture log("DocumentParsing");
    Support::openString("<!DOCTYPE Configuration [<!ENTITY e SYSTEM 'file:///elsewhere.xml'>]>"
                        "<Configuration version='1.0'>&e;</Configuration>");
    EXPECT_THAT(log.text(), testing::HasSubstr("Not opened: file:///elsewhere.xml"));
}

} // namespace
} // namespace Orvant
