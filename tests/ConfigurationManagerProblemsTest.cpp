#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ManagerFixture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Orvant {
namespace {

using namespace Support;
using testing::HasSubstr;
using Lines = std::vector<std::string>;
using Strings = std::vector<std::string>;

/// Kind, name of the file, place, path and text of a problem.
std::string show(const ConfigurationProblem& problem) {
    static const Strings s_kinds{"Damaged",      "OtherVersion", "Unreadable",
                                 "NotConverted", "Partly",       "OutOfRange",
                                 "OddLock",      "Unknown",      "Twice"};
    const std::string file = problem.file.toString();
    return s_kinds.at(static_cast<std::size_t>(problem.kind)) + ' ' +
           file.substr(file.find_last_of("/\\") + 1) + ':' + std::to_string(problem.line) + ':' +
           std::to_string(problem.column) + ' ' + problem.path + ": " + problem.text;
}

class ConfigurationManagerProblems : public ManagerFixture {
protected:
    void writeOne(const std::string& contents) {
        writeFile(m_file, document(contents));
        useOneFile();
    }
    void writeTwo(const std::string& system, const std::string& user) {
        writeFile(m_systemFile, document(system));
        writeFile(m_userFile, document(user));
        useTwoFiles();
    }
    Lines problems() const {
        Lines lines;
        for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
            lines.push_back(show(problem));
        return lines;
    }
    std::shared_ptr<TestObject> addView() {
        return add(TestObject::make("View", [](TestObject& o) { o.add("Zoom", 1); }));
    }
    /// Registers an object with a value of each type.
    void addAll() {
        add(TestObject::make("All", [](TestObject& o) {
            o.add("b", false).add("i", -7).add("u", 1U).add("d", 0.5).add("f", 2.0F);
            o.add<std::string>("s", "mm").add<Strings>("l", {"z"});
        }));
    }
    /// @return problems of one file that holds an element All
    Lines problemsOf(const std::string& values) {
        m_manager.reset();
        writeOne("\n<All>" + values + "</All>");
        addAll();
        return problems();
    }
};

TEST_F(ConfigurationManagerProblems, AreNoneWithoutALoad) {
    EXPECT_EQ(Lines(), problems());
    addView();
    EXPECT_EQ(Lines(), problems());
    writeOne("<Unknown/>");
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, AreNoneInWhatTheLibraryWrote) {
    useOneFile();
    addAll();
    add(TestObject::make("View", [](TestObject& o) {
        o.add("Zoom", 4000000000U).addChild(&(new TestObject("Camera"))->add("f", 1.5));
        o.addChild(&(new TestObject(""))->add<Strings>("m", {}));
    }));
    for (const char* key : {"Hall 1", "a < b"})
        add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine",
            key);
    ASSERT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, AreNoneInFilesThatAreMissing) {
    useTwoFiles();
    addView();
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, TellADamagedFileWithThePlaceOfTheError) {
    writeFile(m_systemFile, "<Configuration version='1.0'>\n <View></Veiw>\n</Configuration>");
    writeFile(m_userFile, "");
    useTwoFiles();
    addView();
    const Lines lines = problems();
    ASSERT_EQ(2U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("Damaged system.xml:2:"));
    EXPECT_THAT(lines[0], HasSubstr(" : the file is damaged: "));
    EXPECT_THAT(lines[0], HasSubstr("View"));
    EXPECT_THAT(lines[0], HasSubstr("; nothing of the file was loaded"));
    EXPECT_THAT(lines[1], HasSubstr("Damaged user.xml:"));
}

TEST_F(ConfigurationManagerProblems, TellADocumentThatIsNoConfiguration) {
    writeFile(m_file, "<!-- -->\n<Settings version='1.0'/>");
    useOneFile();
    addView();
    EXPECT_EQ(Lines{"Damaged settings.xml:2:1 : the file is damaged: the root element is "
                    "\"Settings\", not \"Configuration\"; nothing of the file was loaded"},
              problems());
}

