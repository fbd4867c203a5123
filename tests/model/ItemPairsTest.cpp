#include <ConfigurationFramework/ConfigurationObject.h>

#include <ManagerFixture.h>
#include <ModelTestSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace Orvant {
namespace {

using Support::document;
using Support::TestObject;
using Support::writeFile;

std::string textOf(const ConfigurationObject& object, const std::string& value) {
    return dynamic_cast<const TestObject&>(object).value<std::string>(value).getValue();
}

TestObject* newPrinter(const std::string& key, const std::string& paper = "A4") {
    auto printer = std::make_unique<TestObject>("Printer");
    printer->add("Key", key, TestObject::NotPersistent).add("Paper", std::string("A4"));
    printer->value<std::string>("Paper").setValue(paper);
    return printer.release();
}

/// Has a printer for each key in the document it was loaded from last.
class Printers : public TestObject {
public:
    Printers() : TestObject("Printers") {}

    void loadContent(ConfigReader& reader) override {
        clear();
        std::vector<std::string> keys;
        reader.createConfigurationObjects("Printer",
                                          [&](const std::string& key) { keys.push_back(key); });
        for (const std::string& key : keys) {
            auto* const printer = newPrinter(key);
            addChild(printer);
            reader.getClassContents("Printer", key, *printer);
        }
    }
    ConfigurationObject* createConfigurationObject() const override { return new Printers; }
    const ConfigurationObject* getCounterpart(const ConfigurationObject& child, std::size_t,
                                              const ConfigurationObject& other) const override {
        for (auto i = other.beginObjectIterator(); i != other.endObjectIterator(); ++i)
            if (textOf(**i, "Key") == textOf(child, "Key"))
                return *i;
        return nullptr;
    }
    std::vector<std::string> papers() const {
        std::vector<std::string> texts;
        for (auto i = beginObjectIterator(); i != endObjectIterator(); ++i)
            texts.push_back(textOf(**i, "Key") + ':' + textOf(**i, "Paper") +
                            ((*i)->hasNonEditableEntries() ? " locked" : ""));
        return texts;
    }
};

TEST(ConfigurationObjectPairing, GoesByPositionAmongNamesakesElseByName) {
    const auto newChild = [](const std::string& name) { return new TestObject(name); };
    TestObject object;
    object.addChild(newChild("")).addChild(newChild("")).addChild(newChild("A"));
    object.addChild(newChild("B"));
    TestObject other;
    other.addChild(newChild("")).addChild(newChild("")).addChild(newChild("B"));
    other.addChild(newChild("C")).addChild(newChild("B"));
    const auto mine = object.beginObjectIterator();
    const auto theirs = other.beginObjectIterator();
    EXPECT_EQ(theirs[0], object.getCounterpart(*mine[0], 0, other));
    EXPECT_EQ(theirs[1], object.getCounterpart(*mine[1], 1, other));
    EXPECT_EQ(nullptr, object.getCounterpart(*mine[2], 2, other));
    EXPECT_EQ(theirs[2], object.getCounterpart(*mine[3], 3, other));
    EXPECT_EQ(theirs[0], object.getCounterpart(*mine[1], 9, other));
}

class KeyedChildren : public Support::ManagerFixture {
protected:
    KeyedChildren() {
        writeFile(m_systemFile,
                  document("<Printers><Printer key='1'><Paper editable='false'>A3</Paper></Printer>"
                           "<Printer key='2'><Paper>A0</Paper></Printer></Printers>"));
        useTwoFiles();
    }
    void writeUserFile() {
        writeFile(m_userFile, document("<Printers><Printer key='2'><Paper>A1</Paper></Printer>"
                                       "<Printer key='1'><Paper>A5</Paper></Printer></Printers>"));
    }
};

TEST_F(KeyedChildren, AreRepairedFromThoseOfTheirKey) {
    writeUserFile();
    const auto printers = add(std::make_shared<Printers>());
    EXPECT_THAT(printers->papers(), testing::ElementsAre("2:A1", "1:A3 locked"));
}

TEST_F(KeyedChildren, GetTheirOwnLocksBackInAReset) {
    const auto printers = add(std::make_shared<Printers>());
    EXPECT_THAT(printers->papers(), testing::ElementsAre("1:A3 locked", "2:A0"));
    writeUserFile();
    m_manager.resetConfigurationObject("Printers", true);
    EXPECT_THAT(printers->papers(), testing::ElementsAre("2:A1", "1:A3 locked"));
}

TEST(ConfigurationObjectPairing, GivesTheChildrenOfALockedObjectTheirOwnValues) {
    Printers system;
    system.addChild(newPrinter("1", "A3")).addChild(newPrinter("2", "A0"));
    system.setEditable(false);
    Printers printers;
    printers.addChild(newPrinter("2")).addChild(newPrinter("1")).addChild(newPrinter("3"));
    printers.overwriteInvalidConfigValues(&system);
    EXPECT_THAT(printers.papers(), testing::ElementsAre("2:A0", "1:A3", "3:A4"));
}

TEST(ConfigurationObjectPairing, DecidesWhatADifferenceSaveComparesWith) {
    const auto different = [](const ConfigurationObject& object, const ConfigurationObject* other) {
        ConfigWriter writer("1.0");
        object.saveDifferentConfigurationValues(writer, other);
        return Support::compact(writer);
    };
    Printers system;
    system.addChild(newPrinter("1", "A3")).addChild(newPrinter("2", "A0"));
    const auto differentOf = [&](const std::string& key, const std::string& paper) {
        Printers printers;
        printers.addChild(newPrinter(key, paper));
        return different(printers, &system);
    };
    const std::string nothing = different(Printers(), &system);
    EXPECT_EQ(nothing, differentOf("2", "A0"));
    EXPECT_EQ(document("<Printer><Paper>A3</Paper></Printer>"), differentOf("2", "A3"));
    EXPECT_EQ(document("<Printer><Paper>A0</Paper></Printer>"), differentOf("3", "A0"));

    const std::string reference = "<Printers><Printer key='1'><Paper>A3</Paper></Printer>"
                                  "<Printer key='2'><Paper>A0</Paper></Printer></Printers>";
    SimpleConfigReader reader = Support::readerOf(reference);
    Printers printers;
    printers.addChild(newPrinter("2", "A0"));
    ConfigWriter writer("1.0");
    printers.saveContent(writer, reader, true);
    EXPECT_EQ(nothing, Support::compact(writer));
}

} // namespace
} // namespace Orvant
