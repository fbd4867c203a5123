#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/ConfigWriter.h>

#include <ManagerFixture.h>
#include <ReaderSupport.h>
#include <SchemaReferences.h>
#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

// A pipe is never opened, whatever gets its name: opening one blocks until somebody opens its other
// end. So a test that fails hangs.

namespace Orvant {
namespace {

using namespace Support;
using testing::EndsWith;
using testing::HasSubstr;

void makePipe(const FileName& name) {
    ASSERT_EQ(0, mkfifo(name.toNativeString().c_str(), 0600));
}

// Pipes in place of what is read or written.

void readSettings(const FileName& place) {
    makePipe(place);
    auto exception = refusal([&] { openFile(place); });
    ASSERT_TRUE(exception);
    EXPECT_EQ(ConfigException::InvalidDocument, exception->getType());
    const std::source_location& location = exception->getLocation();
    EXPECT_EQ(95u, location.line());
#if defined(__GNUC__) && !defined(__clang__)
    EXPECT_EQ(34u, location.column());
#endif
    EXPECT_THAT(location.file_name(), EndsWith("SimpleConfigReaderImpl.cpp"));
    EXPECT_THAT(location.function_name(), HasSubstr("SimpleConfigReaderImpl::init"));
}

void readLayer(const FileName& place) {
    makePipe(place);
    AdvancedConfigReader reader;
    constexpr auto system = AdvancedConfigReader::System;
    ASSERT_EQ(ConfigurationAccessResult::Success,
              reader.addStringSource(configuration("<A>1</A>"), {}, system, {"1.0"}));
    EXPECT_EQ(ConfigurationAccessResult::Failure, reader.addFileSource(place, {}, system, {"1.0"}));
    EXPECT_EQ(1, readInt(reader, "A")) << "the source that was there";
}

void editSettings(const FileName& place) {
    makePipe(place);
    auto exception = refusal([&] { ConfigWriter(place, ""); });
    ASSERT_TRUE(exception);
    EXPECT_EQ(ConfigException::InvalidDocument, exception->getType());
    EXPECT_THAT(exception->getLocation().file_name(), HasSubstr("ConfigWriterImpl"));
}

void writeSettings(const FileName& place) {
    makePipe(place);
    EXPECT_FALSE(ConfigWriter("1.0").saveToFile(place));
}

/// Registers a changed object with the manager before the pipe is there.
void makePipeAfterLoading(const FileName& place) {
    const auto object = TestObject::make("Test", [](TestObject& test) { test.add("a", 1); });
    ConfigurationManager::getInstance().addConfigurationObject(object, "Test");
    object->value<int>("a").setValue(5);
    makePipe(place);
}

void saveToOneFile(const FileName& place) {
    auto& manager = ConfigurationManager::getInstance();
    manager.setConfigurationFile(place);
    makePipeAfterLoading(place);
    EXPECT_FALSE(manager.saveConfiguration("1.0"));
}

void saveToUserFile(const FileName& place) {
    auto& manager = ConfigurationManager::getInstance();
    manager.setSystemAndUserConfigurationFile(FileName(place.toString() + ".system"), place);
    makePipeAfterLoading(place);
    EXPECT_FALSE(manager.saveConfiguration("1.0"));
}

void saveToNamedFile(const FileName& place) {
    auto& manager = ConfigurationManager::getInstance();
    manager.setSystemAndUserConfigurationFile(FileName(place.toString() + ".system"),
                                              FileName(place.toString() + ".user"));
    makePipeAfterLoading(place);
    EXPECT_FALSE(manager.saveConfigurationToFile(place.toString(), "1.0"));
}

void checkUserFile(const FileName& place) {
    auto& manager = ConfigurationManager::getInstance();
    manager.setSystemAndUserConfigurationFile(FileName(place.toString() + ".system"), place);
    makePipe(place);
    EXPECT_TRUE(manager.hasUserConfigFileErrors());
}

/// @param sanitise either way to read a schema
template <bool sanitise>
void readSchema(const FileName& place) {
    writeFile(place, suiteSchema("<xs:complexType name=\"Earlier\"/>"));
    XsdConfigReader reader(place);
    reader.readXSD(true);
    const auto earlierTree = reader.getXsdTree();
    std::filesystem::remove(place.toPath());
    makePipe(place);
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
}

struct PipeUser : TestCase {
    void (*use)(const FileName& place); ///< makes the pipe, too
};

/// Whatever is given a pipe; the manager is empty before and after.
class Pipe : public ManagerFixture, public testing::WithParamInterface<PipeUser> {};

TEST_P(Pipe, IsNeverOpened) {
    const FileName place = m_directory.file("pipe");
    GetParam().use(place);
    EXPECT_TRUE(std::filesystem::is_fifo(place.toPath()));
}

INSTANTIATE_TEST_SUITE_P(, Pipe,
                         testing::Values(PipeUser{"SimpleConfigReader", readSettings},
                                         PipeUser{"AdvancedConfigReader", readLayer},
                                         PipeUser{"ConfigWriterLoading", editSettings},
                                         PipeUser{"ConfigWriterSaving", writeSettings},
                                         PipeUser{"ConfigurationManagerOneFile", saveToOneFile},
                                         PipeUser{"ConfigurationManagerUserFile", saveToUserFile},
                                         PipeUser{"ConfigurationManagerNamedFile", saveToNamedFile},
                                         PipeUser{"ConfigurationManagerCheckingTheUserFile",
                                                  checkUserFile},
                                         PipeUser{"XsdConfigReaderSanitising", readSchema<true>},
                                         PipeUser{"XsdConfigReader", readSchema<false>}),
                         nameOf<PipeUser>);

// Pipes beside a schema.

class PipeBesideASchema : public testing::TestWithParam<SchemaReference> {};

TEST_P(PipeBesideASchema, IsNotOpenedForAReference) {
    const TemporaryDirectory directory;
    const FileName pipe = directory.file("pipe");
    makePipe(pipe);
    expectOwnContentOnly(directory.file("schema.xsd"),
                         filesReferringTo(pipe.toString(), GetParam()));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe.toPath()));
}

INSTANTIATE_TEST_SUITE_P(References, PipeBesideASchema, testing::ValuesIn(schemaReferences),
                         nameOf<SchemaReference>);

class PipeAsScratchFile : public testing::TestWithParam<std::string> {};

TEST_P(PipeAsScratchFile, GivesWay) {
    const TemporaryDirectory directory;
    XsdConfigReader reader(directory.file("schema.xsd", suiteSchema("")));
    makePipe(directory.file(GetParam()));
    reader.readXSD(true);
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("schema.xsd"));
}

INSTANTIATE_TEST_SUITE_P(Names, PipeAsScratchFile, testing::Values(sanitisingFile, rewritingFile),
                         [](const testing::TestParamInfo<std::string>& name) {
                             return name.param == sanitisingFile ? "Sanitising" : "Rewriting";
                         });

} // namespace
} // namespace Orvant
