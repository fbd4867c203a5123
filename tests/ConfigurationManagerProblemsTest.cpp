#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ViewFixture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
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
    return s_kinds.at(static_cast<std::size_t>(problem.kind)) + ' ' + withoutFolder(problem.file) +
           ':' + std::to_string(problem.line) + ':' + std::to_string(problem.column) + ' ' +
           problem.path + ": " + problem.text;
}

class ConfigurationManagerProblems : public ViewFixture {
protected:
    Lines problems() const {
        Lines lines;
        for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
            lines.push_back(show(problem));
        return lines;
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

TEST_F(ConfigurationManagerProblems, TellATextThatMarkupCuts) {
    EXPECT_EQ(
        (Lines{"Partly settings.xml:2:6 All/s: \"Bolt \" followed by markup and \"M8\" was read as "
               "\"Bolt \"",
               "Partly settings.xml:3:1 All/i: \"6\" followed by markup and \"0\" was read as 6",
               "Partly settings.xml:3:20 All/b: \"true\" followed by markup and \" x\" was read as "
               "true",
               "Partly settings.xml:3:45 All/d: \"6x\" followed by markup and \"0\" was read as 6",
               "NotConverted settings.xml:4:1 All/u: \" \" followed by markup and \"5\" is not an "
               "integer; the default 1 was taken",
               "Partly settings.xml:5:1 All/l: \"a\", \"b\" followed by markup and \"c\" was read "
               "as \"a\", \"b\""}),
        problemsOf("<s>Bolt <!-- m -->M8</s>\n<i>6<!-- x -->0</i><b>true<![CDATA[ x]]></b>"
                   "<d>6x<?p?>0</d>\n<u> <!-- -->5</u>\n"
                   "<l><item>a</item><item>b<?p?>c</item></l>"));
    // Of both texts of one element, that in the element in it is not one.
    const Lines lines = problemsOf("<s>Bolt <x>y</x> M8</s>");
    ASSERT_EQ(2U, lines.size());
    EXPECT_THAT(lines[0], HasSubstr("\"Bolt \" followed by markup and \" M8\" was read as"));
    EXPECT_THAT(lines[1], HasSubstr("Unknown"));
}

TEST_F(ConfigurationManagerProblems, AreNoneInWhiteSpaceThatMarkupCuts) {
    EXPECT_EQ(Lines(), problemsOf("<s>Bolt<!-- or -->\n</s><i>6 <?p?>\t</i><b>true<!-- --> </b>"
                                  "<d>5<!-- --><![CDATA[ ]]></d>"
                                  "<l>\n<item>a</item><!-- --> <item>b<!-- --> </item>x</l>"));
}

TEST_F(ConfigurationManagerProblems, TellATextThatAReferenceCuts) {
    writeFile(m_file, "<!DOCTYPE Configuration [<!ENTITY size 'M8'><!ENTITY bolt '&size; long'>]>\n"
                      "<Configuration version='1.0'><All><s>Bolt &bolt;</s></All></Configuration>");
    useOneFile();
    addAll();
    EXPECT_EQ(Lines{"Partly settings.xml:2:35 All/s: \"Bolt \" followed by markup and \"M8 long\" "
                    "was read as \"Bolt \""},
              problems());
    EXPECT_EQ(Lines(), problemsOf("<s>a &lt; b &#65;</s>"));
}

TEST_F(ConfigurationManagerProblems, AreNotInTextsThatAClassLocked) {
    writeTwo("<View><a>x</a><b>6<!-- -->0</b><Camera><f>x</f></Camera></View>",
             "<View><a>x</a><b editable='no'>2</b></View>");
    addView([](TestObject& o) {
        auto* const camera = new TestObject("Camera");
        o.add("a", 1).add("b", 1).addChild(&camera->add("f", 1));
        o.value<int>("a").setEditable(false);
        o.value<int>("b").setEditable(false);
        camera->setEditable(false);
    });
    EXPECT_EQ(Lines{"OddLock user.xml:1:44 View/b: editable=\"no\" is neither true nor false; true "
                    "was taken"},
              problems());
}

TEST_F(ConfigurationManagerProblems, TellALockOfWhatAClassLocks) {
    writeOne("<View><Zoom editable='false'>x</Zoom></View>");
    addView([](TestObject& o) { o.add("Zoom", 1).value<int>("Zoom").setEditable(false); });
    EXPECT_EQ(Lines{"OddLock settings.xml:1:36 View/Zoom: editable=\"false\" has no effect: the "
                    "element is not loaded"},
              problems());
}

TEST_F(ConfigurationManagerProblems, TellWhichFileDecidesInsteadOfATextThatIsReadInPart) {
    writeTwo("<View><a editable='false'>40</a><b>60,5</b><c editable='false'>60,5</c><f>1e99</f>"
             "<s editable='false'><!-- --></s><l><item>x<!-- -->y</item></l></View>",
             "<View><a>60,5</a><b>7</b><c>x</c><f>z</f><s>t</s><l><item><x/></item></l></View>");
    addView([](TestObject& o) {
        o.add("a", 1.0).add("b", 1.0).add("c", 1.0).add("f", 1.0F);
        o.add<std::string>("s", "mm").add<Strings>("l", {});
    });
    Lines texts;
    for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
        if (problem.kind != ConfigurationProblem::Unknown)
            texts.push_back(problem.path + ' ' + problem.text);
    EXPECT_EQ(
        (Lines{
            "View/b \"60,5\" reads as 60; the user file's \"7\" was taken",
            "View/c \"60,5\" was read as 60",
            "View/f \"1e99\" is too large for the type of the value; inf was taken",
            "View/s the element has no text at its front; the default \"mm\" was taken",
            "View/l \"x\" followed by markup and \"y\" was read as \"x\"",
            "View/a \"60,5\" reads as 60; the system file's \"40\" was taken",
            "View/c \"x\" is not a number; the system file's \"60,5\", read as 60, was taken",
            "View/f \"z\" is not a number; the system file's \"1e99\", read as inf, was taken",
            "View/l an item has no text at its front; the system file's \"x\" followed by markup "
            "and \"y\", read as \"x\", was taken"}),
        texts);
}

TEST_F(ConfigurationManagerProblems, AlwaysNameTheValueThatALoadTook) {
    const auto element = [](const std::string& tag, const std::string& text, bool isLocked) {
        return text == "-"
                   ? ""
                   : '<' + tag + (isLocked ? " editable='false'>" : ">") + text + "</" + tag + '>';
    };
    const Strings texts{"-", "", "7", "60,5", "x", "1e99", "4<!-- -->2", "<!-- -->9"};
    for (const std::string& system : texts)
        for (const std::string& user : texts)
            for (const int locks : {0, 1, 2}) { // none, the value's, the object's
                const auto fields = [&](const std::string& text, bool isLocked) {
                    const std::string list =
                        text == "-" ? text : "<item>a</item><item>" + text + "</item>";
                    return element("f", text, isLocked) + element("s", text, isLocked) +
                           element("l", list, isLocked);
                };
                m_manager.reset();
                writeTwo(element("View", fields(system, locks == 1), locks == 2),
                         element("View", fields(user, false), false));
                addView([](TestObject& o) {
                    o.add("f", 1.0F).add<std::string>("s", "mm").add<Strings>("l", {"z"});
                });
                std::map<std::string, std::string> values;
                for (const ConfigurationOrigin& origin : m_manager.explain())
                    values[origin.path] =
                        origin.path == "View/s" ? '"' + origin.value + '"' : origin.value;
                for (const ConfigurationProblem& problem : m_manager.getLoadProblems()) {
                    if (problem.kind == ConfigurationProblem::OddLock)
                        continue;
                    const std::string& value = values[problem.path];
                    const std::string said = problem.path == "View/f" ? '"' + value + '"' : value;
                    EXPECT_THAT(
                        problem.text,
                        testing::AnyOf(testing::EndsWith(" was read as " + value),
                                       testing::EndsWith("; " + value + " was taken"),
                                       testing::EndsWith("the default " + value + " was taken"),
                                       testing::EndsWith("file's " + said + " was taken"),
                                       testing::EndsWith(", read as " + value + ", was taken")))
                        << problem.path << ' ' << system << ' ' << user << ' ' << locks;
                }
            }
}

TEST_F(ConfigurationManagerProblems, SayThatNothingWasTakenWithoutARequiredSystemFile) {
    m_manager.setSystemFileRequired(true);
    writeFile(m_userFile, document("<All editable='no'><b>x</b><i>6x</i><u>99999999999</u><d/>"
                                   "<f>1e99</f></All>"));
    useTwoFiles();
    for (const char* system : {"", "<Configuration version='1.0'>"}) {
        m_manager.reset();
        useTwoFiles();
        if (*system != '\0')
            writeFile(m_systemFile, system);
        addAll();
        const Lines lines = problems();
        ASSERT_EQ(7U, lines.size());
        for (const std::string& line : lines)
            EXPECT_THAT(line, testing::EndsWith("; no file was loaded"));
        EXPECT_THAT(lines[3], HasSubstr("\"6x\" reads as 6;"));
    }
}

TEST_F(ConfigurationManagerProblems, KeepTheVersionsThatTheLoadAccepted) {
    writeOne("");
    m_manager.setValidVersionList({"2.0"});
    addView();
    m_manager.setValidVersionList({"1.0"});
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("\"1.0\" is not accepted, only \"2.0\" is;"));
    m_manager.setValidVersionList({"3.0"});
    add(std::make_shared<TestObject>("Other"));
    EXPECT_THAT(problems()[0], HasSubstr("\"1.0\" is not accepted, only \"3.0\" is;"));
}

TEST_F(ConfigurationManagerProblems, TellTheVersionsThatAreAcceptedAtASave) {
    writeOne("");
    addView();
    m_manager.setValidVersionList({"2.0"});
    ASSERT_TRUE(m_manager.saveConfiguration("2.0"));
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("\"1.0\" is not accepted, only \"2.0\" is;"));
}

