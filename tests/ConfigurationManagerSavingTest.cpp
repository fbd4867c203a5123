#include <ConfigurationFramework/ConfigurationManager.h>

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/DisableFeaturesConfiguration.h>

#include <ManagerFixture.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <xercesc/dom/DOMException.hpp>

namespace Orvant {
namespace {

using Support::document;
using Support::readFile;
using Support::TestObject;
using Support::ThrowingObject;
using Support::withoutFormatting;
using Support::writeFile;
using testing::HasSubstr;
using testing::Values;

using Strings = std::vector<std::string>;

/// An object with the int values "a" (default 1) and "b" (default 2).
std::shared_ptr<TestObject>
makeObject(const std::string& name = "Test",
           TestObject::Persistence persistence = TestObject::LoadAndSave,
           TestObject::ProductType productType = TestObject::AllProducts) {
    return TestObject::make(
        name, [](TestObject& object) { object.add("a", 1).add("b", 2); }, persistence, productType);
}

/// An object as makeObject() makes it, with "a" set to a number.
std::shared_ptr<TestObject> makeChanged(int a, const std::string& name = "Test") {
    const auto object = makeObject(name);
    object->value<int>("a").setValue(a);
    return object;
}

template <typename T = int>
T get(const TestObject& object, const std::string& value) {
    return object.value<T>(value).getValue();
}

// Every way to save

enum class Way { OneFile, UserFile, NamedFile };

class ConfigurationManagerSaving : public Support::ManagerFixture,
                                   public testing::WithParamInterface<Way> {
protected:
    ConfigurationManagerSaving() {
        if (GetParam() == Way::OneFile)
            useOneFile();
        else
            useTwoFiles();
    }
    bool save(const std::string& version = "1.0") const {
        return GetParam() == Way::NamedFile
                   ? m_manager.saveConfigurationToFile(m_target.toString(), version)
                   : m_manager.saveConfiguration(version);
    }
    void writeTarget(const std::string& contents) { writeFile(m_target, document(contents)); }
    std::string target() const { return withoutFormatting(readFile(m_target)); }
    /// @return the element of makeChanged(): in full, or what differs from the defaults
    std::string changed(int a, const std::string& startTag = "<Test>") const {
        const bool inFull = GetParam() != Way::UserFile;
        return startTag + "<a>" + std::to_string(a) + "</a>" + (inFull ? "<b>2</b>" : "") + "</" +
               startTag.substr(1, startTag.find_first_of(" >") - 1) + ">";
    }

    const FileName m_target = GetParam() == Way::OneFile    ? m_file
                              : GetParam() == Way::UserFile ? m_userFile
                                                            : m_directory.file("named.xml");
};
std::string wayName(const testing::TestParamInfo<Way>& info) {
    return info.param == Way::OneFile    ? "OneFile"
           : info.param == Way::UserFile ? "UserFile"
                                         : "NamedFile";
}

INSTANTIATE_TEST_SUITE_P(, ConfigurationManagerSaving,
                         Values(Way::OneFile, Way::UserFile, Way::NamedFile), wayName);

TEST_P(ConfigurationManagerSaving, StartsADocumentOfTheGivenVersion) {
    add(makeChanged(5));
    EXPECT_TRUE(save("7.1 beta"));
    EXPECT_EQ("<Configuration version=\"7.1 beta\">" + changed(5) + "</Configuration>", target());
}

TEST_P(ConfigurationManagerSaving, StartsADocumentWithoutObjects) {
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", target());
}

TEST_P(ConfigurationManagerSaving, KeepsTheVersionOfAFile) {
    writeFile(m_target, "<?xml version=\"1.0\"?><Configuration version=\"0.9\"/>");
    add(makeChanged(5));
    EXPECT_TRUE(save("2.0"));
    EXPECT_EQ("<Configuration version=\"0.9\">" + changed(5) + "</Configuration>", target());
}

TEST_P(ConfigurationManagerSaving, KeepsWhatItDoesNotOwn) {
    const std::string foreign = "<!--foreign--><Foreign editable=\"false\"><x><y>1</y></x>"
                                "</Foreign><?pi data?>";
    writeTarget("<!--old--><Test><a>3</a><old/></Test>" + foreign + "<Test><a>4</a></Test>");
    const auto object = add(makeObject());
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document(foreign + changed(5)), target());
}

TEST_P(ConfigurationManagerSaving, WritesTheObjectsInTheOrderOfTheirNames) {
    for (const std::string name : {"b", "\xC3\xA4", "a", "B", "a1"})
        add(makeChanged(5, name));
    EXPECT_TRUE(save());
    EXPECT_EQ(document(changed(5, "<B>") + changed(5, "<a>") + changed(5, "<a1>") +
                       changed(5, "<b>") + changed(5, "<\xC3\xA4>")),
              target());
}

TEST_P(ConfigurationManagerSaving, WritesTheFirstObjectOfAName) {
    add(makeChanged(5));
    add(makeChanged(6));
    EXPECT_TRUE(save());
    EXPECT_EQ(document(changed(5)), target());
}

TEST_P(ConfigurationManagerSaving, WritesAnObjectUnderTheNameItIsRegisteredUnder) {
    writeTarget("<Test><a>3</a></Test><Alias><a>4</a></Alias>");
    const auto object = makeObject();
    m_manager.addConfigurationObject(object, "Alias");
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><a>3</a></Test>" + changed(5, "<Alias>")), target());
}

TEST_P(ConfigurationManagerSaving, WritesAKeyedObjectToItsElementAndLeavesItsSiblings) {
    const std::string siblings = "<!--of l--><Test key=\"l\"><a>6</a></Test><Test><a>7</a></Test>";
    writeTarget("<Test key=\"k\"><a>3</a></Test>" + siblings);
    const auto object = add(makeObject(), "Test", "k");
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document(siblings + changed(5, "<Test key=\"k\">")), target());
}

