#include <ConfigurationFramework/ConfigurationCatalogue.h>

#include "ManagerFixture.h"
#include "SettingSupport.h"

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/Settings.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <sstream>

using namespace Orvant;
using Support::messageOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

struct Machine : Settings<Machine> {
    Machine() : Settings("Machine", "A machine") {}
    Setting<int> maxFeed{this, "MaxFeed", "Feed, mm/min", 5000, Range{1, 20000}};
};

struct Camera : Settings<Camera> {
    Camera() : Settings("Camera", "The camera") {}
    Setting<double> angle{this, "Angle",       "Angle, degrees",
                          60.1, Range{1, 170}, Label{"Field of view"}};
    Setting<Support::Unit> unit{this, "Unit", "Unit of length", Support::Unit::Inch};
};

struct View : Settings<View> {
    View() : Settings("View", "The \"view\",\nin two lines") {}
    Setting<unsigned int> limit{this, "Limit", "Tab\there", 4000000000U, hidden};
    Setting<std::vector<std::string>> recent{this, "Recent", "Files", {"a<b", " c ", ""}};
    Setting<std::string> title{
        this, "Title", "Title", "two\nlines",
        Check{[](const std::string& text) { return !text.empty(); }, "not empty"}};
    Child<Camera> camera{this};
    KeyedChildren<Machine> machines{this};
};

std::string textOf(const ConfigurationCatalogue& catalogue) {
    std::ostringstream stream;
    catalogue.write(stream);
    return stream.str();
}

/// A class of the old kind, with everything that such classes do.
class OldView : public Support::TestObject {
public:
    OldView() : TestObject("Old", LoadOnly, Product1 | Product3) {
        add("Locked", 1);
        getConfigurationValue("Locked")->setEditable(false);
        addConfigurationValue(
            new ConfigurationValue<bool>("Hidden", "", true, Hidden, NotPersistent, Product2));
    }
    ConfigurationObject* createConfigurationObject() const override { return new OldView; }
    void saveContent(ConfigWriter& writer) const override {
        TestObject::saveContent(writer);
        writer.putString("Extra", "more", "Not declared");
        writer.putStringVector("ExtraList", {"a", "b"}, "");
        writer.putElement("Group", "", [&] { writer.putInt("Number", 3, ""); });
        writer.createKeyedNode("Keyed", "k", "");
    }
};

class ConfigurationCatalogueTest : public Support::ManagerFixture {
protected:
    ConfigurationCatalogue throughFile(const ConfigurationCatalogue& catalogue) {
        return ConfigurationCatalogue::read(m_directory.file("catalogue.xml", textOf(catalogue)));
    }
    /// @return the message for a file with these bytes, without the file's name
    std::string refusalOf(const std::string& bytes) {
        const FileName file = m_directory.file("catalogue.xml", bytes);
        const std::string message = messageOf<ConfigurationCatalogueError>(
            [&] { (void)ConfigurationCatalogue::read(file); });
        EXPECT_THAT(message, StartsWith(file.toString() + ':'));
        return message.substr(std::min(message.size(), file.toString().size() + 1));
    }
    /// As refusalOf(), of a catalogue with these elements from line 3 on.
    std::string refusalOfElements(const std::string& elements) {
        return refusalOf("<?xml version=\"1.0\"?>\n"
                         "<catalogue xmlns='urn:orvant:configuration-catalogue' format='1' "
                         "application='a' writtenVersion='1'>\n" +
                         elements + "\n</catalogue>\n");
    }
    /// As refusalOfElements(), of a value in an object.
    std::string refusalOfValue(const std::string& attributes, const std::string& content) {
        return refusalOfElements("<object name='O'>\n<value " + attributes + '>' + content +
                                 "</value></object>");
    }
};

const ConfigurationValueDescription& valueOf(const ConfigurationCatalogue& catalogue,
                                             std::size_t position) {
    return catalogue.getEntries().front().object.values.at(position);
}

} // namespace

