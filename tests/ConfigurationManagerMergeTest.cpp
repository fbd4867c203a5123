#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>

#include <ManagerFixture.h>
#include <OwnProcess.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <map>
#include <thread>

namespace Orvant {
namespace {

using Support::ActingObject;
using Support::document;
using Support::readFile;
using Support::TestObject;
using Support::withoutFormatting;
using Support::writeFile;
using testing::HasSubstr;
using testing::Values;

using Strings = std::vector<std::string>;
using Report = ConfigurationSaveReport;

/// An object with "a" (1), "b" (2), a list "l" and a child "Child" with "c" (3).
std::shared_ptr<TestObject> makeObject(const std::string& name = "Test") {
    return TestObject::make(name, [](TestObject& object) {
        object.add("a", 1).add("b", 2).add("l", Strings{}).addChild(new TestObject("Child"));
        object.child("Child").add("c", 3);
    });
}

/// Reads and writes the texts that the application adds, each with its own key.
class Bookmarks : public ConfigurationObject {
public:
    Bookmarks() : ConfigurationObject("Bookmarks", "", LoadAndSave, AllProducts) {}
    ConfigurationObject* createConfigurationObject() const override { return new Bookmarks; }
    void loadContent(ConfigReader& reader) override {
        texts.clear();
        reader.createConfigurationObjects("Bookmark", [&](const std::string& key) {
            bool editable = true;
            reader.getString("Text", texts[key], editable);
        });
    }
    using ConfigurationObject::saveContent;
    void saveContent(ConfigWriter& writer) const override {
        for (const auto& [key, text] : texts) {
            TestObject bookmark;
            bookmark.add("Text", text);
            writer.putClassContents("Bookmark", key, bookmark, "");
        }
    }
    void saveContent(ConfigWriter& writer, ConfigReader&, bool) const override {
        saveContent(writer);
    }
    bool canBeSavedToUserConfig(ConfigReader&) const override { return !texts.empty(); }

    std::map<std::string, std::string> texts;
};

/// Both file modes: the file that is saved to is the only one or the user's.
class ConfigurationManagerMerge : public Support::ManagerFixture,
                                  public testing::WithParamInterface<bool> {
protected:
    ConfigurationManagerMerge() {
        m_manager.setSaveMode(ConfigurationManager::Merge);
        if (GetParam())
            useTwoFiles();
        else
            useOneFile();
    }
    bool save() const { return m_manager.saveConfiguration("1.0"); }
    void write(const std::string& contents) const { writeFile(m_target, document(contents)); }
    std::string contents() const {
        const std::string text = withoutFormatting(readFile(m_target));
        static const std::string start = "<Configuration version=\"1.0\">";
        static const std::string end = "</Configuration>";
        if (!text.starts_with(start))
            return text;
        return text.substr(start.size(), text.size() - start.size() - end.size());
    }
    Report::Reason reason() const { return m_manager.getSaveReport().reason; }

    const FileName m_target = GetParam() ? m_userFile : m_file;
};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerMerge, Values(false, true),
                         [](const auto& mode) { return mode.param ? "TwoFiles" : "OneFile"; });

TEST_P(ConfigurationManagerMerge, KeepsWhatAnotherProcessChangedInTheSameObject) {
    write("<Test><a>5</a><b>6</b></Test>");
    const auto mine = add(makeObject());
    auto other = anotherProcess();
    const auto theirs = makeObject();
    other.addConfigurationObject(theirs, "Test");

    theirs->value<int>("b").setValue(60);
    theirs->child("Child").value<int>("c").setValue(30);
    EXPECT_TRUE(other.saveConfiguration("1.0"));
    mine->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>50</a><b>60</b><Child><c>30</c></Child></Test>", contents());
    EXPECT_EQ(Report::Saved, reason());

    // What the other one wrote is still not a change of this one.
    mine->value<int>("a").setValue(51);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>51</a><b>60</b><Child><c>30</c></Child></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, WinsForTheValueThatBothChanged) {
    write("<Test><a>5</a><b>6</b></Test>");
    const auto mine = add(makeObject());
    write("<Test><a>7</a><b>8</b></Test>");
    mine->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>50</a><b>8</b></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, KeepsCommentsAttributesAndOrder) {
    write(
        "<!--x--><Other/><Test note=\"n\"><!--of b--><b>6</b><!--of a--><a>5</a><!--end--></Test>");
    const auto mine = add(makeObject());
    mine->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_EQ("<!--x--><Other/><Test note=\"n\"><!--of b--><b>6</b><!--of a--><a>50</a><!--end-->"
              "</Test>",
              contents());
}

TEST_P(ConfigurationManagerMerge, WritesNothingWithoutAChange) {
    write("<Test><a>5</a></Test>");
    add(makeObject());
    const auto time = std::filesystem::file_time_type() + std::chrono::hours(1);
    std::filesystem::last_write_time(m_target.toString(), time);
    const std::string before = readFile(m_target);
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, reason());
    EXPECT_EQ(before, readFile(m_target));
    EXPECT_EQ(time, std::filesystem::last_write_time(m_target.toString()));
}

