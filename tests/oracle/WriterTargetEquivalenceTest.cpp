// Whatever is done with a writer to elements, it must do and hold what one to a document does.

#include "WriterOperations.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ComparingWriter.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/ElementWriter.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <utility>

#include <xercesc/dom/DOMException.hpp>

namespace Orvant {
namespace {

using Support::anyOf;
using Support::LogCapture;
using Support::oneIn;
using Support::Random;
using Support::randomDocument;
using Support::Words;

using Strings = std::vector<std::string>;

std::string toUtf8(const XmlString& text) {
    return XercesHelperFunctions::xmlChToString(text.c_str());
}

/// @return all that an element holds, a line for each element
std::string describe(const WrittenElement& element, bool withComments = true,
                     const std::string& indentation = "\n") {
    std::string text = indentation + toUtf8(element.id.tag);
    if (element.id.key)
        text += " key=\"" + toUtf8(*element.id.key) + '"';
    text += " \"" + toUtf8(element.text) + '"';
    if (withComments)
        text += " <!--" + toUtf8(element.comment) + "-->";
    for (const WrittenElement& child : element.children)
        text += describe(child, withComments, indentation + "  ");
    return text;
}

/// Also what no document can hold, and names of as many children as are found by an index.
Words allWords() {
    using namespace std::string_literals;
    Words words;
    const auto add = [](Strings& list, const Strings& more) {
        list.insert(list.end(), more.begin(), more.end());
    };
    const Strings unfit = {"\x01",         "a\0b"s,        "\xFF", "ä\xC3", "\xEF\xBF\xBE",
                           "\xED\xA0\x80", "\xEF\xBF\xBD", "\x7F", "-",     "---"};
    add(words.names, Support::fewNames); // again: more often than the others
    add(words.names, unfit);
    add(words.names, {"", "a b", "1a", "a:b", ":", "-a", "a-b", "\U0001F600", "\U00010400"});
    for (int i = 0; i < 50; i += 3)
        words.names.push_back("N" + std::to_string(i));
    add(words.keys, unfit);
    for (int i = 0; i < 50; i += 6)
        words.keys.push_back(std::to_string(i));
    add(words.texts, unfit);
    add(words.comments, unfit);
    return words;
}

/// A writer that is used at random. What it does is noted.
class Session {
public:
    Session(std::unique_ptr<WriterTarget> target, const std::string& reference)
        : m_writer(WriterTarget::makeWriter(std::move(target))) {
        EXPECT_EQ(0, m_reader.addStringSource(reference, {}, AdvancedConfigReader::System, {"1"}));
    }

    /// Runs a random operation and whatever that calls back.
    /// @return the results and exceptions, and what is logged
    std::string operate(Random& random) {
        const LogCapture log("ConfigWriter");
        return operateUnlogged(random) + '\n' + log.text();
    }
    /// Runs a random operation and whatever that calls back.
    /// @return the results and exceptions
    std::string operateUnlogged(Random& random) {
        m_notes.clear();
        attempt(random, 3);
        return m_notes;
    }
    /// Writes as objects do: values, lists and objects one after the other, in elements of their
    /// own and with keys.
    void putPlainly(Random& random, unsigned int depth = 3);
    std::string print() { return m_writer->getAsString(); }

private:
    void note(const std::string& result) { m_notes += '\n' + result; }
    void attempt(Random& random, unsigned int depth);
    void run(Random& random, unsigned int depth);
    void runWithCallback(Random& random, unsigned int depth);
    void putMany(Random& random);
    void enterOneOfMany(const std::string& name, Random& random);
    void changeOneOfNamesakes(const std::string& name, Random& random);
    void putTypedValue(const std::string& name, Random& random);
    void putThrowingObject(const std::string& name, Random& random);

