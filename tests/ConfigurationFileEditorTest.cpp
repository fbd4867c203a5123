#include <ConfigurationFramework/ConfigurationFileEditor.h>

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/SimpleConfigReader.h>

#include <ManagerFixture.h>
#include <OwnProcess.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

namespace Orvant {
namespace {

namespace fs = std::filesystem;

using Support::document;
using Support::filesIn;
using Support::readFile;
using Support::withoutFormatting;
using Support::writeFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;

using Path = ConfigurationElementPath;
using Report = ConfigurationSaveReport;
using Strings = std::vector<std::string>;
using std::nullopt;
using std::chrono::milliseconds;

class ConfigurationFileEditorTest : public testing::Test {
protected:
    /// Opens a file with a document of version 1.0.
    ConfigurationFileEditor edit(const std::string& contents) const {
        writeFile(m_file, document(contents));
        return open();
    }
    ConfigurationFileEditor open() const { return {m_file, "1.0"}; }
    /// Saves; the new file is to open with the same document.
    void expectSaved(ConfigurationFileEditor& editor, const std::string& contents) const {
        const Report report = editor.save();
        EXPECT_EQ(Report::Saved, report.reason);
        EXPECT_EQ("", report.text);
        EXPECT_FALSE(report.writtenInPlace);
        EXPECT_FALSE(editor.isChanged());
        EXPECT_EQ(withoutFormatting(document(contents)), withoutFormatting(readFile(m_file)));
        EXPECT_EQ(open().asString(), readFile(m_file));
    }
    /// @return the problem that opening the file ends with
    ConfigurationProblem problemOf(const std::string& bytes) const {
        writeFile(m_file, bytes);
        return problem();
    }
    ConfigurationProblem problem() const {
        try {
            open();
        } catch (const ConfigurationFileError& e) {
            EXPECT_THAT(e.what(), HasSubstr(e.problem().text));
            return e.problem();
        }
        ADD_FAILURE() << "was opened";
        return {};
    }
    static Strings visited(const ConfigurationFileEditor& editor, const Path& path = {}) {
        Strings paths;
        editor.visitElements(path, [&](const Path& visitedPath) {
            std::string& text = paths.emplace_back();
            for (const auto& [name, key] : visitedPath)
                text += '/' + name + (key ? '[' + *key + ']' : "");
        });
        return paths;
    }

