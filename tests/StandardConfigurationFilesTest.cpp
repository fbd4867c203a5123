#include <ConfigurationFramework/StandardConfigurationFiles.h>

#include <TestSupport.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>

#include <pwd.h>
#include <unistd.h>

namespace Orvant {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

/// Has an environment of its own for each test.
class StandardFiles : public testing::Test {
protected:
    StandardFiles() {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "HOME"}) {
            const char* const value = std::getenv(name);
            m_former[name] = value == nullptr ? std::nullopt : std::optional<std::string>(value);
            unsetenv(name);
        }
    }
    ~StandardFiles() override {
        for (const auto& [name, value] : m_former)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
    static void set(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }
    std::string folder(const std::string& name) const {
        return (m_directory.path() / name).string();
    }
    /// Makes the file of an application in a folder.
    std::string putFile(const std::string& name, const std::string& application) const {
        const std::string path = folder(name) + '/' + application;
        std::filesystem::create_directories(FileName(path).toPath());
        const std::string file = path + '/' + application + ".xml";
        Support::writeFile(file, "");
        return file;
    }
    static std::string systemFile(const std::string& application = "planner") {
        return standardConfigurationFiles(application).system.toString();
    }
    static std::string userFile(const std::string& application = "planner") {
        return standardConfigurationFiles(application).user.toString();
    }

    const Support::TemporaryDirectory m_directory;

private:
    std::map<std::string, std::optional<std::string>> m_former;
};

TEST_F(StandardFiles, AreInTheFoldersOfTheVariables) {
    set("XDG_CONFIG_HOME", "/home/anna/settings");
    set("XDG_CONFIG_DIRS", "/etc/company");
    EXPECT_EQ("/home/anna/settings/planner/planner.xml", userFile());
    EXPECT_EQ("/etc/company/planner/planner.xml", systemFile());
}

TEST_F(StandardFiles, HaveUsualPlacesWithoutVariables) {
    set("HOME", "/home/anna");
    EXPECT_EQ("/home/anna/.config/planner/planner.xml", userFile());
    EXPECT_EQ("/etc/xdg/planner/planner.xml", systemFile());
    set("XDG_CONFIG_HOME", "");
    set("XDG_CONFIG_DIRS", "");
    EXPECT_EQ("/home/anna/.config/planner/planner.xml", userFile());
    EXPECT_EQ("/etc/xdg/planner/planner.xml", systemFile());
}

TEST_F(StandardFiles, TheFirstFolderThatHasTheSystemFileCounts) {
    const std::string second = putFile("second", "planner");
    const std::string third = putFile("third", "planner");
    set("XDG_CONFIG_DIRS", folder("first") + ':' + folder("second") + ':' + folder("third"));
    EXPECT_EQ(second, systemFile());
    EXPECT_EQ(folder("first") + "/other/other.xml", systemFile("other"));
    const std::string first = putFile("first", "planner");
    EXPECT_EQ(first, systemFile());
}

TEST_F(StandardFiles, PathsThatAreNotAbsoluteAreIgnored) {
    set("HOME", "/home/anna");
    set("XDG_CONFIG_HOME", "settings");
    set("XDG_CONFIG_DIRS", "etc:./etc:~/etc:/etc/company");
    EXPECT_EQ("/home/anna/.config/planner/planner.xml", userFile());
    EXPECT_EQ("/etc/company/planner/planner.xml", systemFile());
    set("XDG_CONFIG_DIRS", "etc:./etc");
    EXPECT_EQ("/etc/xdg/planner/planner.xml", systemFile());
}

TEST_F(StandardFiles, EmptyEntriesAreIgnored) {
    const std::string file = putFile("last", "planner");
    set("XDG_CONFIG_DIRS", "::" + folder("missing") + "::" + folder("last") + ":");
    EXPECT_EQ(file, systemFile());
    EXPECT_EQ(folder("missing") + "/other/other.xml", systemFile("other"));
    set("XDG_CONFIG_DIRS", ":");
    EXPECT_EQ("/etc/xdg/planner/planner.xml", systemFile());
}

TEST_F(StandardFiles, WithoutAHomeTheUserDatabaseTellsIt) {
    const passwd* const entry = getpwuid(geteuid());
    ASSERT_NE(nullptr, entry);
    const std::string expected = std::string(entry->pw_dir) + "/.config/planner/planner.xml";
    EXPECT_EQ(expected, userFile());
    set("HOME", "relative");
    EXPECT_EQ(expected, userFile());
}

TEST_F(StandardFiles, NamesAreUtf8) {
    const std::string name = "Gr\xc3\xb6\xc3\x9f"
                             "enplaner";
    const std::string file = putFile("\xe8\xa8\xad\xe5\xae\x9a", name);
    set("XDG_CONFIG_DIRS", folder("\xe8\xa8\xad\xe5\xae\x9a"));
    set("XDG_CONFIG_HOME", "/home/J\xc3\xbcrgen");
    EXPECT_EQ(file, systemFile(name));
    EXPECT_EQ("/home/J\xc3\xbcrgen/" + name + '/' + name + ".xml", userFile(name));
}

TEST_F(StandardFiles, NamesMayHaveDotsAndBlanks) {
    set("XDG_CONFIG_HOME", "/home/anna");
    EXPECT_EQ("/home/anna/My Planner 2.1/My Planner 2.1.xml", userFile("My Planner 2.1"));
}

TEST_F(StandardFiles, NamesThatAreNoFoldersAreRefused) {
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("a/b"), std::string("/"),
          std::string("../etc"), std::string("a\0b", 3)})
        EXPECT_THAT([&] { standardConfigurationFiles(name); },
                    ThrowsMessage<std::invalid_argument>(HasSubstr("name of a folder")));
}

} // namespace
} // namespace Orvant