TEST_F(ConfigurationCatalogueTest, KeepsEverythingThroughAFile) {
    ConfigurationCatalogue catalogue("planner", {"1.0", "2.0"}, "2.0");
    catalogue.setFiles("/etc/planner.xml", "~/planner.xml");
    catalogue.add(View(), "View3D");
    catalogue.add(Machine(), "Machine", true);
    catalogue.addFormerPath("View3D/FOV", "View3D/Camera/Angle");
    catalogue.addFormerText("View3D/Camera/Unit", "in", "inch");
    const ConfigurationCatalogue read = throughFile(catalogue);

    EXPECT_EQ(textOf(read), textOf(catalogue));
    EXPECT_EQ(read.getApplication(), "planner");
    EXPECT_THAT(read.getAcceptedVersions(), ElementsAre("1.0", "2.0"));
    EXPECT_EQ(read.getWrittenVersion(), "2.0");
    ASSERT_TRUE(read.getFiles());
    EXPECT_EQ(read.getFiles()->system.toString(), "/etc/planner.xml");
    EXPECT_EQ(read.getFiles()->user.toString(), "~/planner.xml");
    ASSERT_EQ(read.getEntries().size(), 2U);
    EXPECT_TRUE(read.getEntries()[1].isKeyed);
    EXPECT_EQ(read.getFormerPaths().at(0).formerPath, "View3D/FOV");
    EXPECT_EQ(read.getFormerPaths().at(0).path, "View3D/Camera/Angle");
    EXPECT_EQ(read.getFormerTexts().at(0).path, "View3D/Camera/Unit");
    EXPECT_EQ(read.getFormerTexts().at(0).formerText, "in");
    EXPECT_EQ(read.getFormerTexts().at(0).text, "inch");

    const ConfigurationObjectDescription& view = read.getEntries()[0].object;
    EXPECT_EQ(view.name, "View3D");
    EXPECT_EQ(view.description, "The \"view\",\nin two lines");
    EXPECT_EQ(view.values[0].type, ConfigurationValueBase::UnsignedIntValue);
    EXPECT_EQ(view.values[0].description, "Tab\there");
    EXPECT_EQ(view.values[0].visibility, ConfigurationItemBase::Hidden);
    EXPECT_THAT(view.values[0].defaultTexts, ElementsAre("4000000000"));
    EXPECT_THAT(view.values[1].defaultTexts, ElementsAre("a<b", " c ", ""));
    EXPECT_THAT(view.values[2].defaultTexts, ElementsAre("two\nlines"));
    EXPECT_EQ(view.values[2].constraint.condition, "not empty");
    const auto& camera = view.children.at(0);
    EXPECT_FALSE(camera.isKind);
    const ConfigurationConstraint& angle = camera.object.values.at(0).constraint;
    EXPECT_EQ(angle.label, "Field of view");
    EXPECT_EQ(angle.minimum, "1");
    EXPECT_EQ(angle.maximum, "170");
    const ConfigurationConstraint& unit = camera.object.values.at(1).constraint;
    ASSERT_EQ(unit.choices.size(), 2U);
    EXPECT_EQ(unit.choices[0].text, "mm");
    EXPECT_EQ(unit.choices[0].label, "Millimetres");
    EXPECT_EQ(unit.choices[1].label, "inch");
    EXPECT_TRUE(view.children.at(1).isKind);
    EXPECT_EQ(view.children.at(1).object.name, "Machine");
}

TEST_F(ConfigurationCatalogueTest, IsOfANewObjectWhateverTheGivenOneHolds) {
    View view;
    view.limit.set(1);
    view.machines.add("Hall 1");
    view.setEditable(false);
    ConfigurationCatalogue used("a", {}, "1");
    used.add(view, "View");
    ConfigurationCatalogue fresh("a", {}, "1");
    fresh.add(View(), "View");
    EXPECT_EQ(textOf(used), textOf(fresh));
}

TEST_F(ConfigurationCatalogueTest, DescribesClassesOfTheOldKind) {
    ConfigurationCatalogue catalogue("a", {}, "1");
    catalogue.add(OldView(), "Old");
    const ConfigurationCatalogue read = throughFile(catalogue);
    const ConfigurationObjectDescription& object = read.getEntries().at(0).object;
    EXPECT_EQ(object.persistence, ConfigurationItemBase::LoadOnly);
    EXPECT_EQ(object.products, ConfigurationItemBase::Product1 | ConfigurationItemBase::Product3);
    ASSERT_GE(object.values.size(), 2U);
    EXPECT_FALSE(object.values[0].isEditable);
    EXPECT_EQ(object.values[0].visibility, ConfigurationItemBase::Visible);
    EXPECT_EQ(object.values[1].persistence, ConfigurationItemBase::NotPersistent);
    EXPECT_EQ(object.values[1].products, ConfigurationItemBase::Product2);
    EXPECT_EQ(object.values[1].visibility, ConfigurationItemBase::Hidden);
}