    const Support::TemporaryDirectory m_directory;
    const FileName m_file = m_directory.file("system.xml");
};

TEST_F(ConfigurationFileEditorTest, TellsWhatTheFileHolds) {
    const auto editor = edit("<View editable=\"False\"><Zoom>1.5</Zoom><Empty/>"
                             "<Odd><!-- in per cent -->7</Odd>"
                             "<Names><item>a</item><item/><item>c</item></Names></View>");
    EXPECT_EQ(m_file.toString(), editor.file().toString());
    EXPECT_FALSE(editor.isNew());
    EXPECT_FALSE(editor.isChanged());
    EXPECT_EQ("1.0", editor.version());
    EXPECT_TRUE(editor.exists({}));
    EXPECT_TRUE(editor.exists({{"View"}, {"Zoom"}}));
    EXPECT_FALSE(editor.exists({{"Zoom"}}));
    EXPECT_FALSE(editor.exists({{"View", "1"}}));
    EXPECT_EQ("1.5", editor.text({{"View"}, {"Zoom"}}));
    EXPECT_EQ("", editor.text({{"View"}, {"Empty"}}));
    EXPECT_EQ(nullopt, editor.text({{"View"}, {"Odd"}})) << "as readers see it";
    EXPECT_EQ(nullopt, editor.text({{"View"}, {"Names"}}));
    EXPECT_EQ(nullopt, editor.text({{"Other"}}));
    EXPECT_THAT(editor.items({{"View"}, {"Names"}}), Optional(ElementsAre("a", "", "c")));
    EXPECT_THAT(editor.items({{"View"}, {"Zoom"}}), Optional(ElementsAre()));
    EXPECT_EQ(nullopt, editor.items({{"Names"}}));
    EXPECT_EQ("False", editor.editable({{"View"}}));
    EXPECT_EQ(nullopt, editor.editable({{"View"}, {"Zoom"}}));
    EXPECT_EQ(nullopt, editor.editable({{"Other"}}));
}

TEST_F(ConfigurationFileEditorTest, SeesItemsUpToOneThatReadersStopAt) {
    const auto editor = edit("<L><item>a</item><item><!-- b -->b</item><item>c</item></L>");
    EXPECT_THAT(editor.items({{"L"}}), Optional(ElementsAre("a")));
}

TEST_F(ConfigurationFileEditorTest, FindsElementsByKeyAndTheFirstWithoutOne) {
    auto editor = edit("<M key=\"1\"><a>1</a></M><M key=\"\"><a>2</a></M><M><a>3</a></M>"
                       "<M key=\"1\"><a>4</a></M>");
    EXPECT_EQ("1", editor.text({{"M", "1"}, {"a"}}));
    EXPECT_EQ("2", editor.text({{"M"}, {"a"}}));
    EXPECT_EQ("2", editor.text({{"M", ""}, {"a"}}));
    editor.setText({{"M", "1"}, {"a"}}, "10");
    editor.setText({{"M"}, {"a"}}, "20");
    editor.setText({{"M", "Halle \u00fc"}, {"a"}}, "30");
    expectSaved(editor, "<M key=\"1\"><a>10</a></M><M key=\"\"><a>20</a></M><M><a>3</a></M>"
                        "<M key=\"1\"><a>4</a></M><M key=\"Halle \u00fc\"><a>30</a></M>");
}

TEST_F(ConfigurationFileEditorTest, VisitsEachPathOnceInTheOrderOfTheDocument) {
    const auto editor = edit("<A><b>1</b><L><item>x</item></L></A><!-- --><M key=\"1\"><c/></M>"
                             "<A><hidden/></A><M><item key=\"k\"/><item><d/></item></M>");
    EXPECT_EQ((Strings{"/A", "/A/b", "/A/L", "/M[1]", "/M[1]/c", "/M", "/M/item[k]", "/M/item",
                       "/M/item/d"}),
              visited(editor));
    EXPECT_EQ((Strings{"/A/b", "/A/L"}), visited(editor, {{"A"}}));
    EXPECT_EQ(Strings{}, visited(editor, {{"B"}}));
}

TEST_F(ConfigurationFileEditorTest, KeepsWhatItDoesNotEdit) {
    const std::string before = "<!-- ours --><View a=\"1\" editable=\"false\"><!-- z -->"
                               "<Zoom unit=\"%\">";
    const std::string after = "<!-- inner --></Zoom><!-- last --></View><Other>x &amp; y</Other>";
    auto editor = edit(before + "1" + after);
    editor.setText({{"View"}, {"Zoom"}}, "2", "not used");
    EXPECT_TRUE(editor.isChanged());
    expectSaved(editor, before + "2" + after);
    EXPECT_EQ("2", editor.text({{"View"}, {"Zoom"}}));
}

TEST_F(ConfigurationFileEditorTest, KeepsWhatStandsAroundTheRoot) {
    writeFile(m_file,
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<!-- B\xfcro -->\n"
              "<?xml-model href=\"a.xsd\"?>\n<Configuration version=\"1.0\"/>\n<!-- end -->");
    auto editor = open();
    editor.setText({{"a"}}, "1");
    EXPECT_EQ(Report::Saved, editor.save().reason);
    EXPECT_EQ("<!-- B\u00fcro --><?xml-model href=\"a.xsd\"?><Configuration version=\"1.0\">"
              "<a>1</a></Configuration><!-- end -->",
              withoutFormatting(readFile(m_file)));
    editor.setText({{"a"}}, "2");
    EXPECT_EQ(Report::Saved, editor.save().reason);
    EXPECT_EQ(open().asString(), readFile(m_file));
}

TEST_F(ConfigurationFileEditorTest, MakesWhatIsMissing) {
    auto editor = edit("<View><a>1</a></View>");
    editor.setText({{"View"}, {"Camera"}, {"Angle"}}, "60", "Angle -- in degrees");
    editor.setText({{"View"}, {"Name"}}, "");
    expectSaved(editor, "<View><a>1</a><Camera><!--Angle - - in degrees--><Angle>60</Angle>"
                        "</Camera><Name/></View>");
}

TEST_F(ConfigurationFileEditorTest, ReplacesAllThatAnElementHolds) {
    auto editor = edit("<a><![CDATA[1]]><!-- x --></a><b><!-- y -->2</b><c><d>3</d></c>"
                       "<!-- own --><e><!-- z -->4</e>");
    editor.setText({{"a"}}, "10");
    editor.setText({{"b"}}, "20");
    editor.setText({{"c"}}, "30");
    editor.setText({{"e"}}, "");
    expectSaved(editor, "<a>10<!-- x --></a><b>20<!-- y --></b><c>30</c>"
                        "<!-- z --><!-- own --><e/>");
    EXPECT_EQ("10", open().text({{"a"}}));
    SimpleConfigReader reader(m_file, "", {"1.0"});
    int value = 0;
    bool isEditable = false;
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.getInt("b", value, isEditable));
    EXPECT_EQ(20, value);
}

TEST_F(ConfigurationFileEditorTest, SetsItemsAndKeepsThoseThatStay) {
    auto editor = edit("<L editable=\"false\"><!-- head --><item>a</item>"
                       "<!-- of b --><item editable=\"false\">b</item><item>c</item>"
                       "<item>a</item><odd/><!-- end --></L>");
    editor.setItems({{"L"}}, {"b", "new", "a"});
    expectSaved(editor, "<L editable=\"false\"><!-- of b --><item editable=\"false\">b</item>"
                        "<item>new</item><!-- head --><item>a</item><!-- end --></L>");
    editor.setItems({{"L"}}, {});
    expectSaved(editor, "<L editable=\"false\"><!-- of b --><!-- head --><!-- end --></L>");
    editor.setItems({{"View"}, {"New"}}, {"x", ""}, "Names");
    EXPECT_THAT(editor.items({{"View"}, {"New"}}), Optional(ElementsAre("x", "")));
    editor.remove({{"L"}});
    expectSaved(editor, "<View><!--Names--><New><item>x</item><item/></New></View>");
}

TEST_F(ConfigurationFileEditorTest, KeepsItemsInPlaceWhereOnlySomeGo) {
    auto editor = edit("<L><!-- 1 --><item>a</item><!-- 2 --><item>b</item><!-- 3 --></L>");
    editor.setItems({{"L"}}, {"b", "c"});
    expectSaved(editor, "<L><!-- 1 --><!-- 2 --><item>b</item><item>c</item><!-- 3 --></L>");
}

/// @return the list L of an object A, as readers find it
Strings listOf(const FileName& file, const std::string& object) {
    SimpleConfigReader reader(file, "", {"1.0"});
    EXPECT_EQ(ConfigurationAccessResult::Success, reader.setCurrentNode(object));
    Strings list;
    bool isEditable = false;
    std::map<std::string, bool> areEditable;
    reader.getStringVector("L", list, isEditable, areEditable);
    return list;
}

TEST_F(ConfigurationFileEditorTest, PutsAListBeforeOneOfItsNameThatIsDeeper) {
    auto editor = edit("<A><B><L><item>inner</item></L></B></A>");
    editor.setItems({{"A"}, {"L"}}, {"outer"}, "Outer");
    expectSaved(editor, "<A><!--Outer--><L><item>outer</item></L>"
                        "<B><L><item>inner</item></L></B></A>");
    EXPECT_EQ(Strings{"outer"}, listOf(m_file, "A"));

    editor = edit("<A><B><b/></B><L><item>outer</item></L></A>");
    editor.setText({{"A"}, {"B"}, {"L"}}, "inner");
    expectSaved(editor, "<A><L><item>outer</item></L><B><b/><L>inner</L></B></A>");
    EXPECT_EQ(Strings{"outer"}, listOf(m_file, "A"));

    editor = edit("<A><B><b/></B><L><item>outer</item></L></A><C><L>inner</L></C>");
    EXPECT_TRUE(editor.move({{"C"}}, {{"A"}, {"B"}, {"C"}}));
    expectSaved(editor, "<A><L><item>outer</item></L><B><b/><C><L>inner</L></C></B></A>");
    EXPECT_EQ(Strings{"outer"}, listOf(m_file, "A"));
}

TEST_F(ConfigurationFileEditorTest, RemovesAnElementAndKeepsTheAdministratorsComments) {
    auto editor = edit("<A editable=\"false\"><!--Zoom factor--><a>1</a><!-- since May --><b>2</b>"
                       "<a>second</a><a key=\"k\">3</a></A><C/>");
    EXPECT_TRUE(editor.remove({{"A"}, {"a"}}, "Zoom factor"));
    EXPECT_FALSE(editor.exists({{"A"}, {"a"}})) << "the second would count now";
    EXPECT_TRUE(editor.remove({{"A"}, {"b"}}, "Other"));
    expectSaved(editor, "<A editable=\"false\"><!-- since May --><a key=\"k\">3</a></A><C/>");
    EXPECT_FALSE(editor.remove({{"A"}, {"b"}}));
    EXPECT_FALSE(editor.remove({{"B"}, {"b"}}));
    EXPECT_FALSE(editor.isChanged());
    EXPECT_TRUE(editor.remove({{"A"}, {"a", "k"}}));
    EXPECT_TRUE(editor.remove({{"C"}}));
    expectSaved(editor, "<A editable=\"false\"><!-- since May --></A>");
}

TEST_F(ConfigurationFileEditorTest, LocksAndUnlocks) {
    auto editor = edit("<A><a unit=\"m\">1</a></A><B editable=\"False\"/>");
    editor.setLocked({{"A"}, {"a"}}, true);
    editor.setLocked({{"B"}}, true);
    editor.setLocked({{"C"}, {"D"}}, true);
    EXPECT_EQ("false", editor.editable({{"B"}}));
    expectSaved(editor, "<A><a editable=\"false\" unit=\"m\">1</a></A><B editable=\"false\"/>"
                        "<C><D editable=\"false\"/></C>");
    editor.setLocked({{"B"}}, true);
    editor.setLocked({{"E"}}, false);
    EXPECT_FALSE(editor.isChanged());
    editor.setLocked({{"A"}, {"a"}}, false);
    editor.setLocked({{"C"}, {"D"}}, false);
    expectSaved(editor, "<A><a unit=\"m\">1</a></A><B editable=\"false\"/><C><D/></C>");
}

TEST_F(ConfigurationFileEditorTest, RenamesInPlaceAndMovesElsewhere) {
    auto editor = edit("<A><!-- old --><old lock=\"1\">1</old><b>2</b><old>second</old></A>"
                       "<M key=\"1\"><c>3</c></M>");
    EXPECT_TRUE(editor.move({{"A"}, {"old"}}, {{"A"}, {"new"}}));
    EXPECT_FALSE(editor.exists({{"A"}, {"old"}}));
    EXPECT_EQ("1", editor.text({{"A"}, {"new"}}));
    EXPECT_TRUE(editor.move({{"M", "1"}}, {{"Machine", "Hall"}}));
    expectSaved(editor, "<A><!-- old --><new lock=\"1\">1</new><b>2</b><new>second</new></A>"
                        "<Machine key=\"Hall\"><c>3</c></Machine>");
    EXPECT_TRUE(editor.move({{"A"}, {"new"}}, {{"X"}, {"Y"}, {"new"}}));
    EXPECT_TRUE(editor.move({{"Machine", "Hall"}}, {{"Machine"}}));
    expectSaved(editor, "<A><b>2</b></A><Machine><c>3</c></Machine>"
                        "<X><Y><!-- old --><new lock=\"1\">1</new><new>second</new></Y></X>");
}

TEST_F(ConfigurationFileEditorTest, MovesNothingOverWhatIsThere) {
    auto editor = edit("<A><a>1</a></A><b>2</b>");
    EXPECT_FALSE(editor.move({{"A"}, {"a"}}, {{"b"}}));
    EXPECT_FALSE(editor.move({{"A"}, {"a"}}, {{"A"}, {"a"}}));
    EXPECT_FALSE(editor.move({{"A"}, {"c"}}, {{"c"}}));
    EXPECT_THROW(editor.move({{"A"}}, {{"A"}, {"a"}, {"A"}}), std::invalid_argument);
    EXPECT_FALSE(editor.isChanged());
    EXPECT_TRUE(editor.move({{"A"}}, {{"A", "k"}, {"a"}}));
    expectSaved(editor, "<b>2</b><A key=\"k\"><a><a>1</a></a></A>");
}

TEST_F(ConfigurationFileEditorTest, FindsItsWayAmongManyElements) {
    std::string contents;
    for (int i = 0; i < 100; ++i)
        contents += "<M key=\"" + std::to_string(i) + "\">" + std::to_string(i) + "</M>";
    auto editor = edit(contents + "<N>1</N><N>2</N>");
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(std::to_string(i), editor.text({{"M", std::to_string(i)}}));
        EXPECT_TRUE(editor.move({{"M", std::to_string(i)}}, {{"P", std::to_string(i)}}));
    }
    EXPECT_TRUE(editor.move({{"N"}}, {{"O"}}));
    EXPECT_EQ("1", editor.text({{"O"}}));
    EXPECT_TRUE(editor.remove({{"O"}}));
    EXPECT_FALSE(editor.exists({{"O"}}));
    editor.setText({{"O"}}, "3");
    EXPECT_EQ("3", editor.text({{"O"}}));
    EXPECT_EQ(101U, visited(editor).size());
    for (int i = 1; i < 100; ++i)
        EXPECT_TRUE(editor.remove({{"P", std::to_string(i)}}));
    expectSaved(editor, "<P key=\"0\">0</P><O>3</O>");
    EXPECT_TRUE(editor.move({{"O"}}, {{"Q"}, {"R"}}));
    for (int i = 0; i < 100; ++i)
        editor.setText({{"Q"}, {"R"}, {"S", std::to_string(i)}}, "5");
    editor.setText({{"Q"}, {"R"}}, "6");
    EXPECT_FALSE(editor.exists({{"Q"}, {"R"}, {"S", "1"}}));
    editor.setItems({{"L"}}, Strings(100, "x"));
    EXPECT_FALSE(editor.exists({{"L"}, {"other"}}));
    editor.setItems({{"L"}}, {"y"});
    EXPECT_EQ("y", editor.text({{"L"}, {"item"}}));
}