TEST_P(ConfigurationManagerSaving, WritesEachOfTheRegisteredSiblings) {
    writeTarget("<Test key=\"other\"/>");
    for (const auto& [key, a] : {std::pair("l", 5), std::pair("k", 6), std::pair("", 7)})
        add(makeChanged(a), "Test", key);
    add(makeChanged(8), "Test", "k"); // The key is taken.
    for (int time = 0; time < 3; ++time)
        EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test key=\"other\"/>" + changed(5, "<Test key=\"l\">") +
                       changed(6, "<Test key=\"k\">") + changed(7, "<Test key=\"\">")),
              target());
}

TEST_P(ConfigurationManagerSaving, WritesOfANameEitherObjectsWithKeysOrTheOneWithout) {
    add(makeChanged(5), "Keyed", "k");
    m_manager.addConfigurationObject(makeChanged(6), "Keyed");
    add(makeChanged(7), "Keyed", "l");
    m_manager.addConfigurationObject(makeChanged(5), "Single");
    add(makeChanged(6), "Single", "k");
    EXPECT_TRUE(save());
    EXPECT_EQ(document(changed(5, "<Keyed key=\"k\">") + changed(7, "<Keyed key=\"l\">") +
                       changed(5, "<Single>")),
              target());
}

TEST_P(ConfigurationManagerSaving, TakesAnEmptyKeyForTheElementWithoutOne) {
    const std::string sibling = "<Test key=\"k\"><a>6</a></Test>";
    writeTarget("<Test><a>4</a></Test>" + sibling);
    const auto object = add(makeObject(), "Test", "");
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document(sibling + changed(5, "<Test key=\"\">")), target());
}

TEST_P(ConfigurationManagerSaving, PassesOverObjectsThatNeverWriteOrNotInThisRun) {
    const Support::RunningProduct product(1);
    const std::string switches = DisableFeaturesConfiguration::s_tag;
    const auto registerAll = [&] {
        add(makeObject("Transient", TestObject::NotPersistent));
        add(makeObject("Foreign", TestObject::LoadAndSave,
                       TestObject::Product0 | TestObject::Product2));
        add(makeObject("Keyed", TestObject::NotPersistent), "Keyed", "k");
        add(std::make_shared<DisableFeaturesConfiguration>());
    };
    std::string elements;
    for (const std::string& name : {std::string("Transient"), std::string("Foreign"), switches})
        elements += "<!--of " + name + "--><" + name +
                    " x=\"1\"><a>9</a><EditorFoldItemsDisable>"
                    "true</EditorFoldItemsDisable></" +
                    name + ">";
    elements += "<Keyed key=\"k\"><a>9</a></Keyed>";

    registerAll();
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", target());

    writeTarget(elements);
    m_manager.addConfigurationObject(makeChanged(5), "Own");
    EXPECT_TRUE(save());
    EXPECT_EQ(document(elements + changed(5, "<Own>")), target());
}

TEST_P(ConfigurationManagerSaving, WritesObjectsWhileTheirProductRuns) {
    const auto object = add(
        makeObject("Test", TestObject::LoadAndSave, TestObject::Product0 | TestObject::Product5));
    for (const int product : {0, 1, 5}) {
        const Support::RunningProduct running(product);
        writeTarget("");
        object->value<int>("a").setValue(5);
        EXPECT_TRUE(save());
        if (product == 1)
            EXPECT_EQ("<Configuration version=\"1.0\"/>", target());
        else
            EXPECT_EQ(document(changed(5)), target());
    }
}

TEST_P(ConfigurationManagerSaving, WritesObjectsThatAreOnlyLoaded) {
    const auto object = add(makeObject("Test", TestObject::LoadOnly));
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document(changed(5)), target());
}

