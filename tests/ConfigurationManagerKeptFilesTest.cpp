#include <ConfigurationFramework/ConfigurationManager.h>

#include <ManagerFixture.h>
#include <ObjectState.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>
#include <utility>
#include <vector>

// What a manager keeps of its files between calls. A document that refers to a DTD says so in the
// log each time it is parsed.

namespace Orvant {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

using Support::document;
using Support::LogCapture;
using Support::readFile;
using Support::TestObject;
using Support::withoutFormatting;
using Support::writeFile;

/// An object with "a" (1), "b" (2) and a child "Child" with "c" (3).
std::shared_ptr<TestObject> makeObject(const std::string& name = "Test") {
    return TestObject::make(name, [](TestObject& object) {
        object.add("a", 1).add("b", 2).addChild(&(new TestObject("Child"))->add("c", 3));
    });
}

int get(const TestObject& object, const std::string& value) {
    return object.value<int>(value).getValue();
}

std::string withDtd(const std::string& dtd, const std::string& document) {
    return "<!DOCTYPE Configuration SYSTEM \"" + dtd + "\">" + document;
}

/// Changes a file without changing its size and time.
void changeUnnoticed(const FileName& file, const std::string& part, const std::string& other) {
    std::string bytes = readFile(file);
    const auto time = std::filesystem::last_write_time(file.toPath());
    writeFile(file, bytes.replace(bytes.find(part), part.size(), other));
    std::filesystem::last_write_time(file.toPath(), time);
}

class KeptFiles : public Support::ManagerFixture {
protected:
    void writeSystem(const std::string& contents) const {
        writeFile(m_systemFile, withDtd("system.dtd", document(contents)));
    }
    void writeUser(const std::string& contents) const {
        writeFile(m_userFile, withDtd("user.dtd", document(contents)));
    }
    /// Writes two files, and loads an object from them.
    std::shared_ptr<TestObject> load() {
        writeSystem("<Test><a editable='false'>5</a></Test>");
        writeUser("<Test><a>6</a><b>7</b></Test>");
        useTwoFiles();
        return add(makeObject());
    }
    /// @return an "s" for each time that the system file was parsed since the last call, then a "u"
    ///         for each of the user's
    std::string takeParsed() {
        const std::string text = m_log.text().substr(m_told);
        m_told += text.size();
        std::string parsed;
        for (const std::string dtd : {"system.dtd", "user.dtd"})
            for (auto at = text.find(dtd); at != text.npos; at = text.find(dtd, at + 1))
                parsed += dtd[0];
        return parsed;
    }

private:
    LogCapture m_log{"DocumentParsing"};
    std::size_t m_told = 0;
};

TEST_F(KeptFiles, AreParsedOnceForObjectsThatAreRegisteredOneByOne) {
    load();
    EXPECT_EQ("su", takeParsed());
    const auto keyed = add(makeObject(), "Keyed", "k");
    m_manager.addConfigurationObjects({{makeObject(), "Second"}, {makeObject(), "Third"}});
    const auto again = add(makeObject());
    EXPECT_EQ("", takeParsed());
    EXPECT_EQ(1, get(*keyed, "a"));
    EXPECT_EQ(5, get(*again, "a"));
    EXPECT_EQ(7, get(*again, "b"));
}

TEST_F(KeptFiles, AreParsedOnceForQuestionsAndResets) {
    const auto object = load();
    takeParsed();
    EXPECT_FALSE(m_manager.hasSystemConfigFileErrors());
    EXPECT_FALSE(m_manager.hasUserConfigFileErrors());
    EXPECT_FALSE(m_manager.haveFilesChanged());
    m_manager.resetConfigurationObject("Test", false);
    EXPECT_EQ(2, get(*object, "b"));
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ(7, get(*object, "b"));
    m_manager.setSystemFileRequired(true);
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ("", takeParsed());
}

TEST_F(KeptFiles, AreParsedOnceForQuestionsBeforeAReset) {
    add(makeObject());
    writeSystem("<Test><a>5</a></Test>");
    writeUser("");
    useTwoFiles();
    m_manager.resetConfigurationObject("Test", false);
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ("su", takeParsed());
    EXPECT_FALSE(m_manager.hasSystemConfigFileErrors());
    EXPECT_FALSE(m_manager.hasUserConfigFileErrors());
    EXPECT_EQ("", takeParsed());
}

TEST_F(KeptFiles, AreParsedOnceForReloads) {
    const auto object = load();
    takeParsed();
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("", takeParsed());
    writeUser("<Test><b>8</b></Test>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("u", takeParsed());
    EXPECT_EQ(8, get(*object, "b"));
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ("", takeParsed());
}

TEST_F(KeptFiles, AreParsedAgainWhenTheyHoldOtherBytesOfTheSameSizeAndTime) {
    load();
    changeUnnoticed(m_userFile, "<b>7", "<b>8");
    EXPECT_TRUE(m_manager.haveFilesChanged());
    takeParsed();
    const auto second = add(makeObject());
    EXPECT_EQ("u", takeParsed());
    EXPECT_EQ(8, get(*second, "b"));
    changeUnnoticed(m_systemFile, "'false'", "'maybe'");
    EXPECT_TRUE(add(makeObject())->value<int>("a").isEditable());
    EXPECT_EQ("s", takeParsed());
    changeUnnoticed(m_userFile, "</Test>", "</Toast");
    EXPECT_TRUE(m_manager.hasUserConfigFileErrors());
    EXPECT_EQ(2, get(*add(makeObject()), "b"));
}

TEST_F(KeptFiles, AreParsedAgainWhenAFileIsMissingInBetween) {
    load();
    takeParsed();
    std::filesystem::rename(m_userFile.toPath(), m_file.toPath());
    EXPECT_EQ(2, get(*add(makeObject()), "b"));
    std::filesystem::rename(m_file.toPath(), m_userFile.toPath());
    EXPECT_EQ(7, get(*add(makeObject()), "b"));
    EXPECT_EQ("u", takeParsed());
}

TEST_F(KeptFiles, AreTheOnesThatAreSet) {
    const auto object = load();
    takeParsed();
    // The same bytes by other names.
    m_manager.setSystemAndUserConfigurationFile(
        m_directory.file("system2.xml", readFile(m_systemFile)),
        m_directory.file("user2.xml", readFile(m_userFile)));
    EXPECT_EQ(Support::stateOf(*object), Support::stateOf(*add(makeObject())));
    EXPECT_EQ("", takeParsed());
    // What the user's file held counts for no other layer.
    m_manager.setSystemAndUserConfigurationFile(m_userFile, m_systemFile);
    const auto swapped = add(makeObject());
    EXPECT_EQ(5, get(*swapped, "a"));
    EXPECT_EQ(7, get(*swapped, "b"));
    EXPECT_TRUE(swapped->value<int>("a").isEditable());
}

TEST_F(KeptFiles, AreAcceptedByTheVersionsOfEachCall) {
    load();
    m_manager.setValidVersionList({"2.0"});
    EXPECT_TRUE(m_manager.hasSystemConfigFileErrors());
    EXPECT_TRUE(m_manager.hasUserConfigFileErrors());
    EXPECT_EQ(2, get(*add(makeObject()), "b"));
    EXPECT_FALSE(m_manager.reloadConfiguration());
    m_manager.setValidVersionList({"0.9", "1.0"});
    EXPECT_FALSE(m_manager.hasSystemConfigFileErrors());
    EXPECT_FALSE(m_manager.hasUserConfigFileErrors());
    const auto object = add(makeObject());
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(7, get(*object, "b"));
    EXPECT_FALSE(object->value<int>("a").isEditable());
}

TEST_F(KeptFiles, AreParsedAtEachCallWhileTheyAreRefused) {
    for (const std::string refused :
         {"<Configuration version='1.0'><Test>", "<Configuration version='2.0'/>", "<Settings/>"}) {
        load();
        writeFile(m_userFile, withDtd("user.dtd", refused));
        takeParsed();
        EXPECT_TRUE(m_manager.hasUserConfigFileErrors());
        const std::string parsed = takeParsed();
        EXPECT_THAT(parsed, HasSubstr("u"));
        for (int i = 0; i < 2; ++i) {
            EXPECT_TRUE(m_manager.hasUserConfigFileErrors());
            EXPECT_EQ(parsed, takeParsed()) << refused;
            EXPECT_EQ(2, get(*add(makeObject()), "b"));
            EXPECT_EQ(parsed, takeParsed()) << refused;
        }
    }
}

class KeptFilesOfSaves : public KeptFiles, public testing::WithParamInterface<Support::SaveMode> {
protected:
    KeptFilesOfSaves() { m_manager.setSaveMode(GetParam()); }

    bool isMerge() const { return GetParam() == ConfigurationManager::Merge; }
    std::string user() const { return withoutFormatting(readFile(m_userFile)); }
};

INSTANTIATE_TEST_SUITE_P(, KeptFilesOfSaves, Support::anySaveMode, Support::nameOfMode);

TEST_P(KeptFilesOfSaves, AreParsedForWritingOnly) {
    const auto object = load();
    takeParsed();
    if (isMerge()) {
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        EXPECT_EQ("", takeParsed()) << "there is nothing to write";
    }
    object->value<int>("b").setValue(70);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ("u", takeParsed());
    EXPECT_THAT(user(), HasSubstr("<b>70</b>"));
    EXPECT_EQ(70, get(*add(makeObject()), "b"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_EQ("", takeParsed()) << "a save keeps the system file";
}

TEST_P(KeptFilesOfSaves, CompareWithASystemFileOfOtherBytes) {
    const auto object = load();
    object->value<int>("b").setValue(8);
    takeParsed();
    writeSystem("<Test><b>8</b></Test>");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ("su", takeParsed());
    EXPECT_THAT(user(), testing::Not(HasSubstr("<b>")));
    changeUnnoticed(m_systemFile, "8", "9");
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(isMerge(), user().find("<b>8</b>") == std::string::npos)
        << "a merge writes only what changed here";
}

TEST_P(KeptFilesOfSaves, AreNotSavedToWithVersionsThatAreNotAcceptedByNow) {
    load()->value<int>("b").setValue(8);
    const std::string before = readFile(m_userFile);
    m_manager.setValidVersionList({"2.0"});
    EXPECT_FALSE(m_manager.saveConfiguration("2.0"));
    EXPECT_EQ(before, readFile(m_userFile));
    m_manager.setValidVersionList({"1.0"});
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_THAT(user(), HasSubstr("<b>8</b>"));
}

// Copies of the manager.

TEST_F(KeptFiles, OfACopyAreItsOwn) {
    load();
    takeParsed();
    ConfigurationManager copy = m_manager;
    EXPECT_EQ("", takeParsed());
    const auto object = makeObject();
    copy.addConfigurationObject(object, "Test");
    copy.addConfigurationObject(makeObject(), "Another");
    EXPECT_EQ("su", takeParsed());
    EXPECT_EQ(5, get(*object, "a"));
    EXPECT_EQ(7, get(*object, "b"));
    copy.releaseMemory();
    add(makeObject());
    EXPECT_EQ("", takeParsed()) << "the original keeps its own";
    copy.addConfigurationObject(makeObject(), "Third");
    EXPECT_EQ("su", takeParsed());
    m_manager.releaseMemory();
    m_manager.reset();
    copy.addConfigurationObject(makeObject(), "Fourth");
    EXPECT_EQ("", takeParsed()) << "so does the copy";
}

TEST_F(KeptFiles, OfAnAssignedManagerAreItsOwn) {
    ConfigurationManager copy = m_manager;
    const auto object = load();
    copy.setConfigurationFile(m_file);
    copy.addConfigurationObject(makeObject(), "Gone");
    takeParsed();
    copy = m_manager;
    EXPECT_EQ(nullptr, copy.getConfigurationObject("Gone"));
    EXPECT_EQ(object.get(), copy.getConfigurationObject("Test"));
    EXPECT_FALSE(copy.haveFilesChanged());
    copy.addConfigurationObject(makeObject(), "Another");
    EXPECT_EQ("su", takeParsed());
    copy.releaseMemory();
    add(makeObject());
    EXPECT_EQ("", takeParsed());
}

TEST_F(KeptFiles, SurviveAnAssignmentToItself) {
    const auto object = load();
    m_manager.setSaveMode(ConfigurationManager::Merge);
    const ConfigurationManager& itself = m_manager;
    m_manager = itself;
    EXPECT_EQ(object.get(), m_manager.getConfigurationObject("Test"));
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_EQ(7, get(*add(makeObject()), "b"));
    const std::string before = readFile(m_userFile);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    EXPECT_EQ(before, readFile(m_userFile));
}

TEST_F(KeptFiles, AreNotThereInACopyOfAManagerThatWasReset) {
    const auto object = load();
    m_manager.reset();
    ConfigurationManager copy = m_manager;
    EXPECT_THAT(copy.getRegistrations(), IsEmpty());
    EXPECT_THAT(copy.explain(), IsEmpty());
    EXPECT_FALSE(copy.haveFilesChanged());
    EXPECT_FALSE(copy.hasUserConfigFileErrors());
    copy.releaseMemory();
    copy.setSystemAndUserConfigurationFile(m_systemFile, m_userFile);
    copy.addConfigurationObject(object, "Test");
    EXPECT_EQ(7, get(*object, "b"));
}

TEST_F(KeptFiles, AreKnownToACopy) {
    m_manager.setSaveMode(ConfigurationManager::Merge);
    const auto object = load();
    ConfigurationManager copy = m_manager;
    EXPECT_FALSE(copy.haveFilesChanged());
    writeUser("<Test><a>6</a><b>70</b><Child><c>30</c></Child></Test>");
    EXPECT_TRUE(copy.haveFilesChanged());
    object->child("Child").value<int>("c").setValue(31);
    EXPECT_TRUE(copy.saveConfiguration("1.0"));
    const std::string saved = withoutFormatting(readFile(m_userFile));
    EXPECT_THAT(saved, HasSubstr("<b>70</b>")) << "only what changed is written";
    EXPECT_THAT(saved, HasSubstr("<c>31</c>"));
    EXPECT_TRUE(copy.haveFilesChanged()) << "others' changes are still to be loaded";
    EXPECT_TRUE(copy.reloadConfiguration());
    EXPECT_EQ(70, get(*object, "b"));
    EXPECT_FALSE(copy.haveFilesChanged());
    EXPECT_TRUE(m_manager.haveFilesChanged()) << "the original did none of that";
}

TEST_F(KeptFiles, AreKnownToACopyAfterASave) {
    m_manager.setSaveMode(ConfigurationManager::Merge);
    const auto object = load();
    object->value<int>("b").setValue(8);
    EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
    const ConfigurationManager copy = m_manager;
    EXPECT_FALSE(copy.haveFilesChanged());
    const std::string saved = readFile(m_userFile);
    EXPECT_TRUE(copy.saveConfiguration("1.0"));
    EXPECT_EQ(saved, readFile(m_userFile));
    // What others wrote is in the file, but not in the object.
    writeUser("<Test><b>9</b></Test>");
    object->child("Child").value<int>("c").setValue(31);
    EXPECT_TRUE(copy.saveConfiguration("1.0"));
    const ConfigurationManager second = copy;
    object->child("Child").value<int>("c").setValue(32);
    EXPECT_TRUE(second.saveConfiguration("1.0"));
    const std::string merged = withoutFormatting(readFile(m_userFile));
    EXPECT_THAT(merged, HasSubstr("<b>9</b>"));
    EXPECT_THAT(merged, HasSubstr("<c>32</c>"));
}

TEST_F(KeptFiles, ThatWereNotToBeLoadedAreNotOverwrittenByACopy) {
    m_manager.setSystemFileRequired(true);
    writeUser("<Test><b>7</b></Test>");
    useTwoFiles();
    EXPECT_EQ(2, get(*add(makeObject()), "b"));
    writeSystem("");
    const ConfigurationManager copy = m_manager;
    EXPECT_FALSE(copy.saveConfiguration("1.0"));
    EXPECT_EQ(ConfigurationSaveReport::NotLoaded, copy.getSaveReport().reason);
}

TEST_F(KeptFiles, MayBeLoadedByACopyInAnotherThread) {
    load();
    add(makeObject(), "Keyed", "k");
    // Each thread has objects of its own; those that were registered are not touched.
    const auto use = [&](ConfigurationManager& manager, const std::string& name) {
        int sum = 0;
        for (int i = 0; i < 50; ++i) {
            const auto object = makeObject();
            manager.addConfigurationObject(object, "Test");
            sum += get(*object, "a") + get(*object, "b");
            const auto keyed = makeObject();
            manager.addConfigurationObject(keyed, "Test", name);
            manager.addConfigurationObject(makeObject(), name);
            manager.resetConfigurationObject(name, false);
            if (i % 10 == 0)
                manager.releaseMemory();
            if (manager.haveFilesChanged() || manager.hasSystemConfigFileErrors())
                sum = -1;
        }
        return sum;
    };
    ConfigurationManager copy = m_manager;
    int sumOfCopy = 0;
    std::thread thread([&] { sumOfCopy = use(copy, "Copied"); });
    EXPECT_EQ(50 * 12, use(m_manager, "Original"));
    thread.join();
    EXPECT_EQ(50 * 12, sumOfCopy);
}

// Giving memory back.

TEST_F(KeptFiles, AreParsedAgainWhenTheirMemoryWasGivenBack) {
    const auto object = load();
    const auto state = Support::stateOf(*object);
    takeParsed();
    for (int times = 1; times <= 2; ++times) {
        for (int i = 0; i < times; ++i)
            m_manager.releaseMemory();
        EXPECT_EQ("", takeParsed()) << "not before they are needed";
        EXPECT_EQ(state, Support::stateOf(*add(makeObject())));
        EXPECT_EQ("su", takeParsed());
        add(makeObject());
        EXPECT_EQ("", takeParsed());
    }
    EXPECT_FALSE(m_manager.haveFilesChanged());
}

TEST_F(KeptFiles, OfEarlierLoadsAreGivenBackToo) {
    m_manager.setSaveMode(ConfigurationManager::Merge);
    const auto parsedByASave = [&](bool releases) {
        m_manager.reset();
        const auto object = load();
        for (const std::string b : {"8", "9"}) {
            writeUser("<Test><b>" + b + "</b></Test>");
            add(makeObject("Later" + b));
        }
        object->value<int>("b").setValue(10);
        if (releases)
            m_manager.releaseMemory();
        takeParsed();
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        return takeParsed();
    };
    EXPECT_EQ("u", parsedByASave(false)) << "for writing";
    EXPECT_EQ("suuuu", parsedByASave(true)) << "also what each object was loaded from";
}

TEST_F(KeptFiles, NeedNotBeThereWhenTheirMemoryIsGivenBack) {
    m_manager.releaseMemory();
    useTwoFiles();
    m_manager.releaseMemory();
    add(makeObject("Before"));
    m_manager.releaseMemory();
    EXPECT_FALSE(m_manager.haveFilesChanged());
    EXPECT_EQ(7, get(*load(), "b"));
    writeFile(m_userFile, "<Configuration");
    EXPECT_EQ(2, get(*add(makeObject()), "b"));
    m_manager.releaseMemory();
    EXPECT_TRUE(m_manager.hasUserConfigFileErrors());
    EXPECT_FALSE(m_manager.hasSystemConfigFileErrors());
}

/// Gives memory back while it is loaded.
class Releasing : public TestObject {
public:
    explicit Releasing(ConfigurationManager& manager) : TestObject("Test"), m_manager(manager) {
        add("a", 1).add("b", 2);
    }
    ConfigurationObject* createConfigurationObject() const override {
        return new Releasing(m_manager);
    }
    void loadContent(ConfigReader& reader) override {
        m_manager.releaseMemory();
        TestObject::loadContent(reader);
    }
    void emitSignalsAfterConfigLoading() override {
        TestObject::emitSignalsAfterConfigLoading();
        m_manager.releaseMemory();
    }

private:
    ConfigurationManager& m_manager;
};

TEST_F(KeptFiles, MayBeGivenBackByAnObjectThatIsLoaded) {
    load();
    const auto first = std::make_shared<Releasing>(m_manager);
    const auto second = makeObject();
    takeParsed();
    m_manager.addConfigurationObjects({{first, "Test"}, {second, "Test"}});
    EXPECT_EQ("", takeParsed()) << "the load that is under way goes on";
    for (const TestObject* object : {static_cast<TestObject*>(first.get()), second.get()}) {
        EXPECT_EQ(5, get(*object, "a"));
        EXPECT_EQ(7, get(*object, "b"));
        EXPECT_FALSE(object->value<int>("a").isEditable());
    }
    EXPECT_EQ(7, get(*add(makeObject()), "b"));
    EXPECT_EQ("su", takeParsed());

    m_manager.removeConfigurationObject("Test");
    add(first);
    m_manager.resetConfigurationObject("Test", false);
    EXPECT_EQ(2, get(*first, "b"));
    m_manager.resetConfigurationObject("Test", true);
    EXPECT_EQ(7, get(*first, "b"));
    writeUser("<Test><b>8</b></Test>");
    EXPECT_TRUE(m_manager.reloadConfiguration());
    EXPECT_EQ(8, get(*first, "b"));
    first->value<int>("b").setValue(9);
    for (const auto mode : {ConfigurationManager::InPlace, ConfigurationManager::Merge}) {
        m_manager.setSaveMode(mode);
        EXPECT_TRUE(m_manager.saveConfiguration("1.0"));
        EXPECT_THAT(readFile(m_userFile), HasSubstr("<b>9</b>"));
    }
}

/// @return what the file that saves go to held after each of some saves, with changes by others in
///         between
std::vector<std::string> savesOf(ConfigurationManager& manager, const FileName& target,
                                 int releases) {
    const auto release = [&] {
        for (int i = 0; i < releases; ++i)
            manager.releaseMemory();
    };
    std::vector<std::string> saved;
    const auto save = [&] {
        release();
        EXPECT_TRUE(manager.saveConfiguration("1.0"));
        saved.push_back(readFile(target));
    };
    writeFile(target, document("<Other/><Test><a>6</a><b>7</b></Test><!-- end -->"));
    const auto object = makeObject();
    manager.addConfigurationObject(object, "Test");
    save();
    object->value<int>("b").setValue(8);
    save();
    writeFile(target, document("<Other/><Test><Child><c>30</c></Child></Test>"));
    object->value<int>("b").setValue(9);
    save();
    release();
    EXPECT_TRUE(manager.reloadConfiguration());
    object->child("Child").value<int>("c").setValue(31);
    save();
    std::filesystem::remove(target.toPath());
    save();
    return saved;
}

TEST_P(KeptFilesOfSaves, MayBeGivenBackBeforeThem) {
    writeSystem("<Test><a editable='false'>5</a></Test>");
    for (const FileName& target : {m_file, m_userFile}) {
        std::vector<std::vector<std::string>> saves;
        for (int releases = 0; releases <= 2; ++releases) {
            m_manager.reset();
            target == m_file ? useOneFile() : useTwoFiles();
            saves.push_back(savesOf(m_manager, target, releases));
        }
        EXPECT_THAT(saves[0][1], HasSubstr("<b>8</b>"));
        EXPECT_THAT(saves[0][3], HasSubstr("<c>31</c>"));
        EXPECT_EQ(saves[0], saves[1]);
        EXPECT_EQ(saves[0], saves[2]);
    }
}

} // namespace
} // namespace Orvant