TEST_F(ConfigurationFileEditorTest, SetsTheVersion) {
    auto editor = edit("<a>1</a>");
    editor.setVersion("1.0");
    EXPECT_FALSE(editor.isChanged());
    editor.setVersion("2.0 \"\u00fc\"");
    EXPECT_EQ("2.0 \"\u00fc\"", editor.version());
    EXPECT_THROW(editor.setVersion("\x01"), std::invalid_argument);
    EXPECT_EQ(Report::Saved, editor.save().reason);
    EXPECT_EQ("2.0 \"\u00fc\"", open().version());
}

TEST_F(ConfigurationFileEditorTest, RefusesWhatXmlCannotHold) {
    auto editor = edit("<a>1</a>");
    for (const std::string name : {"", "3D", "a b", "<a>", "\xff", "a/b"}) {
        EXPECT_THROW(editor.setText({{name}}, "1"), std::invalid_argument) << name;
        EXPECT_THROW(editor.setLocked({{"a"}, {name}}, true), std::invalid_argument) << name;
        EXPECT_THROW(editor.move({{"a"}}, {{name}}), std::invalid_argument) << name;
        EXPECT_THROW((void)editor.exists({{name}}), std::invalid_argument) << name;
    }
    EXPECT_THROW(editor.setText({{"a", "\x01"}}, "1"), std::invalid_argument);
    EXPECT_THROW((void)editor.text({{"a", "\x01"}}), std::invalid_argument);
    EXPECT_THROW(editor.setText({{"a"}}, "2\x01"), std::invalid_argument);
    EXPECT_THROW(editor.setText({{"a"}}, "\xff"), std::invalid_argument);
    EXPECT_THROW(editor.setText({{"b"}}, "2", "\x02"), std::invalid_argument);
    EXPECT_THROW(editor.setItems({{"b"}}, {"x", "\x03"}), std::invalid_argument);
    EXPECT_THROW(editor.setItems({{"b"}}, {"x"}, "\x03"), std::invalid_argument);
    EXPECT_FALSE(editor.isChanged());
    EXPECT_FALSE(editor.exists({{"b"}}));
    editor.setText({{"\u00c4pfel"}}, "\ufffd <&>");
    expectSaved(editor, "<a>1</a><\u00c4pfel>\ufffd &lt;&amp;&gt;</\u00c4pfel>");
}

