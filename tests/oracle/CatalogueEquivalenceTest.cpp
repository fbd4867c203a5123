// Objects that are made of an application's catalogue must be what the application's own are, for
// any classes and files: values, locks, and what the manager tells of them.

#include "GeneratedApplication.h"

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationManager.h>
#include <ObjectState.h>
#include <TestSupport.h>

#include <gmock/gmock.h>

#include <fstream>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Orvant {

// For the messages of the tests.
static void PrintTo(const ConfigurationOrigin& origin, std::ostream* out) {
    *out << origin.path << " = " << origin.value << ", layer " << origin.layer << ", locked by \""
         << origin.lockedBy << "\", line " << origin.line;
}
static void PrintTo(const ConfigurationProblem& problem, std::ostream* out) {
    *out << problem.line << ':' << problem.column << ' ' << problem.path << ": " << problem.text;
}

namespace {

using Support::oneIn;
using Support::Random;
using Support::Registered;

auto membersOf(const ConfigurationOrigin& origin) {
    return std::tie(origin.path, origin.value, origin.layer, origin.locked, origin.lockedBy,
                    origin.systemValue, origin.userValue, origin.line, origin.systemLine,
                    origin.userLine, origin.lockLine);
}

auto membersOf(const ConfigurationProblem& problem) {
    return std::tie(problem.kind, problem.line, problem.column, problem.path, problem.text);
}

template <typename Record>
void expectSame(const std::vector<Record>& first, const std::vector<Record>& second) {
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size(); ++i)
        ASSERT_EQ(membersOf(first[i]), membersOf(second[i]))
            << testing::PrintToString(first[i]) << '\n'
            << testing::PrintToString(second[i]);
}

/// What the objects of a manager hold, by registration.
std::vector<std::pair<std::string, Support::ObjectState>> statesOf(ConfigurationManager& manager) {
    std::vector<std::pair<std::string, Support::ObjectState>> states;
    for (const auto& [object, name, key] : manager.getRegistrations())
        states.emplace_back(name + '[' + key.value_or("") + ']', Support::stateOf(*object));
    return states;
}

class CatalogueEquivalenceTest : public testing::TestWithParam<unsigned int> {
protected:
    ~CatalogueEquivalenceTest() override { m_manager.reset(); }

    void setFiles(bool areTwo) {
        m_manager.reset();
        if (areTwo)
            m_manager.setSystemAndUserConfigurationFile(m_system, m_user);
        else
            m_manager.setConfigurationFile(m_user);
    }
    ConfigurationCatalogue throughFile(const ConfigurationCatalogue& catalogue) const {
        std::ofstream stream(m_catalogue.toNativeString());
        catalogue.write(stream);
        stream.close();
        return ConfigurationCatalogue::read(m_catalogue);
    }

    const Support::TemporaryDirectory m_directory;
    const FileName m_system = m_directory.file("system.xml");
    const FileName m_user = m_directory.file("user.xml");
    const FileName m_catalogue = m_directory.file("catalogue.xml");
    ConfigurationManager& m_manager = ConfigurationManager::getInstance();
};

} // namespace

TEST_P(CatalogueEquivalenceTest, TellsWhatTheApplicationHolds) {
    for (unsigned int seed = GetParam() * 100; seed < (GetParam() + 1) * 100; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const std::vector<Registered> application = Support::generateApplication(random);
        const bool areTwo = !oneIn(5, random);
        Support::writeFile(m_system, Support::generateFile(application, random));
        Support::writeFile(m_user, Support::generateFile(application, random));
        m_manager.setValidVersionList({"1.0"});

        setFiles(areTwo);
        Support::registerAll(application, m_manager);
        const auto states = statesOf(m_manager);
        const auto origins = m_manager.explain();
        const auto problems = m_manager.getLoadProblems();

        const ConfigurationCatalogue catalogue = throughFile(Support::catalogueOf(application));
        setFiles(areTwo);
        catalogue.registerObjects(m_manager);
        const auto described = statesOf(m_manager);
        ASSERT_EQ(described.size(), states.size());
        for (std::size_t i = 0; i < states.size(); ++i) {
            ASSERT_EQ(described[i].first, states[i].first);
            ASSERT_THAT(described[i].second, testing::ContainerEq(states[i].second));
        }
        expectSame(m_manager.explain(), origins);
        expectSame(m_manager.getLoadProblems(), problems);
        if (HasFatalFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, CatalogueEquivalenceTest, testing::Range(0U, 10U));

} // namespace Orvant