TEST_P(ConfigurationManagerMerge, MakesNoFileWithoutAChange) {
    add(makeObject());
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, reason());
    EXPECT_FALSE(std::filesystem::exists(m_target.toString()));
}

TEST_P(ConfigurationManagerMerge, ReplacesAListAsAWhole) {
    write("<Test><l><item>x</item><item>y</item></l></Test>");
    const auto mine = add(makeObject());
    write("<Test><l><item>x</item><item>z</item></l></Test>");
    mine->value<Strings>("l").setValue({"1", "2", "3"});
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><l><item>1</item><item>2</item><item>3</item></l></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, KeepsAListReadableBesideThatOfAChild) {
    const auto make = [] {
        return TestObject::make("Test", [](TestObject& object) {
            object.add("l", Strings{"x"}).addChild(new TestObject("Child"));
            object.child("Child").add("l", Strings{"y"});
        });
    };
    write("<Test/>");
    const auto mine = add(make());
    mine->child("Child").value<Strings>("l").setValue({"z"});
    EXPECT_TRUE(save());
    auto other = anotherProcess();
    const auto theirs = make();
    other.addConfigurationObject(theirs, "Test");
    EXPECT_EQ(Strings{"x"}, theirs->value<Strings>("l").getValue());
    EXPECT_EQ(Strings{"z"}, theirs->child("Child").value<Strings>("l").getValue());
    theirs->value<Strings>("l").setValue({"v"});
    EXPECT_TRUE(other.saveConfiguration("1.0"));
    EXPECT_EQ("<Test><l><item>v</item></l><Child><l><item>z</item></l></Child></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, MergesKeyedSiblings) {
    write("<P key=\"1\"><a>5</a></P><P key=\"2\"><a>6</a></P>");
    const auto first = add(makeObject("P"), "P", "1");
    add(makeObject("P"), "P", "2");
    const auto third = add(makeObject("P"), "P", "3");
    write("<P key=\"1\"><a>5</a></P><P key=\"2\"><a>60</a></P><P key=\"4\"><a>7</a></P>");
    first->value<int>("b").setValue(20);
    third->value<int>("a").setValue(70);
    EXPECT_TRUE(save());
    EXPECT_EQ("<P key=\"1\"><a>5</a><b>20</b></P><P key=\"2\"><a>60</a></P><P key=\"4\"><a>7</a>"
              "</P><P key=\"3\"><a>70</a></P>",
              contents());
}

TEST_P(ConfigurationManagerMerge, CopiesTheDefaultEntryThatAKeyedObjectWasLoadedFrom) {
    write("<P><a>5</a><b>6</b></P>");
    const auto object = add(makeObject("P"), "P", "1");
    object->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_THAT(contents(), HasSubstr("<P><a>5</a><b>6</b></P><P key=\"1\"><a>50</a><b>6</b>"));
}

TEST_P(ConfigurationManagerMerge, MergesAClassThatOverridesItsSavingByWhatItWrites) {
    write("<Bookmarks><Bookmark key=\"x\"><Text>1</Text></Bookmark>"
          "<Bookmark key=\"y\"><Text>2</Text></Bookmark></Bookmarks>");
    const auto mine = add(std::make_shared<Bookmarks>());
    auto other = anotherProcess();
    const auto theirs = std::make_shared<Bookmarks>();
    other.addConfigurationObject(theirs, "Bookmarks");
    theirs->texts["z"] = "3";
    EXPECT_TRUE(other.saveConfiguration("1.0"));

    mine->texts.erase("x");
    mine->texts["y"] = "20";
    EXPECT_TRUE(save());
    EXPECT_EQ("<Bookmarks><Bookmark key=\"y\"><Text>20</Text></Bookmark>"
              "<Bookmark key=\"z\"><Text>3</Text></Bookmark></Bookmarks>",
              contents());
}

TEST_P(ConfigurationManagerMerge, WritesWhatIsSavedButNeverLoaded) {
    write("<Test><version>1</version></Test>");
    add(TestObject::make(
        "Test", [](TestObject& object) { object.add("version", 2, TestObject::SaveOnly); }));
    EXPECT_TRUE(save());
    // As compared with the system file it differs from nothing.
    EXPECT_EQ(GetParam() ? "<Configuration version=\"1.0\"/>" : "<Test><version>2</version></Test>",
              contents());
}

TEST_P(ConfigurationManagerMerge, DoesNotTouchWhatAClassDoesNotWrite) {
    write("<Test><a>5</a></Test>");
    const auto object = TestObject::make(
        "Test", [](TestObject& test) { test.add("a", 1); }, TestObject::NotPersistent);
    add(object);
    object->value<int>("a").setValue(6);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, MakesMissingFolders) {
    const FileName file = m_directory.file("a/b/user.xml");
    GetParam() ? m_manager.setSystemAndUserConfigurationFile(m_systemFile, file)
               : m_manager.setConfigurationFile(file);
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><a>5</a></Test>"), withoutFormatting(readFile(file)));
}

TEST_P(ConfigurationManagerMerge, TakesAnEmptyFileForAMissingOneAndLogsIt) {
    write("<Test><a>5</a></Test>");
    const auto object = add(makeObject());
    writeFile(m_target, "");
    const Support::LogCapture log("ConfigurationManager");
    // A crash of another program must not cost what is still in memory.
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
    EXPECT_THAT(log.text(), HasSubstr("is empty and counts as missing"));
}

TEST_P(ConfigurationManagerMerge, LoadsFromAnEmptyFileAndSavesOverIt) {
    writeFile(m_target, "");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, NeverOverwritesADamagedFile) {
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    writeFile(m_target, "<Configuration version=\"1.0\"><Te");
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::Damaged, reason());
    EXPECT_EQ("<Configuration version=\"1.0\"><Te", readFile(m_target));
}