TEST_F(ConfigurationFileEditorTest, DoesNotEditTheRootItself) {
    auto editor = edit("<a>1</a>");
    EXPECT_THROW(editor.setText({}, "1"), std::invalid_argument);
    EXPECT_THROW(editor.setItems({}, {}), std::invalid_argument);
    EXPECT_THROW(editor.remove({}), std::invalid_argument);
    EXPECT_THROW(editor.setLocked({}, true), std::invalid_argument);
    EXPECT_THROW(editor.move({}, {{"b"}}), std::invalid_argument);
    EXPECT_THROW(editor.move({{"a"}}, {}), std::invalid_argument);
    EXPECT_FALSE(editor.isChanged());
}

TEST_F(ConfigurationFileEditorTest, MakesANewFile) {
    auto editor = open();
    EXPECT_TRUE(editor.isNew());
    EXPECT_EQ("1.0", editor.version());
    EXPECT_EQ(Report::NothingToSave, editor.save().reason);
    EXPECT_THAT(filesIn(m_directory), ElementsAre());
    editor.setText({{"a"}}, "1");
    expectSaved(editor, "<a>1</a>");
    EXPECT_FALSE(editor.isNew());
    EXPECT_THROW(ConfigurationFileEditor(m_directory.file("x.xml"), "\x01"), std::invalid_argument);
}