TEST_F(ConfigurationManagerProblems, TellAVersionThatIsNotAccepted) {
    m_manager.setValidVersionList({"1.0", "1.1"});
    writeFile(m_file, "<Configuration version='2.0'><View><Zoom>x</Zoom></View></Configuration>");
    useOneFile();
    addView();
    EXPECT_EQ(Lines{"OtherVersion settings.xml:0:0 : the version \"2.0\" is not accepted, only "
                    "\"1.0\", \"1.1\" is; nothing of the file was loaded"},
              problems());
}

TEST_F(ConfigurationManagerProblems, TellAFileThatCannotBeRead) {
    writeFile(m_systemFile, document(""));
    std::filesystem::create_directory(m_directory.path() / "user.xml");
    useTwoFiles();
    addView();
    const Lines lines = problems();
    ASSERT_EQ(1U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("Unreadable user.xml:0:0 : the file cannot be read: "));
}

TEST_F(ConfigurationManagerProblems, TellARequiredSystemFileThatIsMissing) {
    writeFile(m_userFile, document(""));
    useTwoFiles();
    m_manager.setSystemFileRequired(true);
    addView();
    EXPECT_EQ(Lines{"Unreadable system.xml:0:0 : the required system file is missing; no file was "
                    "loaded"},
              problems());
    m_manager.setSystemFileRequired(false);
}

TEST_F(ConfigurationManagerProblems, TellATextThatDoesNotConvert) {
    EXPECT_EQ(Lines{"NotConverted settings.xml:2:6 All/b: \"True\" is neither true nor false; the "
                    "default false was taken"},
              problemsOf("<b>True</b>"));
    EXPECT_EQ((Lines{"NotConverted settings.xml:2:6 All/i: \"O5\" is not an integer; the default "
                     "-7 was taken",
                     "NotConverted settings.xml:3:1 All/u: \" \" is not an integer; the default 1 "
                     "was taken",
                     "NotConverted settings.xml:3:9 All/d: \"1e\" is not a number; the default 0.5 "
                     "was taken",
                     "NotConverted settings.xml:3:18 All/f: \",5\" is not a number; the default 2 "
                     "was taken"}),
              problemsOf("<i>O5</i>\n<u> </u><d>1e</d><f>,5</f>"));
}

TEST_F(ConfigurationManagerProblems, TellAnElementWithoutTheTextThatItNeeds) {
    EXPECT_EQ((Lines{"NotConverted settings.xml:2:6 All/i: the element has no text at its front; "
                     "the default -7 was taken",
                     "NotConverted settings.xml:2:10 All/s: the element has no text at its front; "
                     "the default \"mm\" was taken",
                     "NotConverted settings.xml:2:28 All/l: an item has no text at its front; the "
                     "default \"z\" was taken"}),
              problemsOf("<i/><s><!-- c -->x</s><l><item/><item><!-- --></item></l>"));
    EXPECT_EQ(Lines(), problemsOf("<s/><l/>"));
}

TEST_F(ConfigurationManagerProblems, TellATextOfWhichOnlyTheBeginningConverts) {
    EXPECT_EQ((Lines{"Partly settings.xml:2:6 All/d: \"60,5\" was read as 60",
                     "Partly settings.xml:2:17 All/i: \"3O\" was read as 3",
                     "Partly settings.xml:2:26 All/u: \"1.5\" was read as 1",
                     "Partly settings.xml:2:36 All/f: \"2.5 mm\" was read as 2.5"}),
              problemsOf("<d>60,5</d><i>3O</i><u>1.5</u><f>2.5 mm</f>"));
    EXPECT_EQ(Lines(), problemsOf("<d> 60.5 \n</d><i>\t3 </i><u>-1</u><f>+2.5e1 </f>"));
}