TEST_P(ConfigurationManagerMerge, NeverOverwritesAnotherVersion) {
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    writeFile(m_target, "<Configuration version=\"9.0\"/>");
    EXPECT_FALSE(save());
    EXPECT_EQ(Report::OtherVersion, reason());
    EXPECT_EQ("<Configuration version=\"9.0\"/>", readFile(m_target));
}

TEST_P(ConfigurationManagerMerge, SetsTheVersionThatIsAccepted) {
    write("<Test><a>5</a></Test>");
    m_manager.setValidVersionList({"1.0", "2.0"});
    add(makeObject());
    EXPECT_TRUE(m_manager.saveConfiguration("3.0"));
    EXPECT_THAT(readFile(m_target), HasSubstr("version=\"1.0\""));
    EXPECT_TRUE(m_manager.saveConfiguration("2.0"));
    EXPECT_EQ(Report::Saved, reason());
    EXPECT_THAT(readFile(m_target), HasSubstr("version=\"2.0\""));
}

TEST_P(ConfigurationManagerMerge, SaysWhenOthersKeepTheFileLocked) {
    auto other = anotherProcess();
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    m_manager.setLockTimeout(std::chrono::milliseconds(20));
    const auto slow = std::make_shared<ActingObject>("Slow");
    other.addConfigurationObject(slow, "Slow");
    slow->onSave = [&] {
        EXPECT_FALSE(save());
        EXPECT_EQ(Report::Busy, reason());
    };
    EXPECT_TRUE(other.saveConfiguration("1.0"));
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, DropsTheElementOfARemovedObject) {
    write("<P key=\"1\"><a>5</a></P><P key=\"2\"><a>6</a></P><Test><a>7</a></Test>");
    add(makeObject("P"), "P", "1");
    add(makeObject("P"), "P", "2");
    add(makeObject());
    EXPECT_TRUE(m_manager.removeConfigurationObject("P", "1"));
    EXPECT_FALSE(m_manager.removeConfigurationObject("P", "1"));
    EXPECT_TRUE(m_manager.removeConfigurationObject("Test"));
    EXPECT_TRUE(save());
    EXPECT_EQ("<P key=\"2\"><a>6</a></P>", contents());
}