TEST_F(ConfigurationFileEditorTest, MakesTheFolderOfANewFile) {
    const FileName file = m_directory.file("planner/planner.xml");
    ConfigurationFileEditor editor(file, "2.0");
    editor.setText({{"a"}}, "1");
    EXPECT_EQ(Report::Saved, editor.save().reason);
    EXPECT_EQ("2.0", ConfigurationFileEditor(file, "1.0").version());

    ConfigurationFileEditor below(m_directory.file("planner/planner.xml.d/a.xml"), "1.0");
    writeFile(m_directory.file("planner/planner.xml.d"), "");
    below.setText({{"a"}}, "1");
    EXPECT_EQ(Report::NoFolder, below.save().reason);
}

TEST_F(ConfigurationFileEditorTest, RefusesWhatIsNoConfiguration) {
    ConfigurationProblem found =
        problemOf("<Configuration version=\"1.0\">\n  <a>1</b>\n</Configuration>");
    EXPECT_EQ(ConfigurationProblem::Damaged, found.kind);
    EXPECT_EQ(m_file.toString(), found.file.toString());
    EXPECT_EQ(2U, found.line);
    EXPECT_EQ(9U, found.column);
    EXPECT_THAT(found.text, HasSubstr("the file is damaged: "));
    try {
        open();
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(m_file.toString() + ":2:9: " + found.text, e.what());
    }

    found = problemOf("\n<Settings/>");
    EXPECT_EQ(ConfigurationProblem::Damaged, found.kind);
    EXPECT_EQ(2U, found.line);
    EXPECT_EQ("the file is damaged: the root element is \"Settings\", not \"Configuration\"",
              found.text);
    EXPECT_EQ(ConfigurationProblem::Damaged, problemOf("").kind);
    EXPECT_EQ(ConfigurationProblem::Damaged, problemOf("settings = 1").kind);
    EXPECT_EQ(ConfigurationProblem::Damaged,
              problemOf("<!DOCTYPE a [<!ENTITY b '1234567890'><!ENTITY c '&b;&b;&b;&b;'>" +
                        std::string("]><Configuration>") + "&c;&c;&d;</Configuration>")
                  .kind);
}

