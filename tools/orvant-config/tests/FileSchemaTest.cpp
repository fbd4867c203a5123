#include "NastyCatalogue.h"

#include "generating/FileSchema.h"

#include <ConfigurationFramework/ConfigurationManager.h>
#include <TestSupport.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <sstream>

#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

using namespace Orvant;
using namespace Orvant::Tool;

namespace {

using Base = ConfigurationValueBase;

constexpr const char* roundedToFloat = "0.09999999999"; ///< to the same as 0.1

/// Values with all kinds of rules.
ConfigurationObjectDescription makeRules() {
    ConfigurationObjectDescription rules{.name = "Rules", .description = "Rules", .children = {}};
    const std::vector<ConfigurationChoice> numbers = {{"1", "One"}, {"4294967295", "Most"}};
    rules.values = {
        Support::makeValue("Int", Base::IntValue, "0"),
        Support::makeValue("Range", Base::IntValue, "0", {.label = "", .minimum = "-5"}),
        Support::makeValue("Chosen", Base::IntValue, "5",
                           {.label = "", .choices = {{"5", "Five"}, {"-1", ""}}}),
        Support::makeValue("Unsigned", Base::UnsignedIntValue, "0"),
        Support::makeValue("AtLeast", Base::UnsignedIntValue, "5", {.label = "", .minimum = "5"}),
        Support::makeValue("AtMost", Base::UnsignedIntValue, "5",
                           {.label = "", .maximum = "3000000000"}),
        Support::makeValue("Small", Base::UnsignedIntValue, "5", {.label = "", .maximum = "42"}),
        Support::makeValue("Large", Base::UnsignedIntValue, "4000000000",
                           {.label = "", .minimum = "3000000000", .maximum = "4294967294"}),
        Support::makeValue("Wide", Base::UnsignedIntValue, "5",
                           {.label = "", .minimum = "5", .maximum = "4294967291"}),
        Support::makeValue("UnsignedChosen", Base::UnsignedIntValue, "1",
                           {.label = "", .choices = numbers}),
        Support::makeValue("Double", Base::DoubleValue, "0"),
        Support::makeValue("DoubleRange", Base::DoubleValue, "0.5",
                           {.label = "", .minimum = "0.1", .maximum = "42"}),
        Support::makeValue("DoubleChosen", Base::DoubleValue, "0.5",
                           {.label = "", .choices = {{"0.5", "Half"}, {"42", ""}}}),
        Support::makeValue("Float", Base::FloatValue, "0"),
        Support::makeValue("FloatRange", Base::FloatValue, "0.5",
                           {.label = "", .minimum = "0.1", .maximum = "3.4028235e+38"}),
        Support::makeValue("Bool", Base::BoolValue, "true"),
        Support::makeText("Text", ""),
        Support::makeValue("TextChosen", Base::StringValue, " a \nb",
                           {.label = "", .choices = {{" a \nb", "A"}, {"true", ""}}}),
        Support::makeList("List", {}, {{"a", "A"}, {"", "None"}}),
    };
    ConfigurationValueDescription saved = Support::makeValue("Saved", Base::IntValue, "1");
    saved.persistence = ConfigurationItemBase::SaveOnly;
    ConfigurationValueDescription locked = Support::makeList("Locked", {});
    locked.isEditable = false;
    rules.values.push_back(saved);
    rules.values.push_back(locked);
    return rules;
}

ConfigurationCatalogue makeCatalogue() {
    ConfigurationCatalogue catalogue("rules", {"1.0", "2 & 3"}, "1.0");
    for (const ConfigurationObjectDescription& object :
         {makeRules(), Support::makeTexts(), Support::makeNumbers(), Support::makeNested()})
        catalogue.add({object}, object.name);
    catalogue.add({.object = Support::makeMachine(), .isKeyed = true}, "Machine");
    return catalogue;
}

/// Another validator than xmllint.
class XercesValidator : private xercesc::HandlerBase {
public:
    explicit XercesValidator(const FileName& schema) {
        m_parser.setErrorHandler(this);
        m_parser.setDoNamespaces(true);
        m_parser.setDoSchema(true);
        m_parser.setValidationSchemaFullChecking(true);
        m_parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
        m_parser.loadGrammar(schema.toString().c_str(), xercesc::Grammar::SchemaGrammarType, true);
        EXPECT_FALSE(m_hasErrors) << "of the schema";
        m_parser.useCachedGrammarInParse(true);
        m_parser.setExternalNoNamespaceSchemaLocation(schema.toString().c_str());
    }

