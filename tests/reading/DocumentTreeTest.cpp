#include <ConfigurationFramework/ConfigWriter.h>

#include <EntitySupport.h>
#include <ReaderSupport.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <unistd.h>

namespace Orvant {
namespace {

using Support::configuration;
using Support::nested;
using Support::openBody;
using Support::openFile;
using Support::readInt;
using Support::TemporaryDirectory;
using Support::TestObject;
using testing::ElementsAre;

constexpr auto success = ConfigurationAccessResult::Success;
constexpr auto failure = ConfigurationAccessResult::Failure;

const std::string deepBody =
    nested(100'000, "<T key='k'><A>1</A><L><item>a</item></L></T>") + "<A>0</A>";

std::shared_ptr<TestObject> objectWithA() {
    return TestObject::make("T", [](TestObject& object) { object.add("A", -1); });
}

// Searches.

TEST(DeepDocument, IsSearchedForATag) {
    auto reader = openBody(deepBody);
    EXPECT_EQ(failure, reader.tagExists("Missing"));
    EXPECT_EQ(0, readInt(reader, "A"));
    EXPECT_EQ(success, reader.tagExists("T"));
    EXPECT_EQ(1, readInt(reader, "A"));
}

TEST(DeepDocument, IsSearchedForAnObject) {
    auto reader = openBody(deepBody);
    const auto byName = objectWithA();
    EXPECT_EQ(success, reader.findAndGetClassContents("T", *byName));
    EXPECT_EQ(1, byName->value<int>("A").getValue());
    const auto byKey = objectWithA();
    EXPECT_EQ(failure, reader.findAndGetClassContents("T", "other", *byKey));
    EXPECT_EQ(success, reader.findAndGetClassContents("T", "k", *byKey));
    EXPECT_EQ(1, byKey->value<int>("A").getValue());
}

TEST(DeepDocument, IsSearchedForAList) {
    auto reader = openBody(deepBody);
    std::vector<std::string> values;
    std::map<std::string, bool> itemEditable;
    bool editable = true;
    EXPECT_EQ(success, reader.getStringVector("L", values, editable, itemEditable));
    EXPECT_THAT(values, ElementsAre("a"));
    EXPECT_EQ(success, reader.getStringVector("n", values, editable, itemEditable));
    EXPECT_THAT(values, ElementsAre("a")) << "items far below the list";
    EXPECT_EQ(failure, reader.getStringVector("Missing", values, editable, itemEditable));
}

TEST(DeepDocument, IsReadFromAFile) {
    const TemporaryDirectory directory;
    auto reader = openFile(directory.file("deep.xml", configuration(deepBody)));
    EXPECT_EQ(success, reader.tagExists("T"));
}

/// Ends the process, with 0 when reader and writer either opened the document or refused it.
[[noreturn]] void openAndExit(const std::string& document) {
    Support::refusal([&] {
        auto reader = Support::openString(document);
        reader.tagExists("Missing");
    });
    Support::refusal([&] {
        ConfigWriter writer(FileName(), document);
        writer.getAsString();
    });
    _exit(0);
}

TEST(DeepDocument, MayHoldItsDepthInAnEntity) {
    const std::string document =
        configuration("&deep;&deep;", "<!ENTITY deep \"" + nested(200'000, "") + "\">");
    EXPECT_EXIT(openAndExit(document), testing::ExitedWithCode(0), "");
}

TEST(DeepDocument, MayHoldItsDepthInEntitiesOfEntities) {
    std::string declarations = "<!ENTITY e0 'x'>";
    for (int level = 1; level <= 500; ++level)
        declarations += "<!ENTITY e" + std::to_string(level) + " '" +
                        nested(200, "&e" + std::to_string(level - 1) + ";") + "'>";
    const std::string document = configuration("&e500;", declarations);
    EXPECT_EXIT(openAndExit(document), testing::ExitedWithCode(0), "");
}

// Many siblings.

TEST(WideDocument, IsReadAndWritten) {
    constexpr int count = 20'000;
    std::string body;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        body += "<P key='" + number + "'><A>" + number + "</A></P>\n";
    }
    auto reader = openBody(body);
    std::set<std::string> keys;
    reader.getKeys("P", keys);
    EXPECT_EQ(count, static_cast<int>(keys.size()));
    int sum = 0;
    reader.createConfigurationObjects(
        "P", [&](const std::string&) { sum += readInt(reader, "A").value_or(0); });
    EXPECT_EQ(count / 2 * (count - 1), sum);
    const auto object = objectWithA();
    EXPECT_EQ(success, reader.getClassContents("P", "19999", *object));
    EXPECT_EQ(19999, object->value<int>("A").getValue());
    EXPECT_EQ(failure, reader.tagExists("Missing"));

    ConfigWriter writer(FileName(), configuration(body));
    writer.createKeyedNode("P", "19999", "");
    auto written = Support::openString(writer.getAsString());
    keys.clear();
    written.getKeys("P", keys);
    EXPECT_EQ(count, static_cast<int>(keys.size()));
}

} // namespace
} // namespace Orvant
