// Nothing that a reader can be asked may tell the reader over the compact tree from a literal one
// over a Xerces DOM.

#include "DomConfigReader.h"
#include "RandomDocuments.h"
#include "ReaderOperations.h"

#include <ConfigurationFramework/SimpleConfigReader.h>
#include <TestSupport.h>

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace Orvant {
namespace {

using Support::anyOf;
using Support::DomConfigReader;
using Support::fewKeys;
using Support::fewNames;
using Support::prolog;
using Support::Random;
using Support::randomDocument;

/// Drives one sequence of operations, the same for the same state of `random`.
template <typename Reader>
std::string drive(Reader& reader, Random random, int operations) {
    std::ostringstream record;
    record.precision(17);
    for (int i = 0; i < operations; ++i) {
        const std::string& name = anyOf(fewNames, random);
        const std::string& key = anyOf(fewKeys, random);
        std::string text = "unchanged";
        bool editable = true;
        switch (random() % 13) {
        case 0:
            record << "set " << name << reader.setCurrentNode(name);
            break;
        case 1:
            record << "set " << name << ' ' << key << reader.setCurrentKeyedNode(name, key);
            break;
        case 2:
            record << "get " << reader.getString(text, editable) << text << editable;
            break;
        default:
            Support::askAtRandom(reader, random, record);
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
            const std::string& name = anyOf(fewNames, random);
            const bool isKeyed = random() % 3 != 0;
            document += '<' + name + (isKeyed ? " key='" + anyOf(fewKeys, random) + '\'' : "") +
                        "><Value>" + std::to_string(child) + "</Value></" + name + '>';
        }
        expectSameAnswers(document + "</Configuration>", random, 5, 5);
        if (HasFatalFailure())
            return;
    }
}

TEST(ReaderEquivalence, HoldsOnGeneratedDocuments) {
    Random random(20'261'121);
    for (int i = 0; i < 3000; ++i) {
        const std::string root = "<Configuration version='" + std::to_string(i) + "'>";
        expectSameAnswers(randomDocument(root, random), random, 1, 12);
        if (HasFatalFailure())
            return;
    }
}

} // namespace
} // namespace Orvant