    bool isValid(const FileName& file) {
        m_hasErrors = false;
        m_parser.parse(file.toString().c_str());
        return !m_hasErrors;
    }

private:
    void error(const xercesc::SAXParseException&) override { m_hasErrors = true; }
    void fatalError(const xercesc::SAXParseException&) override { m_hasErrors = true; }

    bool m_hasErrors = false;
    xercesc::XercesDOMParser m_parser;
};

/// Keeps Xerces initialised.
struct XercesScope {
    XercesScope() { xercesc::XMLPlatformUtils::Initialize(); }
    XercesScope(const XercesScope&) = delete;
    XercesScope& operator=(const XercesScope&) = delete;
    ~XercesScope() { xercesc::XMLPlatformUtils::Terminate(); }
};

/// What the library says of files, and what validators do.
class FileSchemaTest : public testing::Test {
protected:
    FileSchemaTest() { m_manager.reset(); }
    ~FileSchemaTest() override { m_manager.reset(); }

    void add(const std::string& document) {
        const std::string name = std::to_string(m_documents.size()) + ".xml";
        m_files.push_back(m_directory.file(name, document));
        m_documents.push_back(document);
    }

    /// @return the number in the name of each file that is valid
    std::set<std::size_t> findValid() {
        const FileName schema = m_directory.file("rules.xsd", makeSchema(m_catalogue));
        const FileName said = m_directory.file("said.txt");
        std::string command = "cd " + m_directory.path().string() +
                              " && xmllint --noout --schema " + schema.toString();
        for (std::size_t i = 0; i < m_files.size(); ++i)
            command += ' ' + std::to_string(i) + ".xml";
        (void)std::system((command + " 2>" + said.toString()).c_str());
        std::set<std::size_t> valid;
        std::size_t judged = 0;
        std::istringstream lines(Support::readFile(said));
        for (std::string line; std::getline(lines, line);) {
            if (line.ends_with(".xml validates"))
                valid.insert(std::stoul(line));
            judged += line.ends_with(" validates") || line.ends_with(" fails to validate") ? 1 : 0;
        }
        EXPECT_EQ(judged, m_files.size()) << Support::readFile(said);
        XercesValidator xerces(schema);
        for (std::size_t i = 0; i < m_files.size(); ++i)
            // It compares floats as doubles, which they are not.
            if (m_documents[i].find(roundedToFloat) == std::string::npos) {
                EXPECT_EQ(xerces.isValid(m_files[i]), valid.contains(i)) << m_documents[i];
            }
        return valid;
    }

    std::string firstProblem(std::size_t index) {
        m_manager.reset();
        m_manager.setConfigurationFile(m_files[index]);
        m_catalogue.registerObjects(m_manager);
        const auto problems = m_manager.getLoadProblems();
        return problems.empty() ? "" : problems.front().text;
    }

    /// Checks whether the schema and the library judge all documents alike.
    /// @return how many are good
    std::size_t expectAgreement() {
        const std::set<std::size_t> valid = findValid();
        for (std::size_t i = 0; i < m_files.size(); ++i) {
            const std::string problem = firstProblem(i);
            EXPECT_EQ(valid.contains(i), problem.empty()) << m_documents[i] << '\n' << problem;
        }
        return valid.size();
    }

    const XercesScope m_xerces;
    const Support::TemporaryDirectory m_directory;
    ConfigurationCatalogue m_catalogue = makeCatalogue();
    ConfigurationManager& m_manager = ConfigurationManager::getInstance();
    std::vector<std::string> m_documents;
    std::vector<FileName> m_files;
};

} // namespace