TEST_F(ConfigurationManagerProblems, TellANumberThatTheTypeCannotHold) {
    EXPECT_EQ((Lines{"OutOfRange settings.xml:2:6 All/i: \"2147483648\" is too large for the type "
                     "of the value; the default -7 was taken",
                     "OutOfRange settings.xml:2:23 All/u: \"4294967295\" is too large for the type "
                     "of the value; the default 1 was taken",
                     "OutOfRange settings.xml:2:40 All/d: \"1e999\" is too large for the type of "
                     "the value; the default 0.5 was taken",
                     "OutOfRange settings.xml:2:52 All/f: \"-1e300\" is too large for the type of "
                     "the value; -inf was taken"}),
              problemsOf("<i>2147483648</i><u>4294967295</u><d>1e999</d><f>-1e300</f>"));
    EXPECT_EQ(Lines(), problemsOf("<i>-2147483648</i><d>1e-999</d><f>1e-300</f>"));
}

TEST_F(ConfigurationManagerProblems, TellWhatWasTakenFromTheOtherFile) {
    writeTwo("<View><a>x</a><b>2</b><c editable='false'>y</c></View>",
             "<View><a>3</a><b>z</b><c>4</c></View>");
    add(TestObject::make("View", [](TestObject& o) { o.add("a", 1).add("b", 1).add("c", 1); }));
    const Lines lines = problems();
    ASSERT_EQ(3U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("View/a: \"x\" is not an integer; the user file's \"3\" was"));
    EXPECT_THAT(lines[1], HasSubstr("View/c: \"y\" is not an integer; the default 1 was taken"));
    EXPECT_THAT(lines[2], HasSubstr("View/b: \"z\" is not an integer; the system file's \"2\""));
}

TEST_F(ConfigurationManagerProblems, AreNotInTextsThatNothingReads) {
    writeOne("<View><a>x</a><b>x</b></View><Never><c>x</c></Never>");
    add(TestObject::make("View", [](TestObject& o) {
        o.add("a", 1, ConfigurationItemBase::SaveOnly);
        o.add("b", 1, ConfigurationItemBase::NotPersistent);
    }));
    add(TestObject::make(
        "Never", [](TestObject& o) { o.add("c", 1); }, ConfigurationItemBase::SaveOnly));
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, TellALockThatIsNeitherTrueNorFalse) {
    writeOne("<View editable='False'><Zoom editable=''>2</Zoom></View>");
    EXPECT_TRUE(addView()->isEditable());
    EXPECT_EQ((Lines{"OddLock settings.xml:1:30 View: editable=\"False\" is neither true nor "
                     "false; true was taken",
                     "OddLock settings.xml:1:53 View/Zoom: editable=\"\" is neither true nor "
                     "false; true was taken"}),
              problems());
}

TEST_F(ConfigurationManagerProblems, AreNoneInLocksThatWork) {
    writeTwo("<View editable='false'><Zoom editable='true'>2</Zoom></View>"
             "<All><l editable='false'/><s editable='false'/><b editable='false'>false</b></All>",
             "<View editable='true'/>");
    addView();
    addAll();
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, TellLocksInTheUsersFile) {
    writeTwo("<View/>", "<View editable='false'><Zoom editable='false'>2</Zoom></View>");
    EXPECT_TRUE(addView()->isEditable());
    const Lines lines = problems();
    ASSERT_EQ(2U, lines.size());
    EXPECT_THAT(lines[0],
                HasSubstr("View: editable=\"false\" has no effect: only the system file locks"));
    EXPECT_THAT(lines[1], HasSubstr("View/Zoom: editable=\"false\" has no effect"));
}