TEST_P(ConfigurationManagerSaving, WritesNoValueThatIsNotPersistentOrOfAnotherProduct) {
    const Support::RunningProduct product(1);
    const auto object = TestObject::make("Test", [](TestObject& o) {
        o.add("a", 1)
            .add("transient", 1, TestObject::NotPersistent)
            .add("foreign", 1, TestObject::LoadAndSave, TestObject::Product0)
            .add("saved", 1, TestObject::SaveOnly, TestObject::Product1);
    });
    add(object);
    for (const std::string name : {"a", "transient", "foreign", "saved"})
        object->value<int>(name).setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><a>5</a><saved>5</saved></Test>"), target());
}

TEST_P(ConfigurationManagerSaving, WritesDescriptionsAsComments) {
    const auto object = TestObject::make("Test", [](TestObject& o) {
        o.add("a", 1, TestObject::LoadAndSave, TestObject::AllProducts, "what a is");
    });
    add(object);
    object->value<int>("a").setValue(5);
    for (int time = 0; time < 3; ++time)
        EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><!--what a is--><a>5</a></Test>"), target());
}

TEST_P(ConfigurationManagerSaving, ChangesNothingTheSecondTime) {
    writeFile(m_target, "<?xml version=\"1.0\"?>\n<!-- header -->\n<Configuration version=\"1.0\">"
                        "\n  <!-- c -->\n  <Foreign>\n    <x> </x>\n  </Foreign>\n\n</"
                        "Configuration>\n");
    for (const std::string name : {"a", "b"})
        add(makeChanged(5, name))->value<int>("a").setValue(6);
    EXPECT_TRUE(save());
    const std::string first = readFile(m_target);
    for (int time = 0; time < 10; ++time)
        EXPECT_TRUE(save());
    EXPECT_EQ(first, readFile(m_target));
}

TEST_P(ConfigurationManagerSaving, LeavesTheFileAsItWasWhenAnObjectThrows) {
    add(makeChanged(5));
    add(std::make_shared<ThrowingObject>("Throwing"));
    EXPECT_FALSE(save());
    EXPECT_FALSE(std::filesystem::exists(m_target.toPath()));
    writeTarget("<Test/>");
    EXPECT_FALSE(save());
    EXPECT_EQ(document("<Test/>"), readFile(m_target));
}

TEST_P(ConfigurationManagerSaving, LeavesAFileAloneThatIsNoConfiguration) {
    const Support::LogCapture log("ConfigWriter");
    add(makeChanged(5));
    std::string tooDeep;
    for (const std::string tag : {"<x>", "</x>"})
        for (int level = 0; level < 4001; ++level)
            tooDeep += tag;
    for (const std::string& content :
         {std::string(), std::string("notes"), std::string("<Settings/>"),
          std::string("<Configuration version=\"1.0\"><Test><a>5</a>"), document(tooDeep)}) {
        writeFile(m_target, content);
        EXPECT_FALSE(save()) << content.substr(0, 100);
        EXPECT_EQ(content, readFile(m_target));
    }
}

/// Throws something while it is saved.
class ThrowingAnything : public TestObject {
public:
    ThrowingAnything(const std::string& name, std::function<void()> throwIt)
        : TestObject(name), m_throwIt(std::move(throwIt)) {}

    ConfigurationObject* createConfigurationObject() const override {
        return new ThrowingAnything(getName(), m_throwIt);
    }
    bool canBeSavedToUserConfig(ConfigReader&) const override { return true; }
    void saveContent(ConfigWriter&) const override { m_throwIt(); }
    void saveContent(ConfigWriter&, ConfigReader&, bool) const override { m_throwIt(); }

private:
    std::function<void()> m_throwIt;
};

TEST_P(ConfigurationManagerSaving, LogsInOneLineWhatAnObjectThrew) {
    using Thrown = std::pair<std::function<void()>, std::string>;
    for (const auto& [throwIt, text] :
         {Thrown{[] { throw std::runtime_error("no\nroom"); }, "no room"},
          Thrown{[] { throw xercesc::DOMException(xercesc::DOMException::NOT_FOUND_ERR); }, ""},
          Thrown{[] { throw ConfigException(ConfigException::InvalidVersion); },
                 "ConfigException thrown at"},
          Thrown{[] { throw ConfigException(ConfigException::InvalidDocument); },
                 "ConfigException thrown at"},
          Thrown{[] { throw 1; }, "an exception of unknown type"}}) {
        m_manager.reset();
        GetParam() == Way::OneFile ? useOneFile() : useTwoFiles();
        add(makeChanged(5));
        add(std::make_shared<ThrowingAnything>("Thrower", throwIt));
        const Support::LogCapture log("ConfigurationManager");
        EXPECT_FALSE(save());
        EXPECT_EQ(1, std::ranges::count(log.text(), '\n')) << log.text();
        EXPECT_THAT(log.text(), HasSubstr('"' + m_target.toString() + "\" was not saved: " +
                                          "the object \"Thrower\": " + text));
    }
}