TEST_F(FileSchemaTest, TakesTheTextsThatTheLibraryConvertsWhole) {
    m_catalogue = ConfigurationCatalogue("texts", {"1.0"}, "1.0");
    m_catalogue.add({makeRules()}, "Rules");
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "0",
                                            "5",
                                            "+5",
                                            "-5",
                                            "- 5",
                                            "+-5",
                                            "-+5",
                                            "--5",
                                            "05",
                                            "-0",
                                            "4",
                                            "6",
                                            "42",
                                            "43",
                                            "  5",
                                            "5  ",
                                            "\n\t5\n",
                                            "5 5",
                                            "5x",
                                            "60,5",
                                            "3O",
                                            "0x10",
                                            "true",
                                            "false",
                                            "True",
                                            "TRUE",
                                            " true",
                                            "1",
                                            "2147483647",
                                            "2147483648",
                                            "-2147483648",
                                            "-2147483649",
                                            "4294967295",
                                            "-1",
                                            "-2",
                                            "-6",
                                            "-1294967296",
                                            "-1294967295",
                                            "-1294967297",
                                            "00000000000000000000000000005",
                                            ".",
                                            ".5",
                                            "5.",
                                            "+.5",
                                            "-.5e1",
                                            "1e",
                                            "1e+",
                                            "1e5",
                                            "1E-5",
                                            "1e5.5",
                                            "1.5.5",
                                            "0.5",
                                            "0.1",
                                            roundedToFloat,
                                            "0.50",
                                            "5e-1",
                                            "1e38",
                                            "1e39",
                                            "-1e39",
                                            "1e308",
                                            "1e309",
                                            "-1e309",
                                            "3.4028235e38",
                                            "3.4028236e38",
                                            "1e-999",
                                            "inf",
                                            "INF",
                                            "-INF",
                                            "nan",
                                            "NaN",
                                            "infinity",
                                            "1e5 ",
                                            "1 e5",
                                            "0b1",
                                            "1_000",
                                            "1'000",
                                            "\xC2\xA0"
                                            "5",
                                            " a \nb",
                                            "a b",
                                            "a",
                                            "A",
                                            "&#10;5",
                                            "5&#13;",
                                            "5&#9;"};
    for (const ConfigurationValueDescription& value : makeRules().values) {
        for (const std::string& text : texts) {
            const std::string inside = value.isList() ? "<item>" + text + "</item>" : text;
            add(Support::document("<Rules><" + value.name + '>' + inside + "</" + value.name +
                                  "></Rules>"));
        }
    }
    EXPECT_GT(expectAgreement(), texts.size());
}

TEST_F(FileSchemaTest, TakesTheElementsAndAttributesThatTheLibraryTakes) {
    for (const char* const contents :
         {// Names
          "", "<View3D/>", "<rules/>", "<Rules/>", "<Rules><Nothing/></Rules>",
          "<Rules><Int>1<Int>2</Int></Int></Rules>", "<Rules><Rules/></Rules>", "<Int>1</Int>",
          "<item/>", "text", "<Rules>text<Int>1</Int>text</Rules>",
          "<Rules other='x'><Int other='y' xml:lang='de'>1</Int></Rules>",
          "<Numbers--all><Int>1</Int></Numbers--all>", "<Texts><ends->x</ends-></Texts>",
          "<Texts><two--hyphens/></Texts>",
          // Locks
          "<Rules editable='false'/>", "<Rules editable='true'/>", "<Rules editable=''/>",
          "<Rules editable='False'/>", "<Rules editable=' false'/>", "<Rules editable='0'/>",
          "<Rules><Int editable='false'>1</Int></Rules>",
          "<Rules><Int editable='no'>1</Int></Rules>", "<Rules><List editable='false'/></Rules>",
          "<Rules><List><item editable='false'/></List></Rules>",
          "<Rules><List><item editable='true'/></List></Rules>",
          "<Rules><Saved editable='false'>x</Saved></Rules>",
          "<Rules><Saved editable='true'>x</Saved></Rules>", "<Rules><Saved><Int/></Saved></Rules>",
          "<Rules><Locked editable='false'/></Rules>",
          "<Rules><Locked><item>x</item></Locked></Rules>",
          "<Rules><Locked><other/></Locked></Rules>",
          "<Nested><Unloaded editable='false'/></Nested>",
          "<Nested><Unloaded><Text>x</Text></Unloaded></Nested>",
          "<Nested><Unloaded><Other/></Unloaded></Nested>",
          // Lists
          "<Rules><List/></Rules>", "<Rules><List>text<item>a</item>text</List></Rules>",
          "<Rules><List><item>a</item><item/></List></Rules>",
          "<Rules><List><other/></List></Rules>",
          "<Rules><List><item>a<item>a</item></item></List></Rules>",
          "<Rules><List><item><item>a</item></item></List></Rules>",
          // Second elements
          "<Rules/><Rules/>", "<Rules/><Machine/><Rules/>", "<Rules key='a'/>",
          "<Rules><Int>1</Int><Int>1</Int></Rules>", "<Rules><List/><List/></Rules>",
          "<Nested><Inline/></Nested>", "<Nested><Inline/><Inline/></Nested>",
          "<Nested><Recent/><Recent/></Nested>", "<Nested><Camera/><Inline/><Camera/></Nested>",
          // Keys
          "<Machine/>", "<Machine key=''/>", "<Machine/><Machine key=''/>",
          "<Machine/><Machine key='a'/>", "<Machine key='a'/><Machine key='b'/>",
          "<Machine key='a'/><Rules/><Machine key='a'/>", "<Machine key=' a'/><Machine key='a'/>",
          "<Machine key='a'><MaxFeed>0</MaxFeed></Machine>",
          "<Machine key='a'><MaxFeed>1</MaxFeed><Spindle/></Machine>", "<RemovedMachine key='a'/>",
          "<Nested><Machine key='a'/><Machine key='b'/><Machine/></Nested>",
          "<Nested><Machine key='a'/><Machine key='a'/></Nested>",
          "<Nested><Machine key='a'/><RemovedMachine key='b'/></Nested>",
          "<Nested><RemovedMachine key='b'/><RemovedMachine key='b'/></Nested>",
          "<Nested><Machine key='b'/><RemovedMachine key='b'/></Nested>",
          "<Nested><RemovedMachine/></Nested>", "<Nested><RemovedMachine key=''/></Nested>",
          "<Nested><RemovedMachine key='a'><MaxFeed>1</MaxFeed></RemovedMachine></Nested>",
          "<Nested><Machine><MaxFeed>x</MaxFeed></Machine></Nested>",
          "<Nested><Printer key='Hall 2'/><Printer key='Hall \"1\"'/></Nested>",
          "<Nested><Printer key='Hall 2'/><Printer key='Hall 2'/></Nested>",
          "<Nested><Printer key='Hall 3'/></Nested>", "<Nested><Printer/></Nested>",
          "<Nested><Printer key='Hall 2'/><Printer/></Nested>",
          "<Nested><Printer/><Printer/></Nested>",
          "<Nested><Printer key='Hall 2'><Paper/><Paper/></Printer></Nested>",
          "<Nested><!-- a --><Camera><?pi?><Lens>x</Lens></Camera></Nested>"})
        add(Support::document(contents));
    for (const char* const document :
         {"<Configuration/>", "<Configuration version=''/>", "<Configuration version='2 &amp; 3'/>",
          "<Configuration version='2.0'/>", "<Configuration version='1.0 '/>",
          "<configuration version='1.0'/>", "<Configuration version='1.0' editable='false'/>",
          "<Configuration version='1.0' editable='true'/>",
          "<Configuration version='1.0' editable='no'/>",
          "<Configuration version='1.0' other='x'/>", "<Configuration Version='1.0'/>"})
        add(document);
    EXPECT_GT(expectAgreement(), 30U);
}

