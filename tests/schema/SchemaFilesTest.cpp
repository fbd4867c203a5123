#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <thread>

#include <sys/stat.h>

namespace Orvant::Support {

struct Tree {
    using type = std::shared_ptr<XsdElement> XsdConfigReader::*;
    friend type memberOf(Tree);
};
template struct PrivateMember<Tree, &XsdConfigReader::m_tree>;

} // namespace Orvant::Support

namespace Orvant {
namespace {

using namespace Support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

/// A reader that has read a schema in a directory with a subdirectory that links lead to.
class SchemaFiles : public testing::Test {
protected:
    SchemaFiles() {
        fs::create_directory(directory.path() / "elsewhere");
        reader.readXSD(true);
    }

    fs::path at(const std::string& name) const { return directory.path() / name; }
    static std::optional<ConfigException::ExceptionType>
    failureOfWriting(XsdConfigReader& reader, const FileName& file, bool fixOutput = true) {
        return failureOf([&] { reader.writeXSD(file, fixOutput); });
    }

    const std::string schema =
        suiteSchema("<xs:complexType name=\"A\">\n<xs:sequence>\n"
                    "<xs:element name=\"a\" type=\"xs:int\"/>\n"
                    "</xs:sequence>\n</xs:complexType>\n<xs:element name=\"e\" type=\"A\"/>");
    TemporaryDirectory directory;
    FileName file = directory.file("schema.xsd", schema);
    XsdConfigReader reader{file};
};

/// The names of both scratch files.
class ScratchFile : public SchemaFiles, public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Names, ScratchFile, testing::Values(sanitisingFile, rewritingFile),
                         [](const testing::TestParamInfo<std::string>& name) {
                             return name.param == sanitisingFile ? "Sanitising" : "Rewriting";
                         });

TEST_P(ScratchFile, IsNotSanitised) {
    const FileName bound = directory.file(GetParam(), schema);
    XsdConfigReader other(bound);
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { other.readXSD(true); }));
    EXPECT_EQ(schema, readFile(bound));
}

TEST_P(ScratchFile, IsReadWhereNothingIsWritten) {
    const std::string bytes = readerSchema("<complexType name=\"Scratch\"/>");
    const FileName bound = directory.file(GetParam(), bytes);
    fs::create_symlink(GetParam(), at("link"));
    for (const FileName& name : {bound, directory.file("link")}) {
        XsdConfigReader other(name);
        other.readXSD(false);
        EXPECT_EQ(1u, other.getXsdTree().count("Scratch"));
    }
    EXPECT_EQ(bytes, readFile(bound));
}

TEST_P(ScratchFile, IsNotReadThroughALink) {
    const FileName scratch = directory.file(GetParam(), schema);
    fs::create_symlink(GetParam(), at("link"));
    fs::create_symlink(at("link"), at("link to link.xsd"));
    XsdConfigReader other(directory.file("link to link.xsd"));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { other.readXSD(true); }));
    EXPECT_EQ(schema, readFile(scratch));
}

TEST_P(ScratchFile, IsNotWrittenTo) {
    const FileName target = directory.file(GetParam(), "stays");
    fs::create_symlink(GetParam(), at("link.xsd"));
    for (const bool fixOutput : {true, false})
        for (const FileName& place :
             {target, directory.file("elsewhere/../" + GetParam()), directory.file("link.xsd")}) {
            EXPECT_EQ(ConfigException::SourceNotFound, failureOfWriting(reader, place, fixOutput));
            EXPECT_EQ("stays", readFile(target));
        }
}

TEST_P(ScratchFile, IsNotALinkThatIsReadOrWrittenTo) {
    const FileName pointedTo = directory.file("elsewhere/file", schema);
    fs::create_symlink("elsewhere/file", at(GetParam()));
    XsdConfigReader other(directory.file(GetParam()));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { other.readXSD(true); }));
    EXPECT_EQ(ConfigException::SourceNotFound,
              failureOfWriting(reader, directory.file(GetParam())));
    EXPECT_TRUE(fs::is_symlink(at(GetParam())));
    EXPECT_EQ(schema, readFile(pointedTo));
}

TEST_P(ScratchFile, GivesWayWhenItIsStale) {
    directory.file(GetParam(), "stale");
    reader.readXSD(true);
    EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "schema.xsd"));
}

TEST_P(ScratchFile, IsNeverALinkThatIsFollowed) {
    const FileName pointedTo = directory.file("elsewhere/file", "stays");
    const FileName written = directory.file("written.xsd");
    for (const bool reads : {true, false}) {
        fs::create_symlink("elsewhere/file", at(GetParam()));
        reads ? reader.readXSD(true) : reader.writeXSD(written, true);
        EXPECT_EQ("stays", readFile(pointedTo));
    }
    EXPECT_EQ(1u, reader.getXsdTree().count("A"));
    EXPECT_FALSE(fs::is_symlink(written.toPath()));
}