    std::unique_ptr<ConfigWriter> m_writer;
    AdvancedConfigReader m_reader;
    Words m_words = allWords();
    std::string m_notes;
};

void Session::attempt(Random& random, unsigned int depth) {
    try {
        run(random, depth);
    } catch (const xercesc::DOMException& e) {
        note("DOMException " + std::to_string(e.code));
    } catch (const std::runtime_error& e) {
        note(e.what());
    }
}

void Session::run(Random& random, unsigned int depth) {
    const std::string& name = anyOf(m_words.names, random);
    switch (random() % 20) {
    case 0:
        note("printed: " + m_writer->getAsString());
        break;
    case 1:
    case 2:
        for (const std::string& hidden : m_writer->getNamesHiddenByDescendants(
                 oneIn(2, random) ? m_words.names : Strings(2, name)))
            note("hidden: " + hidden);
        break;
    case 3:
        putMany(random);
        break;
    case 4:
        enterOneOfMany(name, random);
        break;
    case 5:
    case 6:
        putTypedValue(name, random);
        break;
    case 7:
        putThrowingObject(name, random);
        break;
    case 8:
        changeOneOfNamesakes(name, random);
        break;
    case 9:
    case 10:
    case 11:
    case 12:
        if (depth > 0)
            runWithCallback(random, depth);
        break;
    default:
        note(std::to_string(operateAtRandom(*m_writer, m_reader, m_words, random)));
    }
}

void Session::runWithCallback(Random& random, unsigned int depth) {
    const std::string& name = anyOf(m_words.names, random);
    const std::string& comment = anyOf(m_words.comments, random);
    const auto operateBelow = [&] {
        note("called back");
        for (auto count = random() % 5; count > 0; --count)
            if (oneIn(6, random))
                run(random, depth - 1); // what it throws goes through the callback
            else
                attempt(random, depth - 1);
        if (oneIn(8, random))
            m_writer->putString(""); // so that there is no more than an empty text
        if (oneIn(8, random))
            throw std::runtime_error("thrown by a callback");
    };
    const std::string& key = anyOf(m_words.keys, random);
    switch (random() % 6) {
    case 0:
        return m_writer->putElement(name, comment, operateBelow);
    case 2:
        return m_writer->putKeyedElement(name, key, comment, operateBelow);
    case 3:
        return m_writer->putKeyedElementUnlessEmpty(name, key, comment, operateBelow);
    case 1:
        return m_writer->putInFront(name, operateBelow);
    default:
        return m_writer->putElementUnlessEmpty(name, comment, operateBelow);
    }
}

/// Puts more children of one or many names than are looked for one by one, or not quite as many.
void Session::putMany(Random& random) {
    const std::string& name = anyOf(Support::fewNames, random);
    const std::string& comment = anyOf(m_words.comments, random);
    const auto kind = random() % 3;
    for (auto i = 20 + random() % 30; i > 0; --i)
        if (kind == 0)
            m_writer->createKeyedNode(name, std::to_string(i), comment);
        else if (kind == 1)
            m_writer->createNode("N" + std::to_string(i), comment);
        else
            m_writer->putString("N" + std::to_string(i), anyOf(m_words.texts, random), "");
}

/// Makes a child current that has as many children as its parent, of other names.
void Session::enterOneOfMany(const std::string& name, Random& random) {
    putMany(random);
    m_writer->putElement(name, "", [&] { putMany(random); });
    note(std::to_string(static_cast<int>(m_writer->setCurrentNode(name))));
}

void Session::changeOneOfNamesakes(const std::string& name, Random& random) {
    const Strings few = {"", "1", "k"};
    for (const std::string& key : few)
        m_writer->createKeyedNode(name, key, anyOf(m_words.comments, random));
    const std::string& key = anyOf(few, random);
    switch (random() % 3) {
    case 0:
        return m_writer->deleteNodes(name, key);
    case 1:
        return m_writer->putOnlyDifferentClassContents(
            name, key, *Support::randomLoadedObject(random), m_reader, "comment");
    default:
        note(std::to_string(static_cast<int>(m_writer->setCurrentKeyedNode(name, key))));
    }
}

void Session::putTypedValue(const std::string& name, Random& random) {
    const std::string& comment = anyOf(m_words.comments, random);
    const std::string& text = anyOf(m_words.texts, random);
    const auto bits = static_cast<unsigned int>(random());
    switch (random() % 7) {
    case 0:
        return m_writer->putValue(name, text, 0, comment);
    case 1:
        return m_writer->putValue(name, text.c_str(), 0, comment);
    case 2:
        return m_writer->putValue(name, static_cast<const char*>(nullptr), 0, comment);
    case 3:
        return m_writer->putValue(name, static_cast<int>(bits), 0, comment);
    case 4:
        return m_writer->putValue(name, bits, 0, comment);
    case 5:
        return m_writer->putValue(name, bits % 2 == 0, 0, comment);
    default:
        return m_writer->putValue(name, Strings{text, "text"}, 0, comment);
    }
}

void Session::putThrowingObject(const std::string& name, Random& random) {
    const Support::ThrowingObject object;
    switch (random() % 4) {
    case 0:
        return m_writer->putClassContents(object);
    case 1:
        return m_writer->putClassContents(name, object, "comment");
    case 2:
        return m_writer->putClassContents(name, "1", object, "comment");
    default:
        return m_writer->putOnlyDifferentClassContents(name, object, m_reader, "comment");
    }
}

void Session::putPlainly(Random& random, unsigned int depth) {
    for (auto count = random() % 5; count > 0; --count) {
        const std::string name = "N" + std::to_string(random() % 9);
        const std::string& text = anyOf(m_words.texts, random);
        switch (random() % (depth == 0 ? 2 : 4)) {
        case 0:
            m_writer->putString(name, text, "comment");
            break;
        case 1:
            m_writer->putStringVector(name, Strings(random() % 3, text), "");
            break;
        case 2:
            m_writer->putElement(name, "", [&] { putPlainly(random, depth - 1); });
            break;
        default:
            m_writer->putKeyedElement(name, text, "", [&] { putPlainly(random, depth - 1); });
        }
    }
}

TEST(ElementWriter, TakesForAListOnlyWhatHoldsNothingElse) {
    auto target = std::make_unique<ElementWriter>();
    const ElementWriter& elements = *target;
    const auto writer = WriterTarget::makeWriter(std::move(target));
    const auto put = [&](const std::string& name) -> const WrittenElement& {
        writer->putStringVector(name, {"text"}, "");
        return elements.root().children.back();
    };
    EXPECT_TRUE(put("list").isList());
    writer->putElement("outer", "", [&] {
        writer->putStringVector("table", {"text"}, "");
        writer->setCurrentNode("table");
        writer->putInt("other", 1, "");
    });
    const WrittenElement& table = elements.root().children.back().children.front();
    EXPECT_FALSE(table.isList());
    EXPECT_TRUE(table.isGroup());
    writer->putElement("outer", "", [&] {
        writer->putStringVector("text", {"text"}, "");
        writer->setCurrentNode("text");
        writer->putString("no list any more");
    });
    EXPECT_FALSE(elements.root().children.back().children.front().isList());
}

TEST(WriterTargetEquivalence, HoldsWhateverIsWritten) {
    for (unsigned int seed = 1; seed <= 250; ++seed) {
        Random random(seed);
        const std::string reference = randomDocument("<Configuration>", random, 3);
        auto elementWriter = std::make_unique<ElementWriter>();
        auto documentWriter = std::make_unique<ConfigWriterImpl>("");
        const WrittenElement& elements = elementWriter->root();
        const xercesc::DOMElement& document = documentWriter->root();
        Session light(std::move(elementWriter), reference);
        Session literal(std::move(documentWriter), reference);
        for (int i = 0; i < 15; ++i) {
            Random sameRandom = random;
            const std::string expected = literal.operate(sameRandom);
            ASSERT_EQ(expected, light.operate(random)) << "seed " << seed << ", " << i;
            const WrittenElement copy = copyOf(document);
            ASSERT_EQ(describe(copy), describe(elements))
                << "seed " << seed << ", " << i << ": " << expected;
            ASSERT_TRUE(copy == elements);
        }
        ASSERT_EQ(literal.print(), light.print()) << "seed " << seed;
    }
}

/// What two writers to elements are used for: at random, or as objects do.
class ComparingWriterUse : public testing::TestWithParam<bool> {
protected:
    struct Use {
        std::string notes = {};
        WrittenElement root = {{u"Configuration", {}}};
    };