TEST_F(FileSchemaTest, AcceptsWhatItSaysItCannotRefuse) {
    for (const char* const contents :
         {"<Rules><Int>1<!-- a -->2</Int></Rules>", "<Rules><Text>a<![CDATA[b]]></Text></Rules>",
          "<Rules/><Rules key='a'/>"})
        add(Support::document(contents));
    EXPECT_EQ(findValid().size(), m_files.size());
    for (std::size_t i = 0; i < m_files.size(); ++i)
        EXPECT_NE(firstProblem(i), "") << m_documents[i];
}

TEST_F(FileSchemaTest, RefusesWhatItSaysItCannotAccept) {
    for (const char* const contents : {"<Nested><Printer key='Hall 2'><Recent/></Printer></Nested>",
                                       "<Machine><MaxFeed>x</MaxFeed></Machine><Machine key='a'/>"})
        add(Support::document(contents));
    EXPECT_EQ(findValid().size(), 0U);
    for (std::size_t i = 0; i < m_files.size(); ++i)
        EXPECT_EQ(firstProblem(i), "") << m_documents[i];
}

TEST_F(FileSchemaTest, LeavesOpenWhatHasSeveralMeaningsOrAColonInItsName) {
    ConfigurationObjectDescription object{.name = "Object", .description = "", .children = {}};
    object.values = {Support::makeValue("Twice", Base::IntValue, "1"),
                     Support::makeText("Once", "")};
    ConfigurationObjectDescription other{.name = "Twice", .description = "", .children = {}};
    other.values = {Support::makeText("Text", "")};
    object.children = {{.object = other}};
    ConfigurationCatalogue catalogue("open", {"1.0"}, "1.0");
    catalogue.add({object}, "Object");
    ConfigurationObjectDescription named{.name = "Named", .description = "", .children = {}};
    named.values = {Support::makeValue("a:b", Base::IntValue, "1")};
    catalogue.add({named}, "Named");
    const FileName schema = m_directory.file("open.xsd", makeSchema(catalogue));
    const auto isValid = [&](const std::string& contents) {
        const FileName file = m_directory.file("open.xml", Support::document(contents));
        return std::system(("xmllint --noout --schema " + schema.toString() + ' ' +
                            file.toString() + " 2>/dev/null")
                               .c_str()) == 0;
    };
    EXPECT_TRUE(isValid("<Object><Twice>1</Twice><Twice><Text/></Twice><Once/></Object>"));
    EXPECT_FALSE(isValid("<Object><Once/><Once/></Object>"));
    EXPECT_TRUE(isValid("<Named><a:b xmlns:a='x'>1</a:b></Named>"));
    EXPECT_FALSE(isValid("<Nameless/>"));
}