TEST_P(ConfigurationManagerMerge, WritesAllObjectsInFullToAnotherFile) {
    write("<Test><a>5</a></Test>");
    add(makeObject());
    const FileName copy = m_directory.file("copy.xml");
    writeFile(copy, document("<Other/>"));
    EXPECT_TRUE(m_manager.saveConfigurationToFile(copy.toString(), "1.0"));
    EXPECT_EQ(document("<Other/><Test><a>5</a><b>2</b><l/><Child><c>3</c></Child></Test>"),
              withoutFormatting(readFile(copy)));
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, SavesWhatTheApplicationSetBeforeTheObjectWasRegistered) {
    const auto object = makeObject();
    object->value<int>("a").setValue(5);
    add(object);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, KnowsTheChangesWhenItIsSwitchedOnLate) {
    m_manager.setSaveMode(ConfigurationManager::InPlace);
    write("<Test><a>5</a><b>6</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(50);
    m_manager.setSaveMode(ConfigurationManager::Merge);
    write("<Test><a>5</a><b>60</b></Test>");
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>50</a><b>60</b></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, SavesAnObjectThatAnotherOneRegistersDuringItsSave) {
    for (const std::string late : {"Early", "Z"}) {
        write("");
        const auto object = add(std::make_shared<ActingObject>("Object " + late), "M", late);
        const auto registered = makeObject(late);
        registered->value<int>("b").setValue(20);
        object->value<int>("a").setValue(10);
        object->onSave = [&] { add(registered); };
        EXPECT_TRUE(save());
        EXPECT_TRUE(save());
        EXPECT_THAT(contents(), HasSubstr("<M key=\"" + late + "\"><a>10</a></M>"));
        EXPECT_THAT(contents(), HasSubstr("<" + late + "><b>20</b></" + late + ">"));
    }
}

TEST_P(ConfigurationManagerMerge, MovesValuesToTheElementOfAnObjectThatTakesTheNameWithAKey) {
    write("<P><a>5</a></P>");
    add(makeObject("P"));
    m_manager.removeConfigurationObject("P");
    ASSERT_EQ(5, add(makeObject("P"), "P", "1")->value<int>("a").getValue());
    EXPECT_TRUE(save());
    EXPECT_THAT(contents(), HasSubstr("<P key=\"1\"><a>5</a>"));
    EXPECT_THAT(contents(), Not(HasSubstr("<P>")));
}

TEST_P(ConfigurationManagerMerge, MovesValuesToTheElementOfAnObjectThatTakesTheNameWithoutAKey) {
    write("<P key=\"1\"><a>5</a></P>");
    add(makeObject("P"), "P", "1");
    m_manager.removeConfigurationObject("P", "1");
    ASSERT_EQ(5, add(makeObject("P"))->value<int>("a").getValue());
    EXPECT_TRUE(save());
    EXPECT_THAT(contents(), HasSubstr("<P><a>5</a>"));
    EXPECT_THAT(contents(), Not(HasSubstr("key=")));
}

TEST_P(ConfigurationManagerMerge, WritesAnUndoneChangeThatTheFileHeldAlready) {
    write("<Test><a>5</a></Test>");
    const auto object = add(makeObject());
    write("<Test><a>50</a></Test>");
    object->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, reason());
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::Saved, reason());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, ForgetsARemovedObjectThatIsNotInTheFile) {
    write("<Other/>");
    add(makeObject());
    m_manager.removeConfigurationObject("Test");
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, reason());
    write("<Test><a>5</a></Test>");
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, MakesNoFileOfAVersionThatIsNotAccepted) {
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    EXPECT_FALSE(m_manager.saveConfiguration("3.0"));
    EXPECT_EQ(Report::OtherVersion, reason());
    EXPECT_FALSE(std::filesystem::exists(m_target.toString()));
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, LeavesAnEmptyTextAloneWhoseNameAChildHasToo) {
    const auto make = [] {
        return TestObject::make("Test", [](TestObject& object) {
            object.add("b", 2).add("t", std::string()).addChild(new TestObject("Child"));
            object.child("Child").add("t", std::string("y"));
        });
    };
    for (const std::string own : {"", "<t/>"}) {
        const std::string start = "<Test><b>6</b>" + own + "<Child><t>x</t></Child>";
        m_manager.removeConfigurationObject("Test");
        write(start + "</Test>");
        const auto object = add(make());
        ASSERT_EQ("", object->value<std::string>("t").getValue());
        object->value<int>("b").setValue(20);
        EXPECT_TRUE(save());
        EXPECT_EQ("<Test><b>20</b>" + own + "<Child><t>x</t></Child></Test>", contents());
    }
}

TEST_P(ConfigurationManagerMerge, KeepsWhatOthersWriteWhileAnObjectIsLoadedThatRegistersAnother) {
    write("<Outer><a>5</a></Outer><Last><a>6</a></Last>");
    const auto outer = std::make_shared<ActingObject>("Outer");
    const auto inner = makeObject("Inner");
    outer->onLoad = [&] {
        write("<Outer><a>50</a></Outer><Last><a>60</a></Last>");
        add(inner);
    };
    m_manager.addConfigurationObjects({{outer, "Outer"}, {makeObject("Last"), "Last"}});
    inner->value<int>("b").setValue(20);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Outer><a>50</a></Outer><Last><a>60</a></Last><Inner><b>20</b></Inner>", contents());
}