TEST_F(ConfigurationManagerProblems, DoNotDenyLocksInTheUsersFileWhereTheSystemLacksTheObject) {
    writeTwo("", "<View editable='false'/>");
    EXPECT_FALSE(addView()->isEditable());
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, TellLocksOfWhatCannotBeLocked) {
    writeFile(m_file, "<Configuration version='1.0' editable='false'><All>\n"
                      "<l><item editable='false'>x</item></l>\n"
                      "<i editable='false'/>\n"
                      "<d>1</d><d editable='false'>2</d>\n"
                      "<No editable='false'><Below editable='false'/></No></All></Configuration>");
    useOneFile();
    addAll();
    EXPECT_EQ((Lines{"OddLock settings.xml:1:1 : editable=\"false\" has no effect: the root cannot "
                     "be locked",
                     "OddLock settings.xml:2:4 All/l: editable=\"false\" has no effect: an item of "
                     "a list cannot be locked",
                     "NotConverted settings.xml:3:1 All/i: the element has no text at its front; "
                     "the default -7 was taken",
                     "OddLock settings.xml:3:1 All/i: editable=\"false\" has no effect: the "
                     "element has no text",
                     "Twice settings.xml:4:9 All/d: only the first \"d\" is read; this one was "
                     "ignored",
                     "OddLock settings.xml:4:9 All/d: editable=\"false\" has no effect: the "
                     "element is not loaded",
                     "Unknown settings.xml:5:1 All/No: no registered object declares \"No\"; it "
                     "was ignored",
                     "OddLock settings.xml:5:1 All/No: editable=\"false\" has no effect: the "
                     "element is not loaded"}),
              problems());
}

TEST_F(ConfigurationManagerProblems, TellALockOfAValueThatIsNotLoaded) {
    writeOne("<View><a editable='false'>2</a></View>");
    const auto view = add(TestObject::make(
        "View", [](TestObject& o) { o.add("a", 1, ConfigurationItemBase::SaveOnly); }));
    EXPECT_TRUE(view->value<int>("a").isEditable());
    const Lines lines = problems();
    ASSERT_EQ(1U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("has no effect: the element is not loaded"));
}

TEST_F(ConfigurationManagerProblems, TellElementsThatNobodyDeclares) {
    writeOne(
        "<View><Zoom>2<Unit/></Zoom><Zom><a/></Zom></View><Veiw key='x'><Zoom>x</Zoom></Veiw>");
    addView();
    EXPECT_EQ((Lines{"Unknown settings.xml:1:43 View/Zoom/Unit: no registered object declares "
                     "\"Unit\"; it was ignored",
                     "Unknown settings.xml:1:57 View/Zom: no registered object declares \"Zom\"; "
                     "it was ignored",
                     "Unknown settings.xml:1:79 Veiw[x]: no registered object declares \"Veiw\"; "
                     "it was ignored"}),
              problems());
}

TEST_F(ConfigurationManagerProblems, TellASecondElementWhereTheFirstIsRead) {
    writeOne("<View><Zoom>2</Zoom><Zoom>3</Zoom></View><View><Zoom>4</Zoom></View>");
    addView();
    EXPECT_EQ((Lines{"Twice settings.xml:1:50 View/Zoom: only the first \"Zoom\" is read; this one "
                     "was ignored",
                     "Twice settings.xml:1:71 View: only the first \"View\" is read; this one was "
                     "ignored"}),
              problems());
}

TEST_F(ConfigurationManagerProblems, FollowKeysAndTheElementWithoutAKey) {
    writeOne("<Machine><MaxFeed>a</MaxFeed></Machine>\n"
             "<Machine><MaxFeed>b</MaxFeed></Machine>\n"
             "<Machine key='1'><MaxFeed>c</MaxFeed></Machine>\n"
             "<Machine key='1'><MaxFeed>d</MaxFeed></Machine>\n"
             "<Machine key='3'><MaxFeed>e</MaxFeed></Machine>");
    for (const char* key : {"1", "2"})
        add(TestObject::make("Machine", [](TestObject& o) { o.add("MaxFeed", 1); }), "Machine",
            key);
    EXPECT_EQ((Lines{"Twice settings.xml:1:30 Machine: only the last \"Machine\" without a key is "
                     "read; this one was ignored",
                     "NotConverted settings.xml:2:10 Machine[2]/MaxFeed: \"b\" is not an integer; "
                     "the default 1 was taken",
                     "NotConverted settings.xml:3:18 Machine[1]/MaxFeed: \"c\" is not an integer; "
                     "the default 1 was taken",
                     "Twice settings.xml:4:1 Machine[1]: only the first \"Machine\" is read; this "
                     "one was ignored",
                     "Unknown settings.xml:5:1 Machine[3]: no registered object declares "
                     "\"Machine\" with the key \"3\"; it was ignored"}),
              problems());
}