TEST_P(ConfigurationManagerSaving, LogsInOneLineWhatIsWrongWithTheFile) {
    const Support::LogCapture log("ConfigurationManager");
    const Support::LogCapture writerLog("ConfigWriter");
    add(makeChanged(5));
    const auto expectLogged = [&](const std::string& reason) {
        const std::size_t former = log.text().size();
        EXPECT_FALSE(save());
        const std::string line = log.text().substr(former);
        EXPECT_EQ(1, std::ranges::count(line, '\n')) << line;
        EXPECT_THAT(line, HasSubstr('"' + m_target.toString() + "\" was not saved: " + reason));
    };
    writeFile(m_target, "notes");
    expectLogged("it is there, but cannot be read as a configuration");
    std::filesystem::remove(m_target.toPath());
    std::filesystem::create_symlink(m_target.toPath().filename(), m_target.toPath());
    expectLogged(std::make_error_code(std::errc::too_many_symbolic_link_levels).message());
    std::filesystem::remove(m_target.toPath());
    std::filesystem::create_directory(m_target.toPath());
    expectLogged(std::make_error_code(std::errc::is_a_directory).message());
    std::filesystem::remove(m_target.toPath());
    std::filesystem::create_symlink("/dev/null", m_target.toPath());
    expectLogged(std::make_error_code(std::errc::not_supported).message());
    std::filesystem::remove(m_target.toPath());
    std::string tooDeep;
    for (const std::string tag : {"<x>", "</x>"})
        for (int level = 0; level < 4000; ++level)
            tooDeep += tag;
    writeTarget(tooDeep);
    expectLogged("The document is nested too deeply to be written");
    std::filesystem::remove(m_target.toPath());
    std::filesystem::create_symlink("away/settings.xml", m_target.toPath());
    expectLogged(std::make_error_code(std::errc::no_such_file_or_directory).message());
    EXPECT_EQ("", writerLog.text()) << "a second line";
    std::filesystem::remove(m_target.toPath());
    EXPECT_TRUE(save());
    EXPECT_EQ(6, std::ranges::count(log.text(), '\n')) << "a success is not logged";
}