    static void operate(Session& session, unsigned int seed, std::string& notes) {
        Random random(seed);
        if (GetParam())
            session.putPlainly(random);
        else
            for (int i = 0; i < 4; ++i)
                notes += session.operateUnlogged(random);
    }
    static Use write(unsigned int seed) {
        const LogCapture log("ConfigWriter"); // not compared: what is as expected is not made
        auto target = std::make_unique<ElementWriter>();
        ElementWriter& elements = *target;
        Session session(std::move(target), "<Configuration version='1'/>");
        Use use;
        operate(session, seed, use.notes);
        use.root.children = elements.takeAll();
        return use;
    }
    /// @param isAsExpected set to whether the writer found what was expected
    static Use writeComparing(unsigned int seed, const std::vector<WrittenElement>& expected,
                              bool& isAsExpected) {
        const LogCapture log("ConfigWriter");
        auto target = std::make_unique<ComparingWriter>();
        ComparingWriter& elements = *target;
        Session session(std::move(target), "<Configuration version='1'/>");
        elements.start(expected);
        Use use;
        operate(session, seed, use.notes);
        isAsExpected = elements.isAsExpected();
        use.root.children = elements.takeAll();
        return use;
    }
    static void expectSame(const Use& expected, const Use& actual, unsigned int seed) {
        EXPECT_EQ(expected.notes, actual.notes) << "seed " << seed;
        EXPECT_EQ(describe(expected.root, false), describe(actual.root, false)) << "seed " << seed;
    }
};

TEST_P(ComparingWriterUse, WritesWhatIsExpected) {
    int asExpected = 0;
    for (unsigned int seed = 1; seed <= 150; ++seed) {
        const Use expected = write(seed);
        bool isAsExpected = false;
        expectSame(expected, writeComparing(seed, expected.root.children, isAsExpected), seed);
        asExpected += isAsExpected ? 1 : 0;
    }
    // All, if nothing that was written was replaced afterwards.
    EXPECT_GE(asExpected, GetParam() ? 50 : 0);
}

TEST_P(ComparingWriterUse, WritesSomethingElseThanExpected) {
    for (unsigned int seed = 1; seed <= 300; ++seed) {
        const Use former = write(seed + 1);
        const Use expected = write(seed);
        bool isAsExpected = false;
        expectSame(expected, writeComparing(seed, former.root.children, isAsExpected), seed);
        // What differs is never taken for the same.
        EXPECT_FALSE(isAsExpected && !(expected.root == former.root)) << "seed " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Any, ComparingWriterUse, testing::Bool());

TEST(ComparingWriter, NeedsNoElementsForWhatIsAsExpected) {
    const auto put = [](ConfigWriter& writer, const std::string& last) {
        writer.putElement("View", "", [&] {
            writer.putString("Name", "Gr\u00F6\u00DFe", "comment");
            writer.putStringVector("Recent", {"a", "b"}, "");
            writer.putKeyedElement("Plotter", "Hall 1", "",
                                   [&] { writer.putInt("Copies", 1, ""); });
            writer.createNode("Empty", "");
            writer.putString("Last", last, "");
        });
    };
    auto target = std::make_unique<ComparingWriter>();
    ComparingWriter& elements = *target;
    const auto writer = WriterTarget::makeWriter(std::move(target));
    put(*writer, "1");
    EXPECT_FALSE(elements.isAsExpected());
    const std::vector<WrittenElement> former = elements.takeAll();

    elements.start(former);
    put(*writer, "1");
    EXPECT_TRUE(elements.isAsExpected());

    elements.start(former);
    put(*writer, "2");
    EXPECT_FALSE(elements.isAsExpected());
    EXPECT_EQ(u"2", elements.takeAll().front().children.back().text);

    elements.start(former);
    writer->putElement("View", "", [&] { writer->putString("Name", "Gr\u00F6\u00DFe", ""); });
    EXPECT_FALSE(elements.isAsExpected()) << "something is missing";
    EXPECT_EQ(1U, elements.takeAll().front().children.size());
}

} // namespace
} // namespace Orvant