TEST_P(ConfigurationManagerMerge, SaysThatItSavedWithoutALock) {
    std::filesystem::create_directory(m_target.toString() + ".lock");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::Saved, reason());
    EXPECT_FALSE(m_manager.getSaveReport().writtenInPlace);
    EXPECT_THAT(m_manager.getSaveReport().text,
                HasSubstr(m_target.toString() + "\" was saved without a lock: "));
    EXPECT_EQ("<Test><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, SavesInPlaceAndWithoutALockWhereTheFolderTakesNoFiles) {
    write("<Test><b>6</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    const Support::ReadOnlyFolder folder(m_directory.path());
    std::filesystem::permissions(m_target.toString(), std::filesystem::perms(0666));
    EXPECT_EQ(0, Support::asOrdinaryUser([&] {
                  const bool isSaved = save() && m_manager.getSaveReport().writtenInPlace;
                  const std::string& text = m_manager.getSaveReport().text;
                  return isSaved && text.find("was written in place") != text.npos &&
                                 text.find("was saved without a lock") != text.npos
                             ? 0
                             : 1;
              }));
    EXPECT_EQ("<Test><b>6</b><a>5</a></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, MakesTheFolderThatALinkLeadsInto) {
    std::filesystem::create_symlink("deep/er/real.xml", m_target.toPath());
    add(makeObject())->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_TRUE(std::filesystem::is_symlink(m_target.toPath()));
    EXPECT_EQ(document("<Test><a>5</a></Test>"),
              withoutFormatting(readFile(m_directory.file("deep/er/real.xml"))));
}

TEST_P(ConfigurationManagerMerge, SavesWhatALockKeptOutAsSoonAsTheLockIsGone) {
    const FileName& locking = GetParam() ? m_systemFile : m_file;
    const std::string unlocked = "<Test><a>5</a><Child><c>6</c></Child></Test>";
    for (const std::string element : {"<a>", "<Child>", "<c>", "<Test>"}) {
        m_manager.removeConfigurationObject("Test");
        if (GetParam())
            write("");
        writeFile(locking, document(unlocked));
        const auto object = add(makeObject());
        object->value<int>("a").setValue(21);
        object->child("Child").value<int>("c").setValue(31);
        const std::string lock = " editable=\"false\"";
        std::string locked = document(unlocked);
        locked.insert(locked.find(element) + element.size() - 1, lock);
        writeFile(locking, locked);
        for (int saves = 0; saves < 2; ++saves) {
            EXPECT_TRUE(save());
            const bool savesA = element == "<c>" || element == "<Child>";
            EXPECT_EQ(savesA, contents().find("<a>21</a>") != std::string::npos) << element;
            EXPECT_EQ(element == "<a>", contents().find("<c>31</c>") != std::string::npos)
                << element;
        }
        std::string unlocking = readFile(locking);
        writeFile(locking, unlocking.erase(unlocking.find(lock), lock.size()));
        EXPECT_TRUE(save());
        EXPECT_THAT(contents(), HasSubstr("<a>21</a>")) << element;
        EXPECT_THAT(contents(), HasSubstr("<c>31</c>")) << element;
        EXPECT_TRUE(save());
        EXPECT_EQ(Report::NothingToSave, reason());
    }
}

TEST_P(ConfigurationManagerMerge, KeepsAListThatIsReadFromThatOfAChild) {
    const auto make = [] {
        return TestObject::make("Test", [](TestObject& object) {
            object.add("b", 2).add("l", Strings{"x"}).addChild(new TestObject("Child"));
            object.child("Child").add("l", Strings{"y"});
        });
    };
    write("<Test><Child><l><item>c</item></l></Child><l><item>own</item></l></Test>");
    const auto object = add(make());
    ASSERT_EQ(Strings{"c"}, object->value<Strings>("l").getValue());
    object->value<int>("b").setValue(20);
    EXPECT_TRUE(save());
    auto other = anotherProcess();
    const auto fresh = make();
    other.addConfigurationObject(fresh, "Test");
    EXPECT_EQ(20, fresh->value<int>("b").getValue());
    EXPECT_EQ(Strings{"c"}, fresh->value<Strings>("l").getValue());
    EXPECT_EQ(Strings{"c"}, fresh->child("Child").value<Strings>("l").getValue());
}

TEST_P(ConfigurationManagerMerge, KeepsWhatOthersWriteBesideAValueThatIsNamedAsItemsAre) {
    write("<Test><item>5</item></Test>");
    const auto object =
        add(TestObject::make("Test", [](TestObject& test) { test.add("item", 1); }));
    write("<Test><item>5</item><Theirs>7</Theirs></Test>");
    object->value<int>("item").setValue(6);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><item>6</item><Theirs>7</Theirs></Test>", contents());
}

TEST_P(ConfigurationManagerMerge, KeepsTheVersionOfAnotherFile) {
    m_manager.setValidVersionList({"1.0", "2.0"});
    write("<Test><a>5</a></Test>");
    add(makeObject());
    const FileName other = m_directory.file("other.xml", "<Configuration version=\"2.0\"/>");
    EXPECT_TRUE(m_manager.saveConfigurationToFile(other.toString(), "1.0"));
    EXPECT_THAT(readFile(other), HasSubstr("version=\"2.0\""));
    EXPECT_THAT(readFile(other), HasSubstr("<a>5</a>"));
    // The objects' own file is migrated.
    GetParam() ? m_manager.setSystemAndUserConfigurationFile(m_systemFile, other)
               : m_manager.setConfigurationFile(other);
    EXPECT_TRUE(save());
    EXPECT_THAT(readFile(other), HasSubstr("version=\"1.0\""));
}

class ConfigurationManagerMergeTwoFiles : public ConfigurationManagerMerge {
protected:
    void writeSystem(const std::string& contents) const {
        writeFile(m_systemFile, document(contents));
    }
    /// @return an object that was reset from the user's file while "a" was locked, as it is no more
    std::shared_ptr<TestObject> resetUnderALock(const std::string& user,
                                                Support::SaveMode modeOfReset) {
        m_manager.removeConfigurationObject("Test");
        m_manager.setSaveMode(modeOfReset);
        writeSystem("<Test><a editable=\"false\">20</a></Test>");
        write(user);
        const auto object = add(makeObject());
        m_manager.resetConfigurationObject("Test", true);
        EXPECT_FALSE(object->value<int>("a").isEditable());
        m_manager.setSaveMode(ConfigurationManager::Merge);
        writeSystem("<Test><a>25</a></Test>");
        return object;
    }
};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerMergeTwoFiles, Values(true),
                         [](const auto&) { return "Merge"; });

/// Writes a counter among its differences only.
class CountingObject : public TestObject {
public:
    using TestObject::TestObject;
    ConfigurationObject* createConfigurationObject() const override {
        auto* const fresh = new CountingObject("Test");
        fresh->add("a", 1);
        return fresh;
    }
    using TestObject::saveContent;
    void saveContent(ConfigWriter& writer, ConfigReader& reader,
                     bool onlyDifferent) const override {
        TestObject::saveContent(writer, reader, onlyDifferent);
        writer.putInt("Count", count, "");
    }
    bool canBeSavedToUserConfig(ConfigReader&) const override { return true; }

    int count = 0;
};

TEST_P(ConfigurationManagerMergeTwoFiles, WritesWhatAClassHasAmongItsDifferencesOnly) {
    write("<Test><a>5</a></Test>");
    const auto object = std::make_shared<CountingObject>("Test");
    object->add("a", 1);
    add(object);
    object->count = 7;
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>5</a><Count>7</Count></Test>", contents());
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, reason());
}