TEST_P(ConfigurationManagerSaving, WritesNothingThatItCouldNotOpenAgain) {
    writeTarget("<Test/>");
    const auto object = TestObject::make("Test", [](TestObject& made) {
        made.add("a", 1);
        for (int i = 0; i < 50'000; ++i) // with the three others, more tags than are read
            made.add("n" + std::to_string(i), 1);
    });
    object->value<int>("a").setValue(5);
    add(object);
    const Support::LogCapture log("ConfigurationManager");
    EXPECT_EQ(GetParam() == Way::UserFile, save()) << "the differences are few";
    if (GetParam() != Way::UserFile) {
        EXPECT_THAT(log.text(), HasSubstr("too large to be opened again"));
        EXPECT_EQ(document("<Test/>"), readFile(m_target));
    }
}

TEST_P(ConfigurationManagerSaving, LogsOneLineForANameOfTwo) {
    const Support::LogCapture log("ConfigurationManager");
    EXPECT_FALSE(
        m_manager.saveConfigurationToFile(m_directory.file("no\ndirectory/a.xml").toString(), "1"));
    EXPECT_EQ(1, std::ranges::count(log.text(), '\n')) << log.text();
}

TEST_P(ConfigurationManagerSaving, KeepsALinkToWhereThereIsNothingNow) {
    add(makeChanged(5));
    std::filesystem::create_directory(m_directory.path() / "disk");
    const std::filesystem::path link = m_target.toPath();
    std::filesystem::create_symlink("disk/settings.xml", link);
    EXPECT_TRUE(save()) << "makes the file that the link leads to";
    const std::string saved = readFile(m_target);
    std::filesystem::rename(m_directory.path() / "disk", m_directory.path() / "away");
    for (int time = 0; time < 2; ++time)
        EXPECT_FALSE(save());
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    std::filesystem::rename(m_directory.path() / "away", m_directory.path() / "disk");
    EXPECT_EQ(saved, readFile(m_target));
}

TEST_P(ConfigurationManagerSaving, FailsOnADirectory) {
    add(makeChanged(5));
    std::filesystem::create_directory(m_target.toPath());
    EXPECT_FALSE(save());
    EXPECT_TRUE(std::filesystem::is_empty(m_target.toPath()));
}

TEST_P(ConfigurationManagerSaving, FailsWhereTheFileCannotBe) {
    add(makeChanged(5));
    std::filesystem::remove_all(m_directory.path());
    EXPECT_FALSE(save());
    EXPECT_FALSE(std::filesystem::exists(m_directory.path()));
}

// Without or with another target

class ConfigurationManagerSavingTest : public Support::ManagerFixture {
protected:
    bool save() const { return m_manager.saveConfiguration("1.0"); }
    std::string userFile() const { return withoutFormatting(readFile(m_userFile)); }

    /// Forgets everything, as at the end of the process.
    void restart() {
        m_manager.reset();
        m_manager.setValidVersionList({"1.0"});
    }
};

TEST_F(ConfigurationManagerSavingTest, SucceedsWithNothingToSaveTo) {
    add(makeChanged(5));
    EXPECT_TRUE(save());
    useTwoFiles();
    EXPECT_TRUE(m_manager.saveConfigurationToFile("", "1.0"));
    m_manager.setSystemAndUserConfigurationFile(m_systemFile, FileName());
    EXPECT_TRUE(save());
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

TEST_F(ConfigurationManagerSavingTest, FailsForANameThatNoFileCanHave) {
    add(makeChanged(5));
    writeFile(m_file, "");
    const std::string name = m_file.toString() + '\0' + ".xml";
    EXPECT_FALSE(m_manager.saveConfigurationToFile(name, "1.0"));
    m_manager.setConfigurationFile(name);
    EXPECT_FALSE(save());
    EXPECT_EQ("", readFile(m_file));
}

TEST_F(ConfigurationManagerSavingTest, WritesANamedFileWithoutAnyMode) {
    add(makeChanged(5));
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
    EXPECT_EQ(document("<Test><a>5</a><b>2</b></Test>"), withoutFormatting(readFile(m_file)));
}

TEST_F(ConfigurationManagerSavingTest, WritesANamedFileAndNoOther) {
    useTwoFiles();
    add(makeChanged(5));
    EXPECT_TRUE(m_manager.saveConfigurationToFile(m_file.toString(), "1.0"));
    EXPECT_FALSE(std::filesystem::exists(m_userFile.toPath()));
    EXPECT_FALSE(std::filesystem::exists(m_systemFile.toPath()));
}

TEST_F(ConfigurationManagerSavingTest, IsDoneByACopyOfTheManagerToo) {
    useOneFile();
    const ConfigurationManager empty = m_manager;
    add(makeChanged(5));
    const ConfigurationManager copy = m_manager;
    m_manager.reset();
    EXPECT_TRUE(copy.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Test><a>5</a><b>2</b></Test>"), withoutFormatting(readFile(m_file)));
    std::filesystem::remove(m_file.toPath());
    EXPECT_TRUE(empty.saveConfiguration("1.0"));
    EXPECT_EQ("<Configuration version=\"1.0\"/>", withoutFormatting(readFile(m_file)));
}

// One file

/// An object with a value of each type.
std::shared_ptr<TestObject> makeOfAllTypes(const std::string& name = "AllTypes") {
    return TestObject::make(name, [](TestObject& object) {
        object.add("int", 1)
            .add("unsigned", 1u)
            .add("float", 1.0f)
            .add("double", 1.0)
            .add("string", std::string("default"))
            .add("strings", Strings{"default"})
            .add("bool", false);
    });
}

void changeAll(const TestObject& object) {
    object.value<int>("int").setValue(-2147483647 - 1);
    object.value<unsigned>("unsigned").setValue(4294967295u);
    object.value<float>("float").setValue(-1.5f);
    object.value<double>("double").setValue(2.5e-10);
    object.value<std::string>("string").setValue(" <\xC3\xA4> \r\n & \t");
    object.value<Strings>("strings").setValue({"", " ", "b", "a", "b"});
    object.value<bool>("bool").setValue(true);
}

void emptyTexts(const TestObject& object) {
    object.value<std::string>("string").setValue("");
    object.value<Strings>("strings").setValue({});
    object.value<int>("int").setValue(0);
}

TEST_F(ConfigurationManagerSavingTest, BringsBackAllTypesFromOneFile) {
    for (const auto& change : {changeAll, emptyTexts}) {
        const auto saved = makeOfAllTypes();
        change(*saved);
        std::filesystem::remove(m_file.toPath());
        useOneFile();
        add(saved);
        ASSERT_TRUE(save());
        const std::string bytes = readFile(m_file);
        restart();

        useOneFile();
        const auto loaded = add(makeOfAllTypes());
        for (const auto* value : loaded->getConfigurationValues()) {
            EXPECT_TRUE(value->hasValue()) << value->getName();
            EXPECT_TRUE(saved->compareWithOtherConfigValue(loaded.get(), value->getName()))
                << value->getName();
        }
        EXPECT_TRUE(save());
        EXPECT_EQ(bytes, readFile(m_file));
        restart();
    }
}

void buildGrandchild(TestObject& object) {
    object.add("c", 1).add("list", Strings{"x"});
}

void buildChild(TestObject& object) {
    object.add("b", 1).addChild(TestObject::make("Grandchild", buildGrandchild)->clone());
}

void buildNameless(TestObject& object) {
    object.add("inline", 1);
}

/// An object with children, a grandchild and a child that is stored inline.
std::shared_ptr<TestObject> makeFamily() {
    return TestObject::make("Family", [](TestObject& object) {
        object.add("a", 1)
            .addChild(TestObject::make("Child", buildChild)->clone())
            .addChild(makeObject("Sibling")->clone())
            .addChild(TestObject::make("", buildNameless)->clone());
    });
}

TEST_F(ConfigurationManagerSavingTest, WritesChildrenInFull) {
    useOneFile();
    add(makeFamily())->child("Child").child("Grandchild").value<int>("c").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Family><a>1</a><Child><b>1</b><Grandchild><c>5</c><list><item>x</item>"
                       "</list></Grandchild></Child><Sibling><a>1</a><b>2</b></Sibling>"
                       "<inline>1</inline></Family>"),
              withoutFormatting(readFile(m_file)));
}

// System and user file

class ConfigurationManagerTwoFiles : public ConfigurationManagerSavingTest {
protected:
    void writeFiles(const std::string& system, const std::string& user) {
        writeFile(m_systemFile, document(system));
        writeFile(m_userFile, document(user));
        useTwoFiles();
    }
};

TEST_F(ConfigurationManagerTwoFiles, WritesOnlyWhatDiffersFromTheSystem) {
    writeFiles("<Test><a>5</a><b>6</b></Test>", "<Test><a>7</a></Test>");
    const auto object = add(makeObject());
    object->value<int>("b").setValue(8);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><a>7</a><b>8</b></Test>"), userFile());

    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><b>8</b></Test>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, WritesDefaultsThatDifferFromTheSystem) {
    writeFiles("<Test><a>5</a><b>6</b></Test>", "");
    const auto object = add(makeObject());
    object->setDefaultValues();
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><a>1</a><b>2</b></Test>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, LeaveNoElementForAnObjectWithoutDifferences) {
    writeFiles("<Test><a>5</a></Test>", "<!--old--><Test><a>7</a></Test><Other/><Test key=\"k\"/>");
    add(makeObject())->value<int>("a").setValue(5);
    add(makeObject("Defaults"));
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Other/>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, LeaveOfKeyedObjectsOnlyTheDifferent) {
    writeFiles(
        "<Test key=\"k\"><a>5</a></Test><Test key=\"l\"><a>6</a></Test><Test><a>7</a></Test>",
        "<Test key=\"k\"><a>8</a></Test><!--of l--><Test key=\"l\"><a>8</a></Test>");
    const auto k = add(makeObject(), "Test", "k");
    const auto l = add(makeObject(), "Test", "l");
    k->value<int>("a").setValue(5);
    l->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test key=\"l\"><a>5</a></Test>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, CompareAnObjectWithTheElementItIsRegisteredUnder) {
    writeFiles("<Test><a>5</a></Test><Alias><a>6</a></Alias><Keyed key=\"k\"><a>7</a></Keyed>", "");
    const auto object = makeObject();
    m_manager.addConfigurationObject(object, "Alias");
    const auto keyed = add(makeObject(), "Keyed", "k");
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", userFile());

    object->value<int>("a").setValue(5);
    keyed->value<int>("a").setValue(6);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Alias><a>5</a></Alias><Keyed key=\"k\"><a>6</a></Keyed>"), userFile());
}