TEST_P(ScratchFile, IsNeverALinkToNowhereThatIsFollowed) {
    fs::create_symlink("elsewhere/nothing", at(GetParam()));
    reader.readXSD(true);
    EXPECT_FALSE(fs::is_symlink(fs::symlink_status(at(GetParam()))));
    EXPECT_TRUE(fs::is_empty(at("elsewhere")));
}

TEST_P(ScratchFile, IsNeverALinkToTheSchemaItself) {
    fs::create_symlink("schema.xsd", at(GetParam()));
    reader.readXSD(true);
    EXPECT_EQ(schema, readFile(file));
    EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "schema.xsd"));
}

TEST_P(ScratchFile, IsNotALinkThatCannotBeTakenAway) {
    const FileName pointedTo = directory.file("elsewhere/file", "stays");
    fs::create_symlink("elsewhere/file", at(GetParam()));
    // Only its owner may remove a link from such a directory.
    ASSERT_EQ(0, chmod(directory.path().c_str(), 01777));
    ASSERT_EQ(0, chmod(at("elsewhere/file").c_str(), 0666));
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  const auto failure = failureOf([&] { reader.readXSD(true); });
                  return failure == ConfigException::SourceNotFound ? 0 : 1;
              }));
    EXPECT_EQ("stays", readFile(pointedTo));
}

TEST_P(ScratchFile, IsNotADirectoryThatIsTakenAway) {
    fs::create_directory(at(GetParam()));
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(true); }));
    EXPECT_TRUE(fs::is_directory(at(GetParam())));
    EXPECT_EQ(1u, reader.getXsdTree().count("A"));
}

TEST_F(SchemaFiles, AreReadThroughLinks) {
    fs::create_symlink("schema.xsd", at("link.xsd"));
    XsdConfigReader other(directory.file("link.xsd"));
    other.readXSD(true);
    EXPECT_EQ(reader.getRootelements(), other.getRootelements());
    EXPECT_TRUE(fs::is_symlink(at("link.xsd")));
}

/// Plants links to a file under some names, again and again, while it is in scope.
class Planter {
public:
    Planter(const fs::path& target, std::vector<fs::path> names)
        : m_thread([target, names = std::move(names)](const std::stop_token& isEnough) {
              const fs::path planted = target.string() + ".link";
              while (!isEnough.stop_requested())
                  for (const fs::path& name : names) {
                      std::error_code error;
                      // Where there is nothing, then over what is there.
                      fs::create_symlink(target, name, error);
                      fs::create_symlink(target, planted, error);
                      fs::rename(planted, name, error);
                  }
          }) {}

private:
    std::jthread m_thread;
};

TEST_F(SchemaFiles, AreNeverWrittenThroughLinksThatComeMeanwhile) {
    const FileName victim = directory.file("elsewhere/file", "stays");
    const FileName target = directory.file("target.xsd");
    const Planter planter(victim.toPath(),
                          {at(sanitisingFile), at(rewritingFile), target.toPath()});
    for (int round = 0; round < 300; ++round) {
        failureOf([&] { reader.readXSD(true); });
        failureOf([&] { reader.writeXSD(target, round % 2 == 0); });
        ASSERT_EQ("stays", readFile(victim)) << round;
    }
}

// Places to write to.

class LinkAsTarget : public SchemaFiles, public testing::WithParamInterface<const char*> {};

TEST_P(LinkAsTarget, GivesWayToANewFile) {
    const FileName pointedTo = directory.file("elsewhere/file", "stays");
    for (const bool fixOutput : {true, false}) {
        fs::remove(at("target.xsd"));
        fs::create_symlink(GetParam(), at("target.xsd"));
        reader.writeXSD(directory.file("target.xsd"), fixOutput);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(at("target.xsd"))));
        EXPECT_THAT(readFile(directory.file("target.xsd")), HasSubstr("complexType name=\"A\""));
        EXPECT_EQ("stays", readFile(pointedTo));
        EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "schema.xsd", "target.xsd"));
        EXPECT_EQ(1, std::distance(fs::directory_iterator(at("elsewhere")), {}));
    }
}

INSTANTIATE_TEST_SUITE_P(Links, LinkAsTarget,
                         testing::Values("elsewhere/file", "elsewhere/nothing", "elsewhere",
                                         "target.xsd"));

TEST_F(SchemaFiles, AreWrittenOverTheFileThatWasRead) {
    reader.writeXSD(file, true);
    XsdConfigReader other(file);
    other.readXSD(true);
    EXPECT_EQ(reader.getRootelements(), other.getRootelements());
}

