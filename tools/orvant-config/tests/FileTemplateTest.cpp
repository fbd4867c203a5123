#include "NastyCatalogue.h"

#include "generating/FileTemplate.h"

#include <ConfigurationFramework/ConfigurationManager.h>
#include <TestSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>

using namespace Orvant;
using namespace Orvant::Tool;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string uncommented(const std::string& text) {
    return std::regex_replace(std::regex_replace(text, std::regex("<!--<"), "<"),
                              std::regex(">-->"), ">");
}

class FileTemplateTest : public testing::Test {
protected:
    FileTemplateTest() { m_manager.reset(); }
    ~FileTemplateTest() override { m_manager.reset(); }

    /// @return what the settings of a catalogue are with a system file
    std::vector<ConfigurationOrigin> explain(const std::string& systemFile) {
        m_manager.reset();
        m_manager.setSystemAndUserConfigurationFile(m_directory.file("system.xml", systemFile),
                                                    m_directory.file("user.xml"));
        m_catalogue.registerObjects(m_manager);
        return m_manager.explain();
    }

    /// Checks whether a template says the default of everything that a load takes.
    void expectDefaults(const std::string& systemFile, std::size_t expectedFromFile) {
        std::size_t fromFile = 0;
        std::multimap<std::string, std::string> defaults;
        for (const auto& origin : explain("<Configuration version=\"1.0\"/>"))
            defaults.emplace(origin.path, origin.value);
        for (const char* const path : {"Machine/MaxFeed", "Nested/Machine/MaxFeed"})
            defaults.emplace(path, "5000"); // only files have the default entry of a kind
        std::multimap<std::string, std::string> values;
        for (const auto& origin : explain(systemFile)) {
            values.emplace(origin.path, origin.value);
            fromFile += origin.layer == ConfigurationOrigin::System ? 1 : 0;
        }
        EXPECT_EQ(values, defaults);
        EXPECT_EQ(fromFile, expectedFromFile);
        for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
            ADD_FAILURE() << problem.line << ": " << problem.text;
    }

    const Support::TemporaryDirectory m_directory;
    const ConfigurationCatalogue m_catalogue = Support::makeNastyCatalogue();
    ConfigurationManager& m_manager = ConfigurationManager::getInstance();
};

} // namespace

TEST_F(FileTemplateTest, SaysNothingUntilItIsUncommented) {
    expectDefaults(makeTemplate(m_catalogue), 0);
}

TEST_F(FileTemplateTest, UncommentedWholeItSaysTheDefaults) {
    const std::string text = uncommented(makeTemplate(m_catalogue));
    constexpr std::size_t inTexts = 16 + 2 + 1;
    constexpr std::size_t inNumbers = 9;
    constexpr std::size_t inNested = 2 + 2 + 2 + 1;
    expectDefaults(text, inTexts + inNumbers + inNested + 1);
}

TEST_F(FileTemplateTest, UncommentedItHoldsNumbersWithAllTheirDigits) {
    m_manager.setSystemAndUserConfigurationFile(
        m_directory.file("system.xml", uncommented(makeTemplate(m_catalogue))),
        m_directory.file("user.xml"));
    m_catalogue.registerObjects(m_manager);
    const auto numbers = m_manager.getConfigurationObject("Numbers--all");
    for (const char* const name : {"Int", "Unsigned", "Middle", "Third", "Least", "Most",
                                   "FloatMost", "FloatTenth", "Flag"}) {
        const ConfigurationValueBase& value = *numbers->getConfigurationValue(name);
        const std::unique_ptr<ConfigurationValueBase> fresh(value.clone());
        fresh->resetValue();
        EXPECT_TRUE(value.hasValue()) << name;
        EXPECT_TRUE(value.comapreValue(fresh.get())) << name;
    }
}

TEST_F(FileTemplateTest, LeavesOutWhatALoadDoesNotTake) {
    const std::string text = makeTemplate(m_catalogue);
    EXPECT_THAT(text, Not(HasSubstr("<Saved")));
    EXPECT_THAT(text, Not(HasSubstr("<Locked")));
    EXPECT_THAT(text, Not(HasSubstr("<Unloaded")));
}

TEST_F(FileTemplateTest, TellsOfWhatCannotBeInAComment) {
    const std::string text = makeTemplate(m_catalogue);
    EXPECT_THAT(text,
                HasSubstr("<!-- It cannot be in a comment because of its name: two- -hyphens -->"));
    EXPECT_THAT(text, HasSubstr("<!-- No file can say its default: Infinite -->"));
}

TEST_F(FileTemplateTest, KeepsTheKeysOfSingleObjects) {
    EXPECT_THAT(makeTemplate(m_catalogue), HasSubstr("<Printer key=\"Hall &quot;1&quot;\">"));
}