/// Is saved as long as it differs from the element "Limits" of the system's document.
class DependentObject : public TestObject {
public:
    DependentObject() : TestObject("Test") { add("a", 1).add("b", 2); }

    ConfigurationObject* createConfigurationObject() const override { return new DependentObject; }
    bool canBeSavedToUserConfig(ConfigReader& reader) const override {
        const auto limits = makeObject("Limits");
        return reader.getClassContents("Limits", *limits) == ConfigurationAccessResult::Success &&
               atLeastOneSavedValueIsDifferent(limits.get());
    }
};

TEST_F(ConfigurationManagerTwoFiles, AnswerAnObjectThatAsksForOtherElements) {
    writeFiles("<Limits><a>5</a></Limits><Test><a>3</a></Test><Alias><a>4</a></Alias>", "");
    const auto object = std::make_shared<DependentObject>();
    m_manager.addConfigurationObject(object, "Alias");
    object->value<int>("a").setValue(5);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", userFile());
    object->value<int>("a").setValue(6);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Alias><a>6</a></Alias>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, CompareWithTheDefaultsWhereTheSystemFileIsOfNoUse) {
    useTwoFiles();
    for (const std::string system : {"<broken", "<Configuration version=\"2.0\"><Test><a>5</a>"
                                                "</Test></Configuration>"}) {
        writeFile(m_systemFile, system);
        add(makeChanged(5));
        EXPECT_TRUE(save());
        EXPECT_EQ(document("<Test><a>5</a></Test>"), userFile());
        EXPECT_EQ(system, readFile(m_systemFile));
    }
}