TEST_F(SchemaFiles, AreWrittenWholeOrNotAtAll) {
    const FileName target = directory.file("target.xsd");
    for (const bool fixOutput : {true, false}) {
        reader.writeXSD(target, fixOutput);
        const std::string whole = readFile(target);
        EXPECT_EQ(0, inOwnProcess([&] {
                      // Writing about a failure would fail, too.
                      bool isRight = true;
                      for (std::size_t size = 0; size <= whole.size(); ++size) {
                          std::optional<ConfigException::ExceptionType> failure;
                          withLargestFile(
                              size, [&] { failure = failureOfWriting(reader, target, fixOutput); });
                          isRight = isRight && !fs::exists(at(rewritingFile));
                          const bool isWhole = size == whole.size();
                          isRight =
                              isRight && (isWhole ? !failure && readFile(target) == whole
                                                  : failure == ConfigException::SourceNotFound &&
                                                        !fs::exists(target.toPath()));
                      }
                      return isRight ? 0 : 1;
                  }));
        EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "schema.xsd", "target.xsd"));
    }
}

TEST_F(SchemaFiles, AreReadWholeOrNotAtAll) {
    const auto tree = reader.getXsdTree();
    EXPECT_EQ(0, inOwnProcess([&] {
                  std::size_t failures = 0;
                  std::size_t size = 0;
                  for (bool isRead = false; !isRead; ++size) {
                      XsdConfigReader other(reader);
                      std::optional<ConfigException::ExceptionType> failure;
                      withLargestFile(size,
                                      [&] { failure = failureOf([&] { other.readXSD(true); }); });
                      isRead = !failure;
                      if (failure == ConfigException::SourceNotFound &&
                          other.getXsdTree() == tree && readFile(file) == schema)
                          ++failures;
                  }
                  return failures + 1 == size && failures >= schema.size() ? 0 : 1;
              }));
}

TEST_F(SchemaFiles, AreNotLeftBehindWhereTheyAreNotWellFormed) {
    // Deeper than anything that is read.
    OV_XsdReader::ov_complexType type;
    for (int level = 0; level < 400; ++level) {
        OV_XsdReader::ov_element element;
        element.complexType(type);
        OV_XsdReader::ov_sequence sequence;
        sequence.element().push_back(element);
        type = OV_XsdReader::ov_complexType();
        type.sequence(sequence);
    }
    (reader.*memberOf(Tree()))->getSchema()->complexType().push_back(type);
    const FileName target = directory.file("target.xsd", "former");
    EXPECT_EQ(ConfigException::SourceNotFound, failureOfWriting(reader, target));
    EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "schema.xsd"));
}

// What XML cannot hold.

class TextThatXmlCannotHold : public SchemaFiles,
                              public testing::WithParamInterface<std::string> {};

TEST_P(TextThatXmlCannotHold, IsAFailureOfTheModelsAndLeavesNoFile) {
    const auto document = (reader.*memberOf(Tree()))->getSchema();
    const FileName target = directory.file("target.xsd");
    const auto expectFailure = [&] {
        for (const bool fixOutput : {true, false}) {
            writeFile(target, "former");
            EXPECT_THROW(reader.writeXSD(target, fixOutput), xml_schema::serialization);
            EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "schema.xsd"));
        }
    };
    document->complexType()[0].name("a" + GetParam() + "b");
    expectFailure();
    document->complexType()[0].name("A");
    OV_XsdReader::ov_annotation annotation;
    annotation.documentation(GetParam());
    document->complexType()[0].annotation(annotation);
    expectFailure();
    document->complexType()[0].annotation().reset();
    reader.writeXSD(target, true);
    EXPECT_THAT(readFile(target), HasSubstr("name=\"A\""));
}

INSTANTIATE_TEST_SUITE_P(SchemaFiles, TextThatXmlCannotHold,
                         testing::Values("\x01", "\x1f", "\x0c", std::string(1, '\0'), "\xff",
                                         "\xc3", "\xed\xa0\x80", "\xef\xbf\xbe", "\xef\xbf\xbf"));

TEST_F(SchemaFiles, DoNotHoldWhatOnlyAnotherVersionOfXmlCan) {
    XsdConfigReader other(directory.file(
        "other.xml", "<?xml version=\"1.1\"?>" +
                         readerSchema("<complexType name=\"A\"><annotation><documentation>&#1;"
                                      "</documentation></annotation></complexType>")));
    other.readXSD(false);
    EXPECT_THROW(other.writeXSD(directory.file("target.xsd"), true), xml_schema::serialization);
    EXPECT_THAT(filesIn(directory), ElementsAre("elsewhere", "other.xml", "schema.xsd"));
}

TEST_F(SchemaFiles, HoldEveryOtherText) {
    const std::string texts = "\t\r\n \x7f<>&\"'\xc2\x80\xc2\x85\xe2\x80\xa8\xef\xbf\xbd"
                              "\xf0\x9f\x98\x80";
    const auto document = (reader.*memberOf(Tree()))->getSchema();
    document->complexType()[0].name(texts);
    const FileName target = directory.file("target.xsd");
    reader.writeXSD(target, true);
    XsdConfigReader other(target);
    other.readXSD(true);
    EXPECT_EQ(1u, other.getXsdTree().count(texts));
}

} // namespace
} // namespace Orvant