TEST_F(ConfigurationCatalogueTest, DescribesWhatAClassWritesBesidesItsValues) {
    const Support::RunningProduct product(BuildInformation::ProductType{1});
    ConfigurationCatalogue catalogue("a", {}, "1");
    catalogue.add(OldView(), "Old");
    const ConfigurationCatalogue read = throughFile(catalogue);
    const ConfigurationObjectDescription& object = read.getEntries().at(0).object;
    ASSERT_EQ(object.values.size(), 4U);
    EXPECT_EQ(object.values[2].name, "Extra");
    EXPECT_EQ(object.values[2].description, "Not declared");
    EXPECT_THAT(object.values[2].defaultTexts, ElementsAre("more"));
    EXPECT_TRUE(object.values[3].isList());
    EXPECT_THAT(object.values[3].defaultTexts, ElementsAre("a", "b"));
    ASSERT_EQ(object.children.size(), 2U);
    EXPECT_EQ(object.children[0].object.name, "Group");
    EXPECT_EQ(object.children[0].object.values.at(0).name, "Number");
    EXPECT_EQ(object.children[1].object.name, "Keyed");
    EXPECT_EQ(object.children[1].key, "k");
    EXPECT_TRUE(object.children[1].object.values.empty());
}

TEST_F(ConfigurationCatalogueTest, ReplacesWhatXmlDoesNotAllow) {
    const auto object = Support::TestObject::make("O", [](Support::TestObject& made) {
        made.add("V", std::string("a\x01"), ConfigurationItemBase::LoadAndSave,
                 ConfigurationItemBase::AllProducts, "\x02");
    });
    ConfigurationCatalogue catalogue("a", {"\x03"}, "1");
    catalogue.add(*object, "O");
    const ConfigurationCatalogue read = throughFile(catalogue);
    EXPECT_THAT(valueOf(read, 0).defaultTexts, ElementsAre("a\uFFFD"));
    EXPECT_EQ(valueOf(read, 0).description, "\uFFFD");
}

TEST_F(ConfigurationCatalogueTest, RefusesWhatCannotBeAdded) {
    ConfigurationCatalogue catalogue("a", {}, "1");
    catalogue.add(View(), "View");
    EXPECT_THROW(catalogue.add(View(), "View"), std::invalid_argument);
    EXPECT_THROW(catalogue.add(View(), "1"), std::invalid_argument);
    EXPECT_THROW(catalogue.add(View(), ""), std::invalid_argument);
    EXPECT_THROW(catalogue.addFormerPath("Old", "View/None"), std::invalid_argument);
    EXPECT_THROW(catalogue.addFormerText("View/Camera", "a", "b"), std::invalid_argument);
    EXPECT_THROW(catalogue.addFormerText("Vie", "a", "b"), std::invalid_argument);
    EXPECT_THROW(catalogue.add(Support::Unmakeable(), "Other"), std::logic_error);
    EXPECT_EQ(catalogue.getEntries().size(), 1U);
    for (const char* const name : {"", "..", "a/b"})
        EXPECT_THROW(ConfigurationCatalogue(name, {}, "1"), std::invalid_argument) << name;
}

TEST_F(ConfigurationCatalogueTest, TellsWhenAStreamDoesNotTakeIt) {
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    EXPECT_THROW(ConfigurationCatalogue("a", {}, "1").write(stream), std::ios_base::failure);
}

TEST_F(ConfigurationCatalogueTest, FindsFilesAsTheApplicationDoes) {
    setenv("HOME", "/home/me", 1);
    unsetenv("XDG_CONFIG_HOME");
    setenv("XDG_CONFIG_DIRS", "/site", 1);
    ConfigurationCatalogue catalogue("planner", {}, "1");
    EXPECT_FALSE(catalogue.getFiles());
    EXPECT_EQ(catalogue.findFiles().system.toString(), "/site/planner/planner.xml");
    EXPECT_EQ(catalogue.findFiles().user.toString(), "/home/me/.config/planner/planner.xml");
    catalogue.setFiles("", "~/own.xml");
    EXPECT_TRUE(catalogue.findFiles().system.empty());
    EXPECT_EQ(catalogue.findFiles().user.toString(), "/home/me/own.xml");
    EXPECT_TRUE(throughFile(catalogue).getFiles()->system.empty());
    catalogue.setFiles("s.xml", "~other/own.xml");
    EXPECT_EQ(catalogue.findFiles().system.toString(), "s.xml");
    EXPECT_EQ(catalogue.findFiles().user.toString(), "~other/own.xml");
    unsetenv("XDG_CONFIG_DIRS");
}