TEST_F(ConfigurationFileEditorTest, RefusesWhatCannotBeRead) {
    fs::create_directory(m_file.toString());
    EXPECT_EQ(ConfigurationProblem::Unreadable, problem().kind);
    EXPECT_EQ(0U, problem().line);
    EXPECT_THAT(problem().text, HasSubstr("the file cannot be read: "));
    fs::remove(m_file.toString());

    writeFile(m_file, document(""));
    fs::permissions(m_file.toString(), fs::perms(0));
    fs::permissions(m_directory.path(), fs::perms(0777));
    EXPECT_EQ(0, Support::asOrdinaryUser(
                     [&] { return problem().kind == ConfigurationProblem::Unreadable ? 0 : 1; }));
}

TEST_F(ConfigurationFileEditorTest, WritesNothingWhereNothingIsChanged) {
    auto editor = edit("  <a>1</a><L><item>x</item></L>  ");
    editor.setText({{"a"}}, "1");
    editor.setItems({{"L"}}, {"x"});
    EXPECT_FALSE(editor.isChanged());
    const Report report = editor.save();
    EXPECT_EQ(Report::NothingToSave, report.reason);
    EXPECT_EQ("", report.text);
    EXPECT_EQ(document("  <a>1</a><L><item>x</item></L>  "), readFile(m_file));
    EXPECT_THAT(filesIn(m_directory), ElementsAre("system.xml")) << "not even a lock";
}