TEST_F(ConfigurationManagerProblems, KeepWhetherTheLoadRequiredTheSystemFile) {
    writeFile(m_userFile, document("<View><Zoom>x</Zoom></View>"));
    useTwoFiles();
    addView();
    m_manager.setSystemFileRequired(true);
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("; the default 1 was taken"));
    add(std::make_shared<TestObject>("Other"));
    m_manager.setSystemFileRequired(false);
    ASSERT_EQ(2U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("the required system file is missing"));
    EXPECT_THAT(problems()[1], HasSubstr("; no file was loaded"));
}

TEST_F(ConfigurationManagerProblems, DoNotMissASystemFileOfASingleOne) {
    m_manager.setSystemFileRequired(true);
    writeOne("<View><Zoom>x</Zoom></View>");
    addView();
    ASSERT_EQ(1U, problems().size());
    EXPECT_THAT(problems()[0], HasSubstr("; the default 1 was taken"));
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

/// Reads an old name where there is no new one.
class Renamed : public TestObject {
public:
    explicit Renamed(bool declaresOldName)
        : TestObject("Renamed"), m_declaresOldName(declaresOldName) {
        add("New", 1);
        if (declaresOldName)
            add("Old", 1, NotPersistent);
    }
    ConfigurationObject* createConfigurationObject() const override {
        return new Renamed(m_declaresOldName);
    }
    void loadContent(ConfigReader& reader) override {
        TestObject::loadContent(reader);
        int old = 0;
        bool editable = true;
        if (!value<int>("New").hasValue() &&
            reader.getInt("Old", old, editable) == ConfigurationAccessResult::Success)
            value<int>("New").setValue(old);
    }

private:
    bool m_declaresOldName;
};

TEST_F(ConfigurationManagerProblems, TellAnOldNameThatAClassReadsUnlessItDeclaresIt) {
    for (const bool declaresOldName : {false, true}) {
        m_manager.reset();
        writeOne("<Renamed><Old>7</Old></Renamed>");
        const auto object = add(std::make_shared<Renamed>(declaresOldName));
        EXPECT_EQ(7, object->value<int>("New").getValue());
        EXPECT_EQ(declaresOldName ? Lines()
                                  : Lines{"Unknown settings.xml:1:39 Renamed/Old: no registered "
                                          "object declares \"Old\"; it was ignored"},
                  problems());
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        EXPECT_EQ(document("<Renamed><New>7</New></Renamed>"), withoutFormatting(readFile(m_file)));
    }
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
