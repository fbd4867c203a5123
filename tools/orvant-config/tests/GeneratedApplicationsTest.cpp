// What the tool explains must be what the application holds, for any classes and files.

#include "CommandLine.h"
#include "catalogue/SettingIndex.h"
#include "verbs/Verbs.h"

#include <oracle/GeneratedApplication.h>

#include <ConfigurationFramework/ConfigurationValue.h>
#include <ConfigurationFramework/SettingVisitor.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace Orvant {
namespace {

using Support::oneIn;
using Support::Random;
using Support::Registered;

/// A setting as an application holds it.
struct Held {
    std::string path;
    std::string value;
    bool isLocked;

    auto operator<=>(const Held&) const = default;
};

void PrintTo(const Held& held, std::ostream* out) {
    *out << held.path << " = " << held.value << (held.isLocked ? ", locked" : "");
}

/// Collects what an object holds.
class Holdings : public SettingVisitor {
public:
    Holdings(std::string path, bool isLocked, std::vector<Held>& held)
        : m_path(std::move(path)), m_locks{isLocked}, m_held(held) {}

    void visitValue(ConfigurationValueBase& value) override {
        m_held.push_back(
            {m_path + '/' + value.getName(), textOf(value), m_locks.back() || !value.isEditable()});
    }
    bool enterObject(ConfigurationObject& child, const std::optional<std::string>& key) override {
        m_lengths.push_back(m_path.size());
        m_path += '/' + child.getName() + (key ? '[' + *key + ']' : "");
        return enterInline(child);
    }
    void leaveObject(ConfigurationObject& child) override {
        m_path.resize(m_lengths.back());
        m_lengths.pop_back();
        leaveInline(child);
    }
    bool enterInline(ConfigurationObject& child) override {
        m_locks.push_back(m_locks.back() || !child.isEditable());
        return true;
    }
    void leaveInline(ConfigurationObject& /*child*/) override { m_locks.pop_back(); }

private:
    template <typename T>
    static const T& valueOf(const ConfigurationValueBase& value) {
        return dynamic_cast<const ConfigurationValue<T>&>(value).getValue();
    }
    /// As files hold it.
    static std::string textOf(const ConfigurationValueBase& value) {
        std::ostringstream text;
        switch (value.getValueType()) {
        case ConfigurationValueBase::BoolValue:
            return valueOf<bool>(value) ? "true" : "false";
        case ConfigurationValueBase::IntValue:
            text << valueOf<int>(value);
            break;
        case ConfigurationValueBase::UnsignedIntValue:
            text << static_cast<int>(valueOf<unsigned int>(value));
            break;
        case ConfigurationValueBase::DoubleValue:
            text << valueOf<double>(value);
            break;
        case ConfigurationValueBase::FloatValue:
            text << static_cast<double>(valueOf<float>(value));
            break;
        case ConfigurationValueBase::StringVectorValue:
            for (const std::string& item : valueOf<std::vector<std::string>>(value))
                text << (text.str().empty() ? "\"" : ", \"") << item << '"';
            break;
        default:
            return valueOf<std::string>(value);
        }
        return text.str();
    }

    std::string m_path;
    std::vector<std::size_t> m_lengths;
    std::vector<bool> m_locks;
    std::vector<Held>& m_held;
};

/// What an application holds that has loaded the files, in the order of paths.
std::vector<Held> held(const std::vector<Registered>& application, ConfigurationManager& manager) {
    Support::registerAll(application, manager);
    std::vector<Held> all;
    for (const auto& [object, name, key] : manager.getRegistrations()) {
        Holdings holdings(name + (key ? '[' + *key + ']' : ""), !object->isEditable(), all);
        visitSettings(*object, holdings);
    }
    std::ranges::sort(all);
    return all;
}

/// What `orvant-config explain --json` says, in the order of paths; values only.
std::vector<Held> explained(std::vector<const char*> arguments) {
    Tool::CommandLine commandLine;
    Tool::addExplain(commandLine);
    arguments.insert(arguments.begin(), "orvant-config");
    arguments.insert(arguments.end(), {"explain", "--json"});
    testing::internal::CaptureStdout();
    const int code = commandLine.run(static_cast<int>(arguments.size()), arguments.data());
    const std::string printed = testing::internal::GetCapturedStdout();
    if (code != 0)
        return {};
    std::vector<Held> all;
    for (const auto& setting : nlohmann::json::parse(printed))
        all.push_back({setting["path"], setting["value"], setting["locked"]});
    std::ranges::sort(all);
    return all;
}

/// Removes what files hold and no object does: default entries of kinds, and the keys that a user
/// removed.
void removeUnheld(std::vector<Held>& explained, const std::vector<Held>& held,
                  const Tool::SettingIndex& settings) {
    const auto isDefaultEntry = [&](const std::string& path) {
        const auto found = settings.find(path);
        return found && std::ranges::any_of(found->steps, [](const Tool::PathStep& step) {
                   return step.isKind && !step.key;
               });
    };
    std::erase_if(explained, [&](const Held& said) {
        const bool isUnheld =
            isDefaultEntry(said.path) || said.path.find("/Removed") != std::string::npos;
        return isUnheld &&
               std::ranges::none_of(held, [&](const Held& one) { return one.path == said.path; });
    });
}

class GeneratedApplicationsTest : public testing::TestWithParam<unsigned int> {};

} // namespace

TEST_P(GeneratedApplicationsTest, HoldWhatIsExplained) {
    const Support::TemporaryDirectory directory;
    const FileName system = directory.file("system.xml");
    const FileName user = directory.file("user.xml");
    const FileName file = directory.file("catalogue.xml");
    auto& manager = ConfigurationManager::getInstance();
    std::size_t settings = 0;
    for (unsigned int seed = GetParam() * 100; seed < (GetParam() + 1) * 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const std::vector<Registered> application = Support::generateApplication(random);
        Support::writeFile(system, Support::generateFile(application, random));
        Support::writeFile(user, Support::generateFile(application, random));
        const ConfigurationCatalogue catalogue = Support::catalogueOf(application);
        std::ofstream stream(file.toNativeString());
        catalogue.write(stream);
        stream.close();

        manager.reset();
        manager.setValidVersionList({"1.0"});
        manager.setSystemAndUserConfigurationFile(system, user);
        const bool areUsable =
            !manager.hasSystemConfigFileErrors() && !manager.hasUserConfigFileErrors();
        const std::vector<Held> expected = held(application, manager);
        std::vector<Held> found =
            explained({"-c", file.toString().c_str(), "-s", system.toString().c_str(), "-u",
                       user.toString().c_str()});
        if (!areUsable) {
            EXPECT_TRUE(found.empty());
            continue;
        }
        removeUnheld(found, expected, Tool::SettingIndex(catalogue));
        ASSERT_THAT(found, testing::ContainerEq(expected));
        settings += found.size();
    }
    manager.reset();
    EXPECT_GT(settings, 500U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, GeneratedApplicationsTest, testing::Range(0U, 10U));

} // namespace Orvant
