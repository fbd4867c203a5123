#include <SchemaTestSupport.h>

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace Orvant {
namespace {

using namespace Support;

using SchemaBadInput = EarlierSchema;

TEST_F(SchemaBadInput, NotWellFormed) {
    for (const std::string bytes :
         {"<", "text", "<a><b></a></b>", "<a b=c/>", "<a>&nowhere;</a>", "<a/><b/>", "\xff\xfe<",
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xc3</a>"})
        expectFailure(bytes, ConfigException::SourceNotFound);
    expectFailure(std::string("<a>\0</a>", 8), ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, Empty) {
    expectFailure("", ConfigException::SourceNotFound);
    expectFailure(" \n", ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, AnotherDocumentElement) {
    expectFailure("<a/>", ConfigException::ParserReportedErrors);
    expectFailure("<Configuration version=\"1\"/>", ConfigException::ParserReportedErrors);
    expectFailure("<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"/>",
                  ConfigException::ParserReportedErrors);
}

TEST_F(SchemaBadInput, TruncatedAtEveryByte) {
    const std::string suiteFile = readFile(file);
    // Without the last line feed it is whole.
    for (std::size_t size = 0; size + 1 < suiteFile.size(); ++size)
        expectFailure(suiteFile.substr(0, size), true, ConfigException::SourceNotFound);
    reader.writeXSD(file, false);
    const std::string readersOwn = readFile(file);
    for (std::size_t size = 0; size + 1 < readersOwn.size(); ++size)
        expectFailure(readersOwn.substr(0, size), false, ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, AnyByteReplaced) {
    const std::string whole = readFile(file);
    const std::string replacements("<\"\0\xff ", 5);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string bytes = whole;
        bytes[at] = replacements[at % replacements.size()];
        writeFile(file, bytes);
        const auto failure = failureOf([&] { reader.readXSD(true); });
        EXPECT_TRUE(!failure || failure == ConfigException::SourceNotFound ||
                    failure == ConfigException::ParserReportedErrors)
            << at;
        ASSERT_EQ(bytes, readFile(file));
    }
}

TEST_F(SchemaBadInput, Utf16) {
    std::string wide = "\xff\xfe";
    for (const char byte : readFile(file))
        wide += {byte, '\0'};
    // It is XML, but nothing in it is rewritten.
    expectFailure(wide, ConfigException::ParserReportedErrors);
}

TEST_F(SchemaBadInput, ADirectory) {
    std::filesystem::remove(directory.path() / "schema.xsd");
    std::filesystem::create_directory(directory.path() / "schema.xsd");
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("schema.xsd"));
}

TEST_F(SchemaBadInput, AMissingFile) {
    std::filesystem::remove(directory.path() / "schema.xsd");
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
    EXPECT_TRUE(filesIn(directory).empty());
}

TEST_F(SchemaBadInput, APipeThatNobodyWritesTo) {
    std::filesystem::remove(directory.path() / "schema.xsd");
    ASSERT_EQ(0, mkfifo((directory.path() / "schema.xsd").c_str(), 0600));
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
}

TEST_F(SchemaBadInput, AFileWithoutReadPermission) {
    ASSERT_EQ(0, chmod(directory.path().c_str(), 0777));
    ASSERT_EQ(0, chmod((directory.path() / "schema.xsd").c_str(), 0));
    for (const bool sanitise : {true, false})
        EXPECT_EQ(0, asOrdinaryUser([&] {
                      const auto failure = failureOf([&] { reader.readXSD(sanitise); });
                      if (failure != ConfigException::SourceNotFound)
                          return 1;
                      return earlierTree == reader.getXsdTree() ? 0 : 2;
                  }));
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("schema.xsd"));
}

TEST_F(SchemaBadInput, ADirectoryWithoutWritePermission) {
    ASSERT_EQ(0, chmod(directory.path().c_str(), 0555));
    const std::string before = readFile(file);
    EXPECT_EQ(0, asOrdinaryUser([&] {
                  if (failureOf([&] { reader.readXSD(true); }) != ConfigException::SourceNotFound)
                      return 1;
                  const auto written = [&](const FileName& target) {
                      return failureOf([&] { reader.writeXSD(target, true); });
                  };
                  if (written(file) != ConfigException::SourceNotFound)
                      return 2;
                  return written(directory.file("new")) == ConfigException::SourceNotFound ? 0 : 3;
              }));
    EXPECT_EQ(before, readFile(file));
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("schema.xsd"));
    ASSERT_EQ(0, chmod(directory.path().c_str(), 0700));
}

TEST_F(SchemaBadInput, AMinOccursThatIsNoNumber) {
    const std::string content = "<complexType name=\"A\"><sequence><element name=\"a\" "
                                "minOccurs=\"many\"/></sequence></complexType>";
    expectFailure(readerSchema(content), ConfigException::SourceNotFound);
}

TEST_F(SchemaBadInput, TextWhereElementsBelong) {
    writeFile(file, suiteSchema("text\n<xs:complexType name=\"A\">\ntext &amp; text\n<xs:sequence>"
                                "\ntext\n<xs:element name=\"a\">text</xs:element>\n</xs:sequence>\n"
                                "text\n</xs:complexType>\n<![CDATA[text]]>\n"));
    reader.readXSD(true);
    EXPECT_EQ((Pairs{{"a", ""}}), reader.getSubTypes("A"));
}

TEST_F(SchemaBadInput, TenMegabytesOnOneLine) {
    std::string types;
    for (int i = 0; types.size() < 10'000'000; ++i)
        types += "<xs:complexType name=\"T" + std::to_string(i) + "\"/>";
    const std::string bytes = suiteHeader + types + "</xs:schema>";
    writeFile(file, bytes);
    // One replacement a line: the end tag keeps its prefix.
    EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(true); }));
    EXPECT_EQ(bytes, readFile(file));

    writeFile(file, suiteHeader +
                        "\n<xs:complexType name=\"A\">\n<xs:annotation>\n"
                        "<xs:documentation>" +
                        std::string(10'000'000, 'x') +
                        "</xs:documentation>\n</xs:annotation>\n</xs:complexType>\n</xs:schema>");
    reader.readXSD(true);
    EXPECT_EQ(1u, reader.getXsdTree().size());
    reader.writeXSD(directory.file("written.xsd"), true);
    EXPECT_GT(readFile(directory.file("written.xsd")).size(), 10'000'000u);
}