TEST_F(ConfigurationManagerProblems, DoNotComplainOfAnElementWithoutAKeyThatIsNotNeeded) {
    writeOne("<Machine><MaxFeed>b</MaxFeed></Machine><Machine key='1'/>");
    add(std::make_shared<TestObject>("Machine"), "Machine", "1");
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, FollowListsAtAnyDepth) {
    writeOne("<View><Camera><l><item>x</item></l></Camera><l><wrong/></l></View>");
    add(TestObject::make("View", [](TestObject& o) {
        o.addChild(&(new TestObject("Camera"))->add("f", 1)).add<Strings>("l", {});
    }));
    EXPECT_EQ(Lines{"Twice settings.xml:1:74 View/l: only the first \"l\" is read; this one was "
                    "ignored"},
              problems());
    m_manager.reset();
    writeOne("<View><l><wrong><item>x</item></wrong></l></View>");
    add(TestObject::make("View", [](TestObject& o) { o.add<Strings>("l", {}); }));
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("View/l/wrong: no registered object declares"));
}

TEST_F(ConfigurationManagerProblems, TellNestedAndNamelessChildren) {
    writeOne("<View><Unit>mm</Unit><Camera>\n<f>x</f><g/></Camera></View>");
    add(TestObject::make("View", [](TestObject& o) {
        o.addChild(&(new TestObject(""))->add<std::string>("Unit", "cm"));
        o.addChild(&(new TestObject("Camera"))->add("f", 1));
    }));
    EXPECT_EQ((Lines{"NotConverted settings.xml:2:1 View/Camera/f: \"x\" is not an integer; the "
                     "default 1 was taken",
                     "Unknown settings.xml:2:9 View/Camera/g: no registered object declares "
                     "\"g\"; it was ignored"}),
              problems());
}

/// Loads and saves a child for each key, and a number.
class Plotters : public TestObject {
public:
    Plotters() : TestObject("Plotters") {}
    void loadContent(ConfigReader& reader) override {
        reader.getKeys("Plotter", m_keys);
        clear();
        for (const std::string& key : m_keys) {
            auto* const plotter = new TestObject("Plotter");
            addChild(&plotter->add("Copies", 1));
            reader.getClassContents("Plotter", key, *plotter);
        }
    }
    void saveContent(ConfigWriter& writer) const override {
        auto key = m_keys.begin();
        for (auto child = beginObjectIterator(); child != endObjectIterator(); ++child)
            writer.putClassContents("Plotter", *key++, **child, "");
        writer.putInt("Number", 1, "");
        writer.putStringVector("List", {"x", "y"}, "");
    }
    ConfigurationObject* createConfigurationObject() const override { return new Plotters; }

private:
    std::set<std::string> m_keys;
};

TEST_F(ConfigurationManagerProblems, KnowWhatAClassWritesBesidesItsValues) {
    writeOne("<Plotters><Plotter key='A'><Copies>x</Copies></Plotter><Plotter key='B'/>"
             "<Number>7</Number><List><item>z</item></List><Other/></Plotters>");
    add(std::make_shared<Plotters>());
    const Lines lines = problems();
    ASSERT_EQ(2U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("NotConverted settings.xml:1:57 Plotters/Plotter[A]/Copies"));
    EXPECT_THAT(lines[1], HasSubstr("Unknown"));
    EXPECT_THAT(lines[1], HasSubstr("Plotters/Other: "));
}