TEST_F(ConfigurationManagerTwoFiles, CompareWithWhatTheSystemFileSaysAtTheTimeOfTheSave) {
    const std::string system = "<Test><a editable=\"false\">5</a><b>6</b></Test>";
    const auto saveOver = [&](const std::function<void()>& changeSystem) {
        restart();
        writeFiles(system, "<Test><b>7</b></Test>");
        add(makeObject());
        changeSystem();
        EXPECT_TRUE(save());
        return userFile();
    };
    EXPECT_EQ(document("<Test><a>5</a><b>7</b></Test>"),
              saveOver([&] { std::filesystem::remove(m_systemFile.toString()); }));
    EXPECT_EQ(document("<Test><a>5</a></Test>"), saveOver([&] {
                  writeFile(m_systemFile, document("<Test><a>8</a><b>7</b></Test>"));
              }));
}

TEST_F(ConfigurationManagerTwoFiles, HoldTheDefaultsOfAResetFromTheUsersFileForGood) {
    writeFiles("<Test><a>5</a><b>6</b></Test>", "<Test><b>7</b></Test>");
    add(makeObject());
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><a>1</a><b>7</b></Test>"), userFile());

    writeFile(m_systemFile, document("<Test><a>8</a></Test>"));
    restart();
    useTwoFiles();
    EXPECT_EQ(1, get(*add(makeObject()), "a"));

    m_manager.resetConfigurationObject("Test", false);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", userFile());
}

TEST_F(ConfigurationManagerTwoFiles, HoldNoOnlyLoadedValueUnlessAnotherDiffers) {
    writeFiles("<Test><loaded>5</loaded></Test>", "<Test><loaded>6</loaded></Test>");
    const auto object = TestObject::make(
        "Test", [](TestObject& o) { o.add("loaded", 1, TestObject::LoadOnly).add("a", 1); });
    add(object);
    EXPECT_TRUE(save());
    EXPECT_EQ("<Configuration version=\"1.0\"/>", userFile());

    object->value<int>("a").setValue(7);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Test><loaded>6</loaded><a>7</a></Test>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, HoldAnElementForEveryObjectWithChildren) {
    writeFiles("", "<Family><a>1</a><Child/></Family>");
    add(makeFamily());
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Family/>"), userFile());
}

TEST_F(ConfigurationManagerTwoFiles, HoldOfChildrenOnlyWhatDiffers) {
    writeFiles(
        "<Family><Child><Grandchild><c>5</c></Grandchild></Child><inline>6</inline></Family>", "");
    const auto family = add(makeFamily());
    family->child("Child").child("Grandchild").value<int>("c").setValue(7);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Family><Child><Grandchild><c>7</c></Grandchild></Child></Family>"),
              userFile());
    family->child("").value<int>("inline").setValue(8);
    EXPECT_TRUE(save());
    EXPECT_EQ(document("<Family><Child><Grandchild><c>7</c></Grandchild></Child>"
                       "<inline>8</inline></Family>"),
              userFile());
}

TEST_F(ConfigurationManagerTwoFiles, HoldNoLockedValueAndNoLock) {
    const std::string locks = "<Test><a editable=\"false\">5</a><b>6</b></Test>"
                              "<Whole editable=\"false\"><a>5</a></Whole>"
                              "<Family><Child editable=\"false\"><b>5</b></Child></Family>";
    writeFiles(locks, "<Test><a editable=\"true\">8</a><b editable=\"false\">7</b></Test>"
                      "<Whole editable=\"true\"><a>8</a><b>8</b></Whole>"
                      "<Family editable=\"false\"><a>9</a><Child editable=\"true\"><b>8</b>"
                      "<Grandchild><c>8</c></Grandchild></Child></Family>");
    for (int session = 0; session < 3; ++session) {
        const auto object = add(makeObject());
        const auto whole = add(makeObject("Whole"));
        const auto family = add(makeFamily());
        EXPECT_EQ(5, get(*object, "a"));
        EXPECT_EQ(5, get(*whole, "a"));
        EXPECT_EQ(2, get(*whole, "b"));
        EXPECT_EQ(9, get(*family, "a"));
        EXPECT_EQ(5, get(family->child("Child"), "b"));
        EXPECT_EQ(1, get(family->child("Child").child("Grandchild"), "c"));
        EXPECT_TRUE(save());
        EXPECT_EQ(document("<Family><a>9</a></Family><Test><b>7</b></Test>"), userFile());
        restart();
        useTwoFiles();
    }
    EXPECT_EQ(document(locks), readFile(m_systemFile));
}