TEST_F(SchemaBadInput, TwoThousandTypesOfTwentyElementsEach) {
    std::string lines;
    for (int type = 0; type < 2000; ++type) {
        lines += "<xs:complexType name=\"T" + std::to_string(type) + "\">\n<xs:sequence>\n";
        for (int child = 0; child < 20; ++child)
            lines += "<xs:element name=\"c" + std::to_string(child) + "\" type=\"T" +
                     std::to_string((type + child + 1) % 2000) +
                     (child == 0 ? "\"/>\n" : "\" minOccurs=\"0\"/>\n");
        lines += "</xs:sequence>\n</xs:complexType>\n";
    }
    writeFile(file, suiteSchema(lines));
    reader.readXSD(true);
    EXPECT_EQ(2000u, reader.getXsdTree().size());
    EXPECT_EQ(20u, reader.getSubTypes("T1999").size());
    // All of them through one chain of required children.
    reader.keepXSDElement({"T1000"});
    EXPECT_EQ(2000u, reader.getXsdTree().size());
    reader.keepXSDChildElement("T0", {"c19"});
    EXPECT_EQ(2u, reader.getSubTypes("T0").size());
    reader.writeXSD(directory.file("written.xsd"), true);
    XsdConfigReader other(directory.file("written.xsd"));
    other.readXSD(true);
    EXPECT_EQ(reader.getXsdTree().size(), other.getXsdTree().size());
}

TEST_F(SchemaBadInput, TypesThatContainThemselvesAndEachOther) {
    writeFile(file,
              suiteSchema("<xs:complexType name=\"A\">\n<xs:sequence>\n"
                          "<xs:element name=\"a\" type=\"A\"/>\n"
                          "<xs:element name=\"b\" type=\"B\"/>\n</xs:sequence>\n"
                          "</xs:complexType>\n<xs:complexType name=\"B\">\n<xs:sequence>\n"
                          "<xs:element name=\"a\" type=\"A\" minOccurs=\"0\"/>\n</xs:sequence>\n"
                          "</xs:complexType>\n<xs:element name=\"a\" type=\"A\"/>\n"));
    reader.readXSD(true);
    reader.keepXSDElement({"B"});
    EXPECT_EQ(2u, reader.getXsdTree().size());
    reader.keepXSDChildElement("B", {});
    EXPECT_EQ(2u, reader.getXsdTree().size());
    EXPECT_TRUE(reader.getSubTypes("B").empty());
}

TEST_F(SchemaBadInput, AFileTooLargeToBeASchema) {
    std::filesystem::resize_file(directory.path() / "schema.xsd", (std::uintmax_t{1} << 30U) + 1);
    for (const bool sanitise : {true, false})
        EXPECT_EQ(ConfigException::SourceNotFound, failureOf([&] { reader.readXSD(sanitise); }));
    EXPECT_EQ(earlierTree, reader.getXsdTree());
    EXPECT_THAT(filesIn(directory), testing::ElementsAre("schema.xsd"));
}

TEST_F(SchemaBadInput, ElementsNestedWithoutEnd) {
    std::string content;
    for (int i = 0; i < 3'000; ++i)
        content += "<complexType><sequence><element>";
    for (int i = 0; i < 3'000; ++i)
        content += "</element></sequence></complexType>";
    expectFailure(readerSchema(content), ConfigException::SourceNotFound);
}

} // namespace
} // namespace Orvant
