// Nothing that a reader can be asked may tell the reader over the compact tree from a literal one
// over a Xerces DOM.

#include "DomConfigReader.h"

#include <ConfigurationFramework/SimpleConfigReader.h>
#include <ReaderQuestions.h>
#include <TestSupport.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <sstream>

namespace Orvant {
namespace {

using Support::askEverything;
using Support::DomConfigReader;
using Support::Recorder;
using Random = std::mt19937;

template <typename Container>
const auto& anyOf(const Container& container, Random& random) {
    return container[random() % container.size()];
}

/// Documents and questions use few names and keys, so that they often match.
const std::vector<std::string> names = {"A", "B", "Value", "item", "Configuration", "Größe", "nil"};
const std::vector<std::string> keys = {"", "1", "k", "ä", "none"};

/// Drives one sequence of operations, the same for the same state of `random`.
template <typename Reader>
std::string drive(Reader& reader, Random random, int operations) {
    std::ostringstream record;
    record.precision(17);
    Recorder object(names, 1, record);
    for (int i = 0; i < operations; ++i) {
        const std::string& name = anyOf(names, random);
        const std::string& key = anyOf(keys, random);
        const auto operation = random() % 13;
        record << "operation " << operation << ' ' << name << ' ' << key << '\n';
        switch (operation) {
        case 0:
            record << reader.setCurrentNode(name);
            break;
        case 1:
            record << reader.setCurrentKeyedNode(name, key);
            break;
        case 2:
            record << reader.tagExists(name);
            break;
        case 3:
            record << reader.getClassContents(name, object);
            break;
        case 4:
            record << reader.getClassContents(name, key, object);
            break;
        case 5: {
            std::vector<ConfigurationObject*> objects(2, &object);
            record << reader.getClassContents(name, {key, anyOf(keys, random)}, objects);
            break;
        }
        case 6:
            record << reader.findAndGetClassContents(name, object);
            break;
        case 7:
            record << reader.findAndGetClassContents(name, key, object);
            break;
        case 8:
            record << reader.getClassContents(object);
            break;
        case 9:
            record << reader.createConfigurationObjects(name, [&](const std::string& found) {
                record << "callback " << found << '\n';
                askEverything(reader, "Value", record);
            });
            break;
        case 10: {
            std::string text = "unchanged";
            bool editable = true;
            record << reader.getString(text, editable) << text << editable;
            break;
        }
        default:
            askEverything(reader, name, record);
        }
    }
    return record.str();
}

void expectSameAnswers(const std::string& document, Random& random, int sequences, int operations) {
    for (int i = 0; i < sequences; ++i) {
        DomConfigReader oracle(document);
        SimpleConfigReader reader(FileName(), document, {oracle.version()});
        random.discard(1);
        const std::string expected = drive(oracle, random, operations);
        ASSERT_EQ(expected, drive(reader, random, operations)) << document;
    }
}

/// A document in memory ends at its first NUL, so what holds one is read from a file.
void expectSameAnswersFromFile(const std::string& bytes, Random& random) {
    const Support::TemporaryDirectory directory;
    const FileName file = directory.file("document.xml", bytes);
    for (int i = 0; i < 20; ++i) {
        DomConfigReader oracle(bytes);
        SimpleConfigReader reader(file, "", {oracle.version()});
        random.discard(1);
        const std::string expected = drive(oracle, random, 40);
        ASSERT_EQ(expected, drive(reader, random, 40)) << bytes;
    }
}

std::string utf16(const std::u16string& text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const auto high = static_cast<char>(unit >> 8U);
        const auto low = static_cast<char>(unit & 0xFFU);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

const std::string prolog = "<!DOCTYPE Configuration [\n"
                           "<!ENTITY text 'some text'><!ENTITY element '<A><Value>1</Value></A>'>\n"
                           "<!ENTITY nested '&text; and &element;'><!ENTITY empty ''>\n"
                           "<!ENTITY number '42'><!ENTITY amp2 '&#38;amp;'>\n"
                           "<!ELEMENT Configuration ANY><!ELEMENT A (Value*,item*)>\n"
                           "<!ATTLIST A key CDATA 'k' editable (true|false) 'false'>\n"
                           "<!ATTLIST Value editable CDATA #FIXED 'false' other CDATA 'x'>\n"
                           "<!ATTLIST Configuration version CDATA '1'>\n"
                           "<!NOTATION n SYSTEM 'n'><!ENTITY % parameter ''> %parameter;\n"
                           "<!-- comment --><?pi in the prolog?>]>\n";

TEST(ReaderEquivalence, HoldsOnACorpus) {
    const std::vector<std::string> corpus = {
        "<Configuration/>",
        "<Configuration version='1'><A>text</A></Configuration>",
        "<Configuration><A><![CDATA[cdata]]></A><B>text<![CDATA[cdata]]></B>"
        "<Value><![CDATA[]]>text</Value></Configuration>",
        "<Configuration><A><!--c-->1</A><B>2<!--c-->3</B><Value><!--c--></Value></Configuration>",
        "<Configuration><A><?pi d?>1</A><B>2<?pi d?>3</B><Value><?pi?></Value></Configuration>",
        "<!--c--><?pi d?><Configuration><!--c--><A/><?pi d?></Configuration><!--c--><?pi d?>",
        "<Configuration><A>&lt;&amp;&gt;&quot;&apos;</A><B>&#65;&#x1F600;</B>"
        "<Value>&#13;&#10;&#9;</Value></Configuration>",
        "<Configuration>\r\n<A>\r1\r\n</A>\n\r<B>\n</B>\t<Value> true</Value></Configuration>",
        prolog + "<Configuration><A>&text;</A><B>1&text;2</B><Value>&number;</Value>"
                 "<item>&empty;</item></Configuration>",
        prolog + "<Configuration>&element;<A/>&nested;<B>&element;<A key='1'/></B>"
                 "<item>&amp2;</item></Configuration>",
        prolog + "<Configuration>&element;<A/><B>&element;</B></Configuration>",
        prolog + "<Configuration><A key=''><Value editable='false'>1</Value> <item/></A>"
                 "<A editable='true'/><A key='1'><Value>2</Value></A></Configuration>",
        prolog + "<Configuration>&undeclaredButNeverReached2;</Configuration>",
        "<Configuration xmlns='urn:d' xmlns:p='urn:p'><p:A><A/></p:A><A p:key='1' "
        "key='2'/></Configuration>",
        "<?xml version='1.1'?><Configuration><A>&#1;\xC2\x85</A></Configuration>",
        "<?xml version='1.0' standalone='yes'?><Configuration><Configuration key='k'>"
        "<Value>nested root</Value></Configuration></Configuration>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><Configuration><Gr\xF6\xDF"
        "e>\xE4</Gr\xF6\xDF"
        "e></Configuration>",
        "\xEF\xBB\xBF<Configuration><Größe>1.5</Größe></Configuration>",
        "<Configuration><A><item>1</item><B><item editable='false'>2</item><item/>"
        "<item><item>3</item></item></B></A></Configuration>",
        "<Configuration><Value>x</Value><Value>2</Value><A key='1'/><A/><A key=''>last"
        "</A></Configuration>",
    };
    Random random(1);
    for (const std::string& document : corpus) {
        try {
            const DomConfigReader wellFormed(document);
        } catch (const std::runtime_error&) {
            EXPECT_ANY_THROW(SimpleConfigReader(FileName(), document, {"", "1"})) << document;
            continue;
        }
        expectSameAnswers(document, random, 15, 40);
    }
}

TEST(ReaderEquivalence, HoldsInUtf16) {
    const std::u16string document = u"\uFEFF<?xml version='1.0' encoding='UTF-16'?>\r\n"
                                    u"<Configuration><Größe>\U0001F600 ä</Größe></Configuration>";
    Random random(2);
    expectSameAnswersFromFile(utf16(document, false), random);
    expectSameAnswersFromFile(utf16(document, true), random);
}

TEST(ReaderEquivalence, HoldsForTextsThatArriveInPieces) {
    Random random(3);
    for (const std::size_t length : {1000U, 16383U, 16384U, 49151U, 65536U, 300001U}) {
        std::string text;
        while (text.size() < length)
            text += random() % 50 == 0 ? "&amp;" : random() % 3 == 0 ? "\xF0\x9F\x98\x80" : "x";
        expectSameAnswers("<Configuration><A>" + text + "</A><Value>" + text +
                              "<!-- -->tail</Value></Configuration>",
                          random, 3, 10);
    }
}

TEST(ReaderEquivalence, HoldsForElementsWithManyChildren) {
    Random random(4);
    for (int i = 0; i < 20; ++i) {
        std::string document = "<Configuration>";
        for (int child = 0; child < 80; ++child) {
            const std::string& name = anyOf(names, random);
            const bool isKeyed = random() % 3 != 0;
            document += '<' + name + (isKeyed ? " key='" + anyOf(keys, random) + '\'' : "") +
                        "><Value>" + std::to_string(child) + "</Value></" + name + '>';
        }
        expectSameAnswers(document + "</Configuration>", random, 5, 5);
        if (HasFatalFailure())
            return;
    }
}

/// Adds random content to a document: elements of few names, texts of all kinds, and whatever else
/// may be between them.
void addContent(std::string& document, int depth, Random& random) {
    static const std::vector<std::string> pieces = {
        "true",       "false",      " true",         "12",      "-1",
        "4294967295", "2147483648", "1.5e3",         "1e",      "0x1F",
        "abc",        " ",          "\n  ",          "\r\n",    "&#x41;",
        "&amp;",      "&text;",     "&element;",     "&empty;", "&number;",
        "<!--c-->",   "<?pi d?>",   "<![CDATA[1]]>", "ä"};
    const auto count = random() % 5;
    for (auto i = count; i > 0; --i) {
        if (random() % 2 == 0 || depth == 0) {
            document += anyOf(pieces, random);
            continue;
        }
        const std::string& name = names[random() % 6];
        document += '<' + name;
        if (random() % 3 == 0)
            document += " key='" + keys[random() % 4] + '\'';
        if (random() % 4 == 0)
            document += random() % 2 == 0 ? " editable='false'" : " editable='no'";
        if (random() % 8 == 0) {
            document += "/>";
            continue;
        }
        document += '>';
        addContent(document, depth - 1, random);
        document += "</" + name + '>';
    }
}

TEST(ReaderEquivalence, HoldsOnGeneratedDocuments) {
    Random random(20'261'121);
    for (int i = 0; i < 3000; ++i) {
        std::string document = prolog + "<Configuration version='" + std::to_string(i) + "'>";
        addContent(document, 4, random);
        expectSameAnswers(document + "</Configuration>", random, 1, 12);
        if (HasFatalFailure())
            return;
    }
}

} // namespace
} // namespace Orvant