TEST_F(ConfigurationFileEditorTest, LosesNothingThatOthersChangedMeanwhile) {
    auto editor = edit("<a>1</a>");
    auto other = open();
    other.setText({{"a"}}, "2");
    expectSaved(other, "<a>2</a>");
    editor.setText({{"b"}}, "3");
    Report report = editor.save();
    EXPECT_EQ(Report::Failed, report.reason);
    EXPECT_EQ(std::errc::resource_unavailable_try_again, report.error);
    EXPECT_EQ('"' + m_file.toString() + "\" was not saved: somebody else changed it meanwhile",
              report.text);
    EXPECT_TRUE(editor.isChanged());
    EXPECT_EQ("2", open().text({{"a"}}));
    other.setText({{"a"}}, "4");
    expectSaved(other, "<a>4</a>");

    fs::remove(m_file.toString());
    EXPECT_EQ(Report::Failed, editor.save().reason) << "it was there";
    EXPECT_FALSE(fs::exists(m_file.toString()));
    auto first = open();
    auto second = open();
    first.setText({{"a"}}, "1");
    second.setText({{"a"}}, "2");
    expectSaved(first, "<a>1</a>");
    EXPECT_EQ(Report::Failed, second.save().reason) << "it was not there";
    EXPECT_EQ("1", open().text({{"a"}}));
}

TEST_F(ConfigurationFileEditorTest, TellsOfMissingRights) {
    auto editor = edit("<a>1</a>");
    const std::string bytes = readFile(m_file);
    editor.setText({{"a"}}, "2");
    fs::permissions(m_file.toString(), fs::perms(0444));
    fs::permissions(m_directory.path(), fs::perms(0777));
    const auto isRefused = [&] {
        const Report report = editor.save();
        return report.reason == Report::NoPermission && report.error == std::errc::permission_denied
                   ? 0
                   : 1;
    };
    EXPECT_EQ(0, Support::asOrdinaryUser(isRefused));
    EXPECT_EQ(bytes, readFile(m_file));
}

TEST_F(ConfigurationFileEditorTest, ReplacesTheTargetOfALinkAndKeepsItsRights) {
    const FileName target = m_directory.file("target.xml", document("<a>1</a>"));
    fs::permissions(target.toString(), fs::perms(0640));
    fs::create_symlink("target.xml", m_file.toString());
    auto editor = open();
    editor.setText({{"a"}}, "2");
    expectSaved(editor, "<a>2</a>");
    EXPECT_TRUE(fs::is_symlink(m_file.toString()));
    EXPECT_EQ(fs::perms(0640), fs::status(target.toString()).permissions());
    EXPECT_THAT(readFile(target), HasSubstr("<a>2</a>"));
    EXPECT_THAT(filesIn(m_directory), ElementsAre("system.xml", "target.xml", "target.xml.lock"));
}

