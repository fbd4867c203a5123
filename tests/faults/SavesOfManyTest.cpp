#include <faults/FaultSupport.h>

#include <ConfigurationFramework/SimpleConfigReader.h>

#include <gmock/gmock.h>

#include <chrono>
#include <list>
#include <random>
#include <stdexcept>
#include <tuple>

namespace Orvant {
namespace {

using Support::Process;
using Support::TestObject;
using testing::HasSubstr;
using testing::Not;

/// A place in the file that only one process changes: an object, perhaps with a key, and a value,
/// perhaps of a child.
struct Place {
    ConfigurationRegistration registration;
    std::string child;
    std::string value;

    ConfigurationValue<int>& get() const {
        const auto& object = dynamic_cast<const TestObject&>(*registration.object);
        return (child.empty() ? object : object.child(child)).value<int>(value);
    }
};

/// What a process registers, and where it changes values.
struct Settings {
    std::vector<ConfigurationRegistration> registrations;
    std::vector<Place> places;
};

/// Several processes that save one file with Merge, each its own object and common ones.
class SavesOfMany : public Support::FaultFixture,
                    public testing::WithParamInterface<std::tuple<int, bool>> {
protected:
    SavesOfMany() {
        Support::writeFile(m_user, Support::document("<!-- mine --><Foreign><x>1</x></Foreign>"));
        if (m_twoFiles)
            Support::writeFile(m_system,
                               Support::document("<Common><v0>1</v0><v1>1</v1><locked editable="
                                                 "\"false\">5</locked></Common>"));
    }

    /// An object with a value and a child for each process, and one value that may be locked.
    std::shared_ptr<TestObject> makeObject(const std::string& name) const {
        return TestObject::make(name, [processes = m_processes](TestObject& object) {
            auto* const part = new TestObject("Part");
            for (int i = 0; i < processes; ++i) {
                object.add("v" + std::to_string(i), 0);
                part->add("v" + std::to_string(i), 0);
                auto* const child = new TestObject("Child" + std::to_string(i));
                child->add("v", 0);
                object.addChild(child);
            }
            object.addChild(part).add("locked", 0);
        });
    }

    Settings makeSettings(int process) const {
        const std::string number = std::to_string(process);
        Settings made{{{makeObject("Own"), "Own" + number},
                       {makeObject("Common"), "Common"},
                       {makeObject("Machine"), "Machine", number},
                       {makeObject("Machine"), "Machine", "all"}},
                      {}};
        for (const ConfigurationRegistration& registration : made.registrations) {
            made.places.push_back({registration, "", "v" + number});
            made.places.push_back({registration, "Part", "v" + number});
            made.places.push_back({registration, "Child" + number, "v"});
        }
        return made;
    }

    /// The values that a process has changed its places to by a save, about half of them each time.
    static void change(const Settings& settings, std::mt19937& random, int save) {
        for (const Place& place : settings.places)
            if (random() % 2 == 0)
                place.get().setValue(1000 + save);
    }

    /// @return a place where the file does not hold what it has to, empty when there is none
    std::string findLost(const Settings& expected, int process) const {
        SimpleConfigReader reader(m_user, "", {"1.0"});
        const Settings found = makeSettings(process);
        for (const auto& [object, name, key] : found.registrations)
            key ? reader.findAndGetClassContents(name, *key, *object)
                : reader.findAndGetClassContents(name, *object);
        for (std::size_t i = 0; i < found.places.size(); ++i) {
            const Place& place = found.places[i];
            const int value = expected.places[i].get().getValue();
            if (place.get().getValue() != value)
                return place.registration.name + "[" + place.registration.key.value_or("") + "]/" +
                       place.child + "/" + place.value + " is " +
                       std::to_string(place.get().getValue()) + ", not " + std::to_string(value);
        }
        return "";
    }

    /// What each process does.
    void saveAgainAndAgain(int process) {
        start(ConfigurationManager::Merge, m_twoFiles);
        m_manager.setLockTimeout(std::chrono::minutes(2));
        const Settings settings = makeSettings(process);
        m_manager.addConfigurationObjects(settings.registrations);
        std::mt19937 random(static_cast<unsigned int>(process));
        for (int save = 1; save <= m_saves; ++save) {
            change(settings, random, save);
            if (!m_manager.saveConfiguration("1.0"))
                throw std::runtime_error(m_manager.getSaveReport().text);
            if (const std::string lost = findLost(settings, process); !lost.empty())
                throw std::runtime_error("lost by process " + std::to_string(process) +
                                         " after save " + std::to_string(save) + ": " + lost);
        }
    }

    const int m_processes = std::get<0>(GetParam());
    const int m_saves = 200; ///< of each process
    const bool m_twoFiles = std::get<1>(GetParam());
};

std::string nameOfCase(const testing::TestParamInfo<SavesOfMany::ParamType>& info) {
    const auto& [processes, twoFiles] = info.param;
    return std::to_string(processes) + "Processes" + (twoFiles ? "TwoFiles" : "OneFile");
}

INSTANTIATE_TEST_SUITE_P(, SavesOfMany, testing::Combine(testing::Values(2, 4), testing::Bool()),
                         nameOfCase);

TEST_P(SavesOfMany, LoseNothing) {
    std::list<Process> running;
    for (int process = 0; process < m_processes; ++process)
        running.emplace_back([=, this] { saveAgainAndAgain(process); });
    for (Process& process : running)
        EXPECT_TRUE(process.succeeds());
    for (int process = 0; process < m_processes; ++process) {
        const Settings expected = makeSettings(process);
        std::mt19937 random(static_cast<unsigned int>(process));
        for (int save = 1; save <= m_saves; ++save)
            change(expected, random, save);
        EXPECT_EQ("", findLost(expected, process));
    }
    const std::string user = Support::readFile(m_user);
    EXPECT_THAT(user, HasSubstr("<!-- mine -->"));
    EXPECT_THAT(user, HasSubstr("<Foreign>"));
    EXPECT_THAT(user, Not(HasSubstr("<locked>")));
    EXPECT_EQ(std::vector<std::string>{"settings.xml"}, besideUserFile());
}

} // namespace
} // namespace Orvant
