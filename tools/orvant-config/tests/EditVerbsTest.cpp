#include "NastyCatalogue.h"

#include "CommandLine.h"
#include "catalogue/SettingIndex.h"
#include "verbs/Verbs.h"

#include <ConfigurationFramework/ConfigurationFileEditor.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <TestSupport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <sstream>

using namespace Orvant;
using namespace Orvant::Tool;
using testing::HasSubstr;

namespace {

using Texts = std::vector<std::string>;

/// A path with keys instead of "[*]".
std::string withKeys(std::string path, const std::string& key) {
    const std::string any = "[*]";
    for (std::size_t at = path.find(any); at != std::string::npos; at = path.find(any))
        path.replace(at, any.size(), key);
    return path;
}

/// What a value can be besides its default, as people write it.
Texts otherTexts(const ConfigurationValueDescription& value) {
    switch (value.type) {
    case ConfigurationValueBase::BoolValue:
        return {value.defaultTexts.front() == "true" ? "false" : "true"};
    case ConfigurationValueBase::IntValue:
        return {"7"};
    case ConfigurationValueBase::UnsignedIntValue:
        return {"4294967294"};
    case ConfigurationValueBase::DoubleValue:
    case ConfigurationValueBase::FloatValue:
        return {"2.5"};
    case ConfigurationValueBase::StringVectorValue:
        return {"one", "two"};
    default:
        return {"-other"};
    }
}

bool isAtOrIn(const std::string& path, const std::string& object) {
    return path == object || path.starts_with(object + '/');
}

class EditVerbsTest : public testing::Test {
protected:
    EditVerbsTest() {
        std::ostringstream stream;
        m_catalogue.write(stream);
        m_directory.file("nasty.xml", stream.str());
        m_manager.reset();
    }
    ~EditVerbsTest() override { m_manager.reset(); }

    ExitCode run(const Texts& arguments, bool isQuiet = true) const {
        const std::string catalogue = m_directory.file("nasty.xml").toString();
        const std::string system = m_directory.file("system.xml").toString();
        std::vector<const char*> words{"orvant-config", "-c",           catalogue.c_str(), "-s",
                                       system.c_str(),  "--color=never"};
        if (isQuiet)
            words.push_back("-q");
        for (const std::string& argument : arguments)
            words.push_back(argument.c_str());
        CommandLine commandLine;
        addSet(commandLine);
        addLock(commandLine);
        return static_cast<ExitCode>(commandLine.run(static_cast<int>(words.size()), words.data()));
    }
    void startSystemFile() const {
        m_directory.file("system.xml",
                         "<Configuration version=\"1.0\"><!--kept--></Configuration>");
    }
    /// Has the user's file say something else for everything, with keys of its own and those of the
    /// system file.
    void writeUserFile() const {
        ConfigurationFileEditor editor(m_directory.file("user.xml"), "1.0");
        for (const std::string key : {"K", "U"})
            for (const CatalogueItem& item : m_settings.items()) {
                if (item.value == nullptr)
                    continue;
                ConfigurationElementPath place;
                for (const PathStep& step : item.steps)
                    place.push_back({step.name, step.isKind ? std::optional(key) : step.key});
                const Texts texts = otherTexts(*item.value);
                if (item.value->isList())
                    editor.setItems(place, texts);
                else
                    editor.setText(place, item.value->fileTextOf(texts.front()));
            }
        ASSERT_EQ(editor.save().reason, ConfigurationSaveReport::Saved);
    }
    /// @return what the application holds, whose system file has no problems
    std::vector<ConfigurationOrigin> load() {
        m_manager.reset();
        m_manager.setSystemAndUserConfigurationFile(m_directory.file("system.xml"),
                                                    m_directory.file("user.xml"));
        m_catalogue.registerObjects(m_manager);
        for (const ConfigurationProblem& problem : m_manager.getLoadProblems())
            EXPECT_TRUE(problem.file.toString() != m_directory.file("system.xml").toString() ||
                        problem.path == "Numbers--all/Infinite") // no file can say its default
                << problem.path << ": " << problem.text;
        return m_manager.explain();
    }
    /// Checks that what is at a path or in it is locked, and nothing else.
    /// @param path with "[*]" for all keys
    void expectLocked(const std::string& path) {
        std::size_t locked = 0;
        for (const ConfigurationOrigin& origin : load()) {
            const bool isIn =
                std::ranges::any_of(std::array{"[K]", "[U]", ""}, [&](const char* key) {
                    return isAtOrIn(origin.path, withKeys(path, key));
                });
            if (origin.path == "Nested/Recent" && path == "Nested/Camera/Recent")
                continue; // reads the list of the other object, as long as the file has no other
            if (origin.path == "Nested/Locked" || origin.path == "Nested/Saved" ||
                origin.path.starts_with("Nested/Unloaded/"))
                continue; // locked by its class, or not loaded
            EXPECT_EQ(origin.locked, isIn) << origin.path;
            EXPECT_EQ(origin.layer != ConfigurationOrigin::User, isIn) << origin.path;
            locked += isIn ? 1 : 0;
        }
        EXPECT_NE(locked, 0U);
    }