TEST_F(ConfigurationFileEditorTest, SaysWhereItHadNoLock) {
    auto editor = edit("<a>1</a>");
    fs::create_directory(m_file.toString() + ".lock");
    editor.setText({{"a"}}, "2");
    const Report report = editor.save();
    EXPECT_EQ(Report::Saved, report.reason);
    EXPECT_THAT(report.text, HasSubstr("was saved without a lock"));
    EXPECT_EQ("2", open().text({{"a"}}));
}

class ConfigurationFileEditorBesideSaves : public Support::ManagerFixture {};

TEST_F(ConfigurationFileEditorBesideSaves, WaitsForTheLockOfASave) {
    ConfigurationFileEditor editor(m_file, "1.0");
    editor.setText({{"b"}}, "1");
    m_manager.setSaveMode(ConfigurationManager::Merge);
    useOneFile();
    const auto slow = add(std::make_shared<Support::ActingObject>("Slow"));
    slow->value<int>("a").setValue(5);
    slow->onSave = [&] {
        const Report report = editor.save(milliseconds(20));
        EXPECT_EQ(Report::Busy, report.reason);
        EXPECT_THAT(report.text, HasSubstr("was not saved: another process is saving it"));
    };
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_FALSE(slow->onSave) << "the save asked";
    EXPECT_EQ(Report::Failed, editor.save().reason) << "the file is there by now";
}

TEST_F(ConfigurationFileEditorTest, WritesANewFileAndNoOther) {
    auto editor = edit("<a>1</a>");
    const FileName other = m_directory.file("new/2.0.xml");
    EXPECT_EQ(Report::Saved, editor.saveAs(other).reason);
    EXPECT_EQ(editor.asString(), readFile(other));

    editor.setVersion("2.0");
    const Report report = editor.saveAs(other);
    EXPECT_EQ(Report::Failed, report.reason);
    EXPECT_EQ(std::errc::file_exists, report.error);
    EXPECT_THAT(report.text, HasSubstr("new/2.0.xml\" was not saved: "));
    EXPECT_EQ("1.0", ConfigurationFileEditor(other, "").version());
    EXPECT_TRUE(editor.isChanged());
    EXPECT_EQ(document("<a>1</a>"), readFile(m_file));

    const FileName link = m_directory.file("link.xml");
    fs::create_symlink("missing/nowhere.xml", link.toString());
    EXPECT_EQ(std::errc::file_exists, editor.saveAs(link).error);
    EXPECT_FALSE(fs::exists(m_directory.path() / "missing"));
    EXPECT_EQ(Report::NoFolder, editor.saveAs(m_directory.file("system.xml/x")).reason);
    EXPECT_EQ(Report::Failed, editor.saveAs(FileName(std::string("a\0b", 3))).reason);
}

TEST_F(ConfigurationFileEditorTest, DoesNotWriteWhatIsNestedTooDeeply) {
    std::string contents;
    for (int i = 0; i < 4001; ++i)
        contents.insert(0, "<a>").append("</a>");
    auto editor = edit(contents);
    std::size_t deepest = 0;
    editor.visitElements({}, [&](const Path& path) { deepest = path.size(); });
    EXPECT_EQ(4001U, deepest);
    editor.setText({{"b"}}, "1");
    EXPECT_EQ(Report::InvalidContent, editor.save().reason);
    EXPECT_EQ(Report::InvalidContent, editor.saveAs(m_directory.file("b.xml")).reason);
    EXPECT_THROW((void)editor.asString(), std::runtime_error);
    EXPECT_EQ(document(contents), readFile(m_file));
    EXPECT_FALSE(fs::exists(m_directory.path() / "b.xml"));
}

TEST_F(ConfigurationFileEditorTest, CanBeMoved) {
    auto editor = edit("<a>1</a>");
    ConfigurationFileEditor other = std::move(editor);
    other.setText({{"a"}}, "2");
    editor = std::move(other);
    EXPECT_TRUE(editor.isChanged());
    expectSaved(editor, "<a>2</a>");
}

} // namespace
} // namespace Orvant