TEST_F(ConfigurationManagerTwoFiles, BringBackAllTypes) {
    for (const auto& change : {changeAll, emptyTexts}) {
        writeFiles("<AllTypes><int>3</int><unsigned>3</unsigned><float>3.5</float>"
                   "<double>3.5</double><string>system</string><strings><item>s</item></strings>"
                   "<bool>false</bool></AllTypes>",
                   "");
        const auto saved = add(makeOfAllTypes());
        EXPECT_EQ("system", get<std::string>(*saved, "string"));
        change(*saved);
        ASSERT_TRUE(save());
        const std::string bytes = readFile(m_userFile);
        restart();

        useTwoFiles();
        const auto loaded = add(makeOfAllTypes());
        for (const auto* value : loaded->getConfigurationValues())
            EXPECT_TRUE(saved->compareWithOtherConfigValue(loaded.get(), value->getName()))
                << value->getName();
        EXPECT_TRUE(save());
        EXPECT_EQ(bytes, readFile(m_userFile));
        restart();
    }
}

TEST_F(ConfigurationManagerTwoFiles, BringBackWhatIsDeepInsideAnObject) {
    const std::string system = "<Family><a>2</a><Child><b>3</b><Grandchild><c>4</c><list>"
                               "<item>s</item></list></Grandchild></Child></Family>";
    writeFiles(system, "<Foreign>kept</Foreign>");
    const auto family = add(makeFamily());
    const auto& grandchild = family->child("Child").child("Grandchild");
    EXPECT_EQ(4, get(grandchild, "c"));
    grandchild.value<int>("c").setValue(40);
    grandchild.value<Strings>("list").setValue({"x", "y"});
    family->child("Sibling").value<int>("b").setValue(50);
    family->child("").value<int>("inline").setValue(60);

    for (int session = 0; session < 5; ++session) {
        ASSERT_TRUE(save());
        restart();
        useTwoFiles();
        const auto loaded = add(makeFamily());
        EXPECT_EQ(2, get(*loaded, "a"));
        EXPECT_EQ(3, get(loaded->child("Child"), "b"));
        EXPECT_EQ(40, get(loaded->child("Child").child("Grandchild"), "c"));
        EXPECT_EQ((Strings{"x", "y"}),
                  get<Strings>(loaded->child("Child").child("Grandchild"), "list"));
        EXPECT_EQ(50, get(loaded->child("Sibling"), "b"));
        EXPECT_EQ(60, get(loaded->child(""), "inline"));
    }
    EXPECT_EQ(document(system), readFile(m_systemFile));
    EXPECT_THAT(userFile(), HasSubstr("<Foreign>kept</Foreign>"));
}

TEST_F(ConfigurationManagerTwoFiles, BringBackAliasesAndKeys) {
    writeFiles("<Alias><a>2</a></Alias><Test key=\"k\"><a>3</a></Test>", "");
    for (int session = 0; session < 3; ++session) {
        const auto alias = makeObject();
        m_manager.addConfigurationObject(alias, "Alias");
        const auto keyed = add(makeObject(), "Test", "k");
        EXPECT_EQ(2 + session, get(*alias, "a"));
        EXPECT_EQ(3 + session, get(*keyed, "a"));
        for (const auto& object : {alias, keyed})
            object->value<int>("a").setValue(get(*object, "a") + 1);
        ASSERT_TRUE(save());
        restart();
        useTwoFiles();
    }
}

TEST_F(ConfigurationManagerTwoFiles, NeverWriteTheSystemFile) {
    const std::string system = "<?xml version=\"1.0\"?>\r\n<Configuration version=\"1.0\">\r\n"
                               "<Test>\t<a>5</a></Test></Configuration>\r\n\r\n";
    writeFile(m_systemFile, system);
    useTwoFiles();
    const auto object = add(makeObject());
    add(std::make_shared<ThrowingObject>("Throwing"), "Throwing", "k");
    EXPECT_FALSE(save());
    restart();
    useTwoFiles();
    add(object);
    for (int time = 0; time < 10; ++time) {
        object->value<int>("a").setValue(time);
        EXPECT_TRUE(save());
        m_manager.resetConfigurationObject("Test", time % 2 == 0);
    }
    EXPECT_EQ(system, readFile(m_systemFile));
}

TEST_F(ConfigurationManagerSavingTest, WritesNoElementForAChildThatWritesNothing) {
    useOneFile();
    add(TestObject::make("Test", [](TestObject& test) {
        test.add("a", 1);
        for (auto* child : {new TestObject("Unsaved", ConfigurationItemBase::NotPersistent),
                            new TestObject("Others", ConfigurationItemBase::LoadAndSave,
                                           ConfigurationItemBase::Product1)})
            test.addChild(&child->add("b", 2));
    }));
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(document("<Test><a>1</a></Test>"), withoutFormatting(readFile(m_file)));
}

} // namespace
} // namespace Orvant