    const Support::TemporaryDirectory m_directory;
    const ConfigurationCatalogue m_catalogue = Support::makeNastyCatalogue();
    const SettingIndex m_settings{m_catalogue};
    ConfigurationManager& m_manager = ConfigurationManager::getInstance();
};

} // namespace

TEST_F(EditVerbsTest, LocksOfAllSettingsAndObjectsHoldAgainstAUsersFile) {
    writeUserFile();
    for (const CatalogueItem& item : m_settings.items()) {
        if (!item.isLoaded || item.isLockedByClass)
            continue;
        for (const std::string key : {"[K]", ""}) { // without a key: what counts for "U", too
            const std::string path = withKeys(item.path, key);
            SCOPED_TRACE(path);
            startSystemFile();
            EXPECT_EQ(run({"lock", path}), ExitCode::Clean);
            expectLocked(key.empty() ? item.path : path);
            EXPECT_EQ(run({"unlock", path}), ExitCode::Clean);
            EXPECT_TRUE(std::ranges::none_of(load(), [](const ConfigurationOrigin& origin) {
                return origin.locked && origin.path != "Nested/Locked";
            }));
            EXPECT_THAT(Support::readFile(m_directory.file("system.xml")),
                        HasSubstr("<!--kept-->"));
        }
    }
}

TEST_F(EditVerbsTest, EverySettingCanBeSetAndUnset) {
    for (const CatalogueItem& item : m_settings.items()) {
        if (item.value == nullptr || !item.isLoaded || item.isLockedByClass)
            continue;
        const std::string path = withKeys(item.path, "[K]");
        SCOPED_TRACE(path);
        startSystemFile();
        Texts words{"set", path, "--"};
        const Texts texts = otherTexts(*item.value);
        words.insert(words.end(), texts.begin(), texts.end());
        EXPECT_EQ(run(words), ExitCode::Clean);
        const auto origins = load();
        const auto origin = std::ranges::find(origins, path, &ConfigurationOrigin::path);
        ASSERT_NE(origin, origins.end());
        EXPECT_EQ(origin->layer, ConfigurationOrigin::System);
        EXPECT_EQ(origin->systemValue, item.value->isList()
                                           ? "\"one\", \"two\""
                                           : item.value->fileTextOf(texts.front()));
        EXPECT_EQ(run({"unset", path}), ExitCode::Clean);
        for (const ConfigurationOrigin& left : load())
            EXPECT_EQ(left.systemValue, std::nullopt) << left.path;
    }
}

TEST_F(EditVerbsTest, ListsThatOthersReadAreTold) {
    startSystemFile();
    testing::internal::CaptureStdout();
    EXPECT_EQ(run({"lock", "Nested/Camera/Recent"}, false), ExitCode::Clean);
    EXPECT_EQ(run({"lock", "Nested/Recent"}, false), ExitCode::Clean);
    EXPECT_EQ(run({"lock", "Nested/Camera/Recent"}, false), ExitCode::Clean);
    const std::string printed = testing::internal::GetCapturedStdout();
    const std::string note = "; Nested/Recent, which the file does not say, is read from it, too";
    EXPECT_THAT(printed, HasSubstr(note));
    EXPECT_EQ(printed.find(note), printed.rfind(note));
}

TEST_F(EditVerbsTest, WhatNoLoadTakesIsRefused) {
    startSystemFile();
    const std::string before = Support::readFile(m_directory.file("system.xml"));
    for (const char* const path : {"Nested/Saved", "Nested/Locked", "Nested/Unloaded/Text"}) {
        EXPECT_EQ(run({"set", path, "x"}), ExitCode::Usage) << path;
        EXPECT_EQ(run({"lock", path}), ExitCode::Usage) << path;
    }
    EXPECT_EQ(run({"unlock", "Nested/Locked"}), ExitCode::Findings);
    for (const char* const number : {"-1", "4294967296", "1.5", ""})
        EXPECT_EQ(run({"set", "Numbers--all/Unsigned", number}), ExitCode::Usage) << number;
    EXPECT_EQ(run({"set", "Numbers--all/Int", "-5"}), ExitCode::Clean);
    EXPECT_EQ(run({"unset", "Numbers--all"}), ExitCode::Clean);
    EXPECT_EQ(Support::withoutFormatting(Support::readFile(m_directory.file("system.xml"))),
              Support::withoutFormatting(before));
}