TEST_F(ConfigurationCatalogueTest, RegistersAnObjectForEachKey) {
    ConfigurationCatalogue catalogue("a", {"7"}, "7");
    catalogue.add(Machine(), "Machine", true);
    catalogue.add(Camera(), "Camera");
    Support::writeFile(m_systemFile, "<Configuration version='7'><Machine key='b'/><Machine/>"
                                     "</Configuration>");
    Support::writeFile(m_userFile, "<Configuration version='7'><Machine key='a'><MaxFeed>7"
                                   "</MaxFeed></Machine></Configuration>");
    useTwoFiles();
    throughFile(catalogue).registerObjects(m_manager);
    const auto registrations = m_manager.getRegistrations();
    ASSERT_EQ(registrations.size(), 3U);
    EXPECT_EQ(registrations[0].name, "Camera");
    EXPECT_EQ(registrations[1].key, "a");
    EXPECT_EQ(registrations[2].key, "b");
    EXPECT_THAT(m_manager.getValidVersions(), ElementsAre("7"));
    EXPECT_EQ(m_manager.explain().at(2).value, "7");
}

TEST_F(ConfigurationCatalogueTest, RegistersADefaultEntryWithoutKeysAndNothingForNone) {
    ConfigurationCatalogue catalogue("a", {"1.0"}, "1.0");
    catalogue.add(Machine(), "Machine", true);
    Support::writeFile(m_file, "<Configuration version='1.0'><Machine/></Configuration>");
    useOneFile();
    catalogue.registerObjects(m_manager);
    ASSERT_EQ(m_manager.getRegistrations().size(), 1U);
    EXPECT_FALSE(m_manager.getRegistrations()[0].key);
    m_manager.reset();
    Support::writeFile(m_file, "<Configuration version='1.0'/>");
    useOneFile();
    catalogue.registerObjects(m_manager);
    EXPECT_TRUE(m_manager.getRegistrations().empty());
}

TEST_F(ConfigurationCatalogueTest, RefusesWhatCannotBeRead) {
    EXPECT_THAT(messageOf<ConfigurationCatalogueError>(
                    [&] { (void)ConfigurationCatalogue::read(m_directory.file("missing.xml")); }),
                HasSubstr("missing.xml: No such file"));
    EXPECT_THROW((void)ConfigurationCatalogue::read(m_directory.file("")),
                 ConfigurationCatalogueError);
}

TEST_F(ConfigurationCatalogueTest, RefusesDamagedAndForeignFilesWithTheirPlaces) {
    const std::string root = "<catalogue xmlns='urn:orvant:configuration-catalogue' format='1' "
                             "application='a' writtenVersion='1'";
    EXPECT_THAT(refusalOf(""), HasSubstr(" "));
    EXPECT_THAT(refusalOf("no XML"), StartsWith("1:1: "));
    EXPECT_THAT(refusalOf("<Configuration version='1'/>"), StartsWith("1:29: "));
    EXPECT_THAT(refusalOf("<catalogue format='1' application='a' writtenVersion='1'/>"),
                StartsWith("1:"));
    EXPECT_THAT(refusalOf("\n" + root + ">\n<accepts version='1'></accept>"), StartsWith("3:24: "));
    EXPECT_THAT(refusalOf(root + ">"), StartsWith("1:"));
    EXPECT_THAT(refusalOf(root + " extra='1'/>"), HasSubstr("extra"));
    EXPECT_THAT(refusalOf("<catalogue xmlns='urn:orvant:configuration-catalogue' format='2' "
                          "application='a' writtenVersion='1'/>"),
                HasSubstr("format"));
    EXPECT_THAT(refusalOf("<catalogue xmlns='urn:orvant:configuration-catalogue' format='1' "
                          "writtenVersion='1'/>"),
                HasSubstr("application"));
    EXPECT_THAT(refusalOf("<catalogue xmlns='urn:orvant:configuration-catalogue' format='1' "
                          "application='a/b' writtenVersion='1'/>"),
                EndsWith("\"a/b\" cannot be the name of a folder"));
    EXPECT_THAT(refusalOf("<!DOCTYPE catalogue [<!ENTITY e 'x'>]>\n" + root + "/>"),
                EndsWith("a catalogue has no document type declaration"));
    EXPECT_THAT(refusalOfElements("<nonsense/>"), StartsWith("3:12: "));
}