TEST_P(ConfigurationManagerMergeTwoFiles, RemovesAValueThatIsTheSystemsAgain) {
    writeSystem("<Test><a>5</a><b>6</b></Test>");
    write("<Test><a>50</a><!--of b--><b>60</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(6);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>50</a></Test>", contents());
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, DoesNotPinWhatTheAdministratorChangesMeanwhile) {
    writeSystem("<Test><a>5</a></Test>");
    const auto object = add(makeObject());
    writeSystem("<Test><a>7</a></Test>");
    object->value<int>("b").setValue(20);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><b>20</b></Test>", contents());
    writeSystem("<Test><a>8</a></Test>");
    object->value<int>("b").setValue(21);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><b>21</b></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, NeverWritesALockedValue) {
    writeSystem("<Test><a editable=\"false\">5</a><l editable=\"false\"/>"
                "<Child editable=\"false\"><c>6</c></Child></Test><Lock editable=\"false\"/>");
    const auto object = add(makeObject());
    const auto lock = add(makeObject("Lock"));
    object->value<int>("a").setValue(50);
    object->value<int>("b").setValue(20);
    object->value<Strings>("l").setValue({"x"});
    object->child("Child").value<int>("c").setValue(60);
    lock->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><b>20</b></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, TakesLocksAsALoadDoes) {
    writeSystem("<Test><a editable=\"false\"><x/></a></Test>");
    const auto object = add(makeObject());
    ASSERT_TRUE(object->value<int>("a").isEditable());
    object->value<int>("a").setValue(50);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>50</a></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, DropsTheUsersValuesAfterAResetFromTheSystemFile) {
    writeSystem("<Test><a>5</a></Test>");
    write("<Test><a>50</a></Test><P key=\"1\"><a>6</a></P><P key=\"2\"><a>7</a></P>");
    add(makeObject());
    add(makeObject("P"), "P", "1");
    const auto second = add(makeObject("P"), "P", "2");
    m_manager.resetConfigurationObject("Test", false);
    m_manager.resetConfigurationObject("P", "2", false);
    EXPECT_EQ(1, second->value<int>("a").getValue());
    EXPECT_TRUE(save());
    EXPECT_EQ("<P key=\"1\"><a>6</a></P>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, WritesNothingAfterAResetFromTheUsersFile) {
    writeSystem("<Test><a>5</a></Test>");
    write("<Test><b>60</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(61);
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_TRUE(save());
    EXPECT_EQ(Report::NothingToSave, reason());
    EXPECT_EQ("<Test><b>60</b></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, KeepsTheUsersValuesThatAResetFoundUnderALock) {
    const std::string user = "<Test><a>30</a><b>6</b></Test>";
    for (const auto mode : {ConfigurationManager::Merge, ConfigurationManager::InPlace}) {
        resetUnderALock(user, mode);
        EXPECT_TRUE(save());
        EXPECT_EQ(user, contents());
    }
}

TEST_P(ConfigurationManagerMergeTwoFiles, PinsNothingThatAResetFromTheUsersFileFoundLocked) {
    const std::string user = "<Test><b>6</b></Test>";
    for (const auto mode : {ConfigurationManager::Merge, ConfigurationManager::InPlace})
        for (const bool isSavedFirst : {false, true}) {
            const auto object = resetUnderALock(user, mode);
            if (isSavedFirst) {
                EXPECT_TRUE(save());
                EXPECT_EQ(user, contents());
            }
            EXPECT_TRUE(m_manager.reloadConfiguration());
            EXPECT_EQ(25, object->value<int>("a").getValue());
            EXPECT_EQ(6, object->value<int>("b").getValue());
            EXPECT_TRUE(object->value<int>("a").isEditable());
            EXPECT_TRUE(save());
            EXPECT_EQ(user, contents());
        }
}

TEST_P(ConfigurationManagerMergeTwoFiles, SavesAValueWhoseNameIsLockedInAChild) {
    writeSystem("<Test><Child><a editable=\"false\">5</a></Child></Test>");
    const auto object = TestObject::make("Test", [](TestObject& test) {
        test.add("a", 1).addChild(new TestObject("Child"));
        test.child("Child").add("a", 3);
    });
    add(object);
    ASSERT_TRUE(object->value<int>("a").isEditable());
    object->value<int>("a").setValue(50);
    object->child("Child").value<int>("a").setValue(60);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a>50</a></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, SavesAListOfWhichOnlyAnItemIsLocked) {
    writeSystem("<Test><l><item editable=\"false\">x</item><item>y</item></l></Test>");
    const auto object = add(makeObject());
    ASSERT_TRUE(object->value<Strings>("l").isEditable());
    object->value<Strings>("l").setValue({"z"});
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><l><item>z</item></l></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, NeverWritesAValueWhoseLockIsMissingAtTheSave) {
    writeSystem("<Test><a editable=\"false\">5</a></Test>");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(50);
    object->value<int>("b").setValue(20);
    std::filesystem::remove(m_systemFile.toString());
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><b>20</b></Test>", contents());
}

TEST_P(ConfigurationManagerMergeTwoFiles, DropsAllElementsOfANameAfterAResetFromTheSystemFile) {
    write("<Test><a>5</a></Test><Test><b>6</b></Test>");
    add(makeObject());
    m_manager.resetConfigurationObject("Test", false);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", contents());
}

class ConfigurationManagerMergeOneFile : public ConfigurationManagerMerge {};

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerMergeOneFile, Values(false),
                         [](const auto&) { return "Merge"; });

TEST_P(ConfigurationManagerMergeOneFile, NeverWritesALockedValue) {
    write("<Test><a editable=\"false\">5</a><b>6</b></Test>");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(50);
    object->value<int>("b").setValue(60);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><a editable=\"false\">5</a><b>60</b></Test>", contents());
}

TEST_P(ConfigurationManagerMergeOneFile, CopiesTheLocksOfTheDefaultEntry) {
    write("<P><a editable=\"false\">6</a><b>12</b><l editable=\"false\"><item>x</item></l>"
          "<Child><c editable=\"false\">7</c></Child></P>");
    const auto object = add(makeObject("P"), "P", "1");
    // The application may set what is locked.
    object->value<int>("a").setValue(60);
    object->value<int>("b").setValue(13);
    object->value<Strings>("l").setValue({"y"});
    object->child("Child").value<int>("c").setValue(70);
    EXPECT_TRUE(save());
    EXPECT_THAT(contents(), HasSubstr("</P><P key=\"1\"><a editable=\"false\">6</a><b>13</b>"
                                      "<l editable=\"false\"><item>x</item></l>"
                                      "<Child><c editable=\"false\">7</c></Child></P>"));

    auto other = anotherProcess();
    const auto next = makeObject("P");
    other.addConfigurationObject(next, "P", "1");
    EXPECT_EQ(6, next->value<int>("a").getValue());
    EXPECT_FALSE(next->value<int>("a").isEditable());
    EXPECT_EQ(13, next->value<int>("b").getValue());
    EXPECT_TRUE(next->value<int>("b").isEditable());
    EXPECT_EQ(7, next->child("Child").value<int>("c").getValue());
    EXPECT_FALSE(next->child("Child").value<int>("c").isEditable());
}

TEST_P(ConfigurationManagerMergeOneFile, KeepsALockedListOfTheDefaultEntryReadable) {
    const auto make = [] {
        return TestObject::make("P", [](TestObject& object) {
            object.add("b", 2).add("l", Strings{}).addChild(new TestObject("Child"));
            object.child("Child").add("l", Strings{});
        });
    };
    write("<P><l editable=\"false\"><item>x</item></l><Child><l><item>y</item></l></Child></P>");
    add(make(), "P", "1")->value<int>("b").setValue(13);
    EXPECT_TRUE(save());
    auto other = anotherProcess();
    const auto next = make();
    other.addConfigurationObject(next, "P", "1");
    EXPECT_EQ(13, next->value<int>("b").getValue());
    EXPECT_EQ(Strings{"x"}, next->value<Strings>("l").getValue());
    EXPECT_FALSE(next->value<Strings>("l").isEditable());
    EXPECT_EQ(Strings{"y"}, next->child("Child").value<Strings>("l").getValue());
}

TEST_P(ConfigurationManagerMergeOneFile, CopiesTheLockOfAChildOfTheDefaultEntry) {
    write("<P><b>12</b><Child editable=\"false\"><c>7</c></Child></P>");
    const auto object = add(makeObject("P"), "P", "1");
    object->value<int>("b").setValue(13);
    object->child("Child").value<int>("c").setValue(70);
    EXPECT_TRUE(save());
    EXPECT_THAT(contents(), HasSubstr("<P key=\"1\"><a>1</a><b>13</b><l/>"
                                      "<Child editable=\"false\"><c>7</c></Child></P>"));
}

TEST_P(ConfigurationManagerMergeOneFile, MakesNoEntryFromADefaultEntryThatIsLockedAsAWhole) {
    const std::string locked = "<P editable=\"false\"><a>6</a><b>12</b></P>";
    write(locked);
    const auto object = add(makeObject("P"), "P", "1");
    object->value<int>("b").setValue(13);
    EXPECT_TRUE(save());
    EXPECT_EQ(locked, contents());
}

TEST_P(ConfigurationManagerMergeOneFile, SavesAnObjectThatCannotBeMadeAnew) {
    write("<Unmakeable><a>5</a></Unmakeable>");
    const auto object = add(std::make_shared<Support::Unmakeable>());
    object->value<int>("a").setValue(9);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Unmakeable><a>9</a></Unmakeable>", contents());
}

TEST_P(ConfigurationManagerMergeOneFile, WritesANamelessChildThatIsSavedButNeverLoaded) {
    write("<Test><version>1</version></Test>");
    add(TestObject::make("Test", [](TestObject& object) {
        auto* const child = new TestObject("", TestObject::SaveOnly);
        child->add("version", 2);
        object.addChild(child);
    }));
    EXPECT_TRUE(save());
    EXPECT_EQ("<Test><version>2</version></Test>", contents());
}

} // namespace
} // namespace Orvant