/// Only the class knows what it reads.
class Opaque : public TestObject {
public:
    Opaque() : TestObject("Opaque") {}
    ConfigurationObject* createConfigurationObject() const override { return new Opaque; }
};

TEST_F(ConfigurationManagerProblems, DoNotJudgeWhatOnlyAClassKnows) {
    writeOne("<Opaque><a/><b/><b/></Opaque>");
    add(std::make_shared<Opaque>());
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, AreFoundInObjectsThatWriteNothing) {
    writeOne("<DisableFeaturesConfiguration><EditorFoldItemsDisable>yes</EditorFoldItemsDisable>"
             "<EditorFold/></DisableFeaturesConfiguration>");
    add(std::make_shared<DisableFeaturesConfiguration>());
    const Lines lines = problems();
    ASSERT_EQ(2U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("\"yes\" is neither true nor false; the default false"));
    EXPECT_THAT(lines[1], HasSubstr("Unknown"));
}

TEST_F(ConfigurationManagerProblems, TellWhatIsNotReadBecauseItComesFromAnEntity) {
    writeFile(m_file, "<!DOCTYPE Configuration [<!ENTITY e '<Zoom>x</Zoom>'>]>\n"
                      "<Configuration version='1.0'><View>\n  &e;</View></Configuration>");
    useOneFile();
    addView();
    EXPECT_EQ(
        Lines{"Unknown settings.xml:3:3 View/Zoom: \"Zoom\" comes from an entity, where it is "
              "not read; it was ignored"},
        problems());
}

TEST_F(ConfigurationManagerProblems, HavePlacesInUtf16UnitsOfAnyEncodingAndLineEnd) {
    writeFile(m_file, "<?xml version='1.0'?>\r\n<Configuration version='1.0'>\r\n"
                      "\u00E4\U0001F600<View>\u00F6<No/></View></Configuration>\r\n");
    useOneFile();
    addView();
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("Unknown settings.xml:3:11 View/No"));

    const std::u16string text = u"\uFEFF<?xml version='1.0' encoding='UTF-16'?>\r\n"
                                u"<Configuration version='1.0'>\r\n\u00E4<No/></Configuration>";
    writeFile(m_file, std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size()));
    add(std::make_shared<TestObject>("Other"));
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("Unknown settings.xml:3:2 No"));
}

TEST_F(ConfigurationManagerProblems, AreThoseAtTheLastLoad) {
    writeOne("<View><Zoom>x</Zoom></View>");
    const auto view = addView();
    view->value<int>("Zoom").setValue(9);
    writeFile(m_file, document(""));
    EXPECT_EQ(1U, problems().size());
    add(std::make_shared<TestObject>("Other"));
    EXPECT_EQ(Lines(), problems());
}

TEST_F(ConfigurationManagerProblems, AreInTheOrderOfFilesAndText) {
    writeTwo("<No/>\n<View><Zoom>x</Zoom></View>\n<View/>", "<View><Zoom>y</Zoom></View><No/>");
    addView();
    std::vector<std::pair<ConfigurationProblem::Kind, unsigned int>> found;
    for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
        found.emplace_back(problem.kind, problem.line);
    const std::vector<std::pair<ConfigurationProblem::Kind, unsigned int>> expected{
        {ConfigurationProblem::Unknown, 1},
        {ConfigurationProblem::NotConverted, 2},
        {ConfigurationProblem::Twice, 3},
        {ConfigurationProblem::NotConverted, 1},
        {ConfigurationProblem::Unknown, 1}};
    EXPECT_EQ(expected, found);
}

TEST_F(ConfigurationManagerProblems, GoOnLikeLoadsWhereTheApplicationLocked) {
    writeOne("<View><Zoom>x</Zoom></View>");
    addView()->setEditable(false);
    EXPECT_EQ(1U, problems().size());
}

} // namespace
} // namespace Orvant