TEST_F(ConfigurationCatalogueTest, RefusesWhatContradictsItself) {
    EXPECT_THAT(refusalOfElements("<object name='a b'/>"), StartsWith("3:21: \"a b\" cannot be"));
    EXPECT_THAT(refusalOfElements("<object name='O'/>\n<object name='O'/>"),
                StartsWith("4:19: there are two objects \"O\""));
    EXPECT_THAT(refusalOfElements("<object name='O'><kind name=''/></object>"),
                HasSubstr("cannot be the name"));
    EXPECT_THAT(refusalOfElements("<formerly path='a' now='b'/>"), HasSubstr("there is no \"b\""));
    EXPECT_THAT(refusalOfElements("<formerly path='a' now='b' text='c'/>"),
                HasSubstr("neither what a name nor what a text"));
    EXPECT_THAT(refusalOfElements("<formerly path='a'/>"), HasSubstr("neither"));
    EXPECT_THAT(refusalOfElements("<object name='O' products='-1'/>"), StartsWith("3:"));

    EXPECT_THAT(refusalOfValue("name='V' type='number'", "<default>1</default>"), StartsWith("4:"));
    EXPECT_THAT(refusalOfValue("name='V' type='int'", ""), StartsWith("4:"));
    EXPECT_THAT(refusalOfValue("name='V' type='int'", "<default>1.5</default>"),
                EndsWith("\"V\": \"1.5\" is not a value of the type"));
    EXPECT_THAT(refusalOfValue("name='V' type='int'", "<default/>"), HasSubstr("\"V\""));
    EXPECT_THAT(refusalOfValue("name='V' type='int'", "<default><item>1</item></default>"),
                HasSubstr("\"V\""));
    EXPECT_THAT(refusalOfValue("name='V' type='bool'", "<default>yes</default>"),
                HasSubstr("neither true nor false"));
    EXPECT_THAT(refusalOfValue("name='V' type='int' minimum='a'", "<default>1</default>"),
                HasSubstr("\"a\" is not a value"));
    EXPECT_THAT(refusalOfValue("name='V' type='string' minimum='1'", "<default>1</default>"),
                HasSubstr("only numbers have a range"));
    EXPECT_THAT(refusalOfValue("name='V' type='int' minimum='2'", "<default>1</default>"),
                HasSubstr("it must be at least 2"));
    EXPECT_THAT(refusalOfValue("name='V' type='string'",
                               "<default>a</default><choice text='b' label='B'/>"),
                HasSubstr("one of \"b\""));
    EXPECT_THAT(refusalOfValue("name='1' type='int'", "<default>1</default>"),
                HasSubstr("\"1\" cannot be the name of an element"));
}

TEST_F(ConfigurationCatalogueTest, RefusesWhatIsNestedTooDeeply) {
    std::string elements = "<object name='O'>";
    std::string ends = "</object>";
    for (int i = 0; i < 100'000; ++i) {
        elements += "<inline>";
        ends.insert(0, "</inline>");
    }
    EXPECT_THAT(refusalOfElements(elements), EndsWith("it is nested too deeply"));
}

TEST_F(ConfigurationCatalogueTest, KeepsBlanksAndCarriageReturns) {
    const auto object = Support::TestObject::make("O", [](Support::TestObject& made) {
        made.add("Blank", std::string(" "));
        made.add("Return", std::string("\r\n a\t"));
        made.add("Empty", std::string());
        made.add("None", std::vector<std::string>());
        made.add("One", std::vector<std::string>{" \n"});
    });
    ConfigurationCatalogue catalogue("a", {}, "1");
    catalogue.add(*object, "O");
    const ConfigurationCatalogue read = throughFile(catalogue);
    EXPECT_THAT(valueOf(read, 0).defaultTexts, ElementsAre(" "));
    EXPECT_THAT(valueOf(read, 1).defaultTexts, ElementsAre("\r\n a\t"));
    EXPECT_THAT(valueOf(read, 2).defaultTexts, ElementsAre(""));
    EXPECT_THAT(valueOf(read, 3).defaultTexts, ElementsAre());
    EXPECT_THAT(valueOf(read, 4).defaultTexts, ElementsAre(" \n"));
}
