// Whatever is done with a manager and its files, its objects, the files and its answers must be
// those of a literal one that parses the files anew each time.

#include "LiteralManager.h"
#include "RandomClass.h"
#include "RandomDocuments.h"
#include "RandomObjects.h"

#include <ConfigurationFramework/ConfigWriter.h>
#include <TestSupport.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

namespace Orvant {
namespace {

namespace fs = std::filesystem;

using Support::anyOf;
using Support::fewKeys;
using Support::fewNames;
using Support::LiteralManager;
using Support::oneIn;
using Support::Random;
using Support::RandomClass;

const std::vector<std::string> fileNames = {"system.xml", "user.xml", "single.xml", "other.xml"};

/// @return the document with some elements locked
std::string withLocks(std::string document, Random& random) {
    for (auto at = document.find('<', 1); at != document.npos; at = document.find('<', at + 1))
        if (document[at + 1] != '/' && document[at + 1] != '!' && oneIn(10, random))
            document.insert(document.find_first_of(" />", at), " editable='false'");
    return document;
}

/// @return a document of the same size with other locks or digits
std::string changedInPlace(std::string document, Random& random) {
    const auto lock = document.find("false", random() % (document.size() + 1));
    if (lock != document.npos && oneIn(2, random))
        return document.replace(lock, 5, "FALSE");
    for (char& byte : document)
        if (byte >= '1' && byte <= '8' && oneIn(2, random))
            ++byte;
    return document;
}

/// A manager with its objects and files.
template <typename Manager>
class Side {
public:
    explicit Side(Manager manager) : m_manager(std::move(manager)) {}

    /// Has the manager forget everything, makes other files and registers the first objects.
    void start(Random& random) {
        m_manager.reset();
        m_objects.clear();
        m_classes.clear();
        for (std::size_t i = 0; i < 4; ++i)
            m_classes.push_back(Support::randomClass(fewNames[i], 1, random));
        for (const std::string& name : fileNames) {
            fs::remove(path(name));
            if (!oneIn(6, random))
                Support::writeFile(m_directory.file(name), randomFile(random));
        }
        m_manager.setValidVersionList({"1.0"});
        setFiles(random);
        addSome(random);
    }

    /// Does something at random.
    /// @return what was done, and the answer
    std::string step(Random& random) {
        switch (random() % 19) {
        case 0:
        case 1:
            return addOne(random);
        case 2:
            return addSome(random);
        case 3:
        case 4:
            return resetOne(random);
        case 5:
        case 6:
            return setValues(random);
        case 7:
        case 8:
        case 9:
            return save(random);
        case 10:
            return saveTwice(random);
        case 11:
            return saveToFile(random);
        case 12:
            return answer("system errors", m_manager.hasSystemConfigFileErrors()) +
                   answer("user errors", m_manager.hasUserConfigFileErrors());
        case 13:
            return oneIn(6, random) ? forget(random) : setFiles(random);
        case 14:
            return setVersions(random);
        case 15:
            m_manager.releaseMemory();
            return "give memory back\n";
        default:
            return changeFile(random);
        }
    }

    /// @return what was called of the objects since the last time, and all their states
    std::string takeRecord() {
        std::string record = std::exchange(m_calls, "");
        for (const auto& object : m_objects)
            record += "state " + describeObject(*object) + '\n';
        return record;
    }

    /// @return all files
    std::string files() const {
        std::string all;
        for (const std::string& name : fileNames) {
            all += "---- " + name;
            if (fs::is_symlink(path(name)))
                all += " -> " + fs::read_symlink(path(name)).string();
            all += fs::exists(path(name)) ? ":\n" + Support::readFile(m_directory.file(name)) + '\n'
                                          : " is missing\n";
        }
        return all;
    }

private:
    fs::path path(const std::string& name) const { return m_directory.path() / name; }
    FileName anyFile(Random& random) const { return m_directory.file(anyOf(fileNames, random)); }

    static std::string answer(const std::string& question, bool is) {
        return question + (is ? ": yes\n" : ": no\n");
    }

    static std::string version(Random& random) { return oneIn(6, random) ? "2.0" : "1.0"; }

    /// @return a document of what the classes write
    std::string fileOfClasses(Random& random) {
        ConfigWriter writer(version(random));
        for (const auto& definition : m_classes) {
            if (oneIn(4, random))
                continue;
            RandomClass object(definition);
            Support::setRandomValues(object, random);
            if (oneIn(4, random))
                writer.putClassContents(definition->name, anyOf(fewKeys, random), object, "");
            else
                writer.putClassContents(definition->name, object, "");
        }
        return withLocks(writer.getAsString(), random);
    }

    std::string randomFile(Random& random) {
        const auto kind = random() % 24;
        if (kind > 8)
            return fileOfClasses(random);
        const std::string root = kind == 0   ? "<Other version='1.0'>"
                                 : kind == 1 ? "<Configuration version='2.0'>"
                                             : "<Configuration version='1.0'>";
        const std::string document = Support::randomDocument(root, random, 6);
        return kind == 2 ? "" : kind == 3 ? document.substr(0, document.size() / 2) : document;
    }

    std::string setFiles(Random& random) {
        const bool isUsual = !oneIn(4, random);
        if (oneIn(4, random)) {
            m_manager.setConfigurationFile(isUsual ? m_directory.file("single.xml")
                                                   : anyFile(random));
            return "one file\n";
        }
        const FileName system = isUsual ? m_directory.file("system.xml") : anyFile(random);
        const FileName user = isUsual ? m_directory.file("user.xml") : anyFile(random);
        m_manager.setSystemAndUserConfigurationFile(system, user);
        return "system " + system.toString().substr(m_directory.path().string().size()) +
               " and user " + user.toString().substr(m_directory.path().string().size()) + '\n';
    }

    std::string forget(Random& random) {
        m_manager.reset();
        return oneIn(2, random) ? "reset\n" : "reset, " + setFiles(random);
    }

    std::string setVersions(Random& random) {
        static const std::vector<std::list<std::string>> lists = {
            {"1.0"}, {"1.0"}, {"1.0", "2.0"}, {"2.0"}, {}};
        const std::list<std::string>& versions = anyOf(lists, random);
        m_manager.setValidVersionList(versions);
        return testing::PrintToString(versions) + " are valid\n";
    }

    ConfigurationRegistration randomRegistration(Random& random) {
        const auto definition = oneIn(6, random)
                                    ? Support::randomClass(anyOf(fewNames, random), 1, random)
                                    : anyOf(m_classes, random);
        const std::string name = oneIn(6, random) ? anyOf(fewNames, random) : definition->name;
        const auto object = std::make_shared<RandomClass>(definition);
        object->watch([this, number = m_objects.size()](const std::string& call) {
            m_calls += std::to_string(number) + ' ' + call + '\n';
        });
        m_objects.push_back(object);
        if (oneIn(6, random))
            (oneIn(2, random) ? object->onLoad
                              : object->onSignal) = [this, later = Random(random())]() mutable {
                m_calls += "meanwhile: " + act(later);
            };
        if (oneIn(3, random))
            return {object, name, anyOf(fewKeys, random)};
        return {object, name};
    }

    static std::string describe(const ConfigurationRegistration& registration) {
        return ' ' + registration.name + '[' + registration.key.value_or("no key") + "]\n";
    }

    /// What an object does while it is loaded.
    std::string act(Random& random) {
        switch (random() % 5) {
        case 0:
            return addOne(random);
        case 1:
            return setFiles(random);
        case 2:
            return setVersions(random);
        default:
            return save(random);
        }
    }

    std::string addOne(Random& random) {
        const auto registration = randomRegistration(random);
        const auto& [object, name, key] = registration;
        if (key)
            m_manager.addConfigurationObject(object, name, *key);
        else
            m_manager.addConfigurationObject(object, name);
        return "add" + describe(registration);
    }

    std::string addSome(Random& random) {
        std::vector<ConfigurationRegistration> registrations;
        std::string done = "add at once:\n";
        for (auto count = 1 + random() % 4; count > 0; --count) {
            registrations.push_back(randomRegistration(random));
            done += describe(registrations.back());
        }
        m_manager.addConfigurationObjects(registrations);
        return done;
    }

    std::string resetOne(Random& random) {
        const std::string& name = fewNames[random() % 4];
        const std::string& key = anyOf(fewKeys, random);
        const bool fromUserFile = oneIn(2, random);
        if (oneIn(4, random))
            m_manager.resetConfigurationObject(name, key, fromUserFile);
        else
            m_manager.resetConfigurationObject(name, fromUserFile);
        return answer("reset " + name + " or its " + key + " from the user's", fromUserFile);
    }

    std::string setValues(Random& random) {
        if (!m_objects.empty())
            Support::setRandomValues(*anyOf(m_objects, random), random);
        return "set values\n";
    }

    std::string save(Random& random) {
        return answer("save", m_manager.saveConfiguration(version(random)));
    }

    std::string saveTwice(Random& random) {
        const std::string first = save(random);
        return first + save(random);
    }

    std::string saveToFile(Random& random) {
        const FileName file = anyFile(random);
        return answer("save to a file",
                      m_manager.saveConfigurationToFile(file.toString(), version(random)));
    }

    std::string changeFile(Random& random) {
        const std::string& name = fileNames[random() % 3];
        const FileName file = m_directory.file(name);
        const bool isThere = fs::exists(path(name));
        const auto kind = random() % 10;
        const std::string done = "change " + name + " in the way " + std::to_string(kind) + '\n';
        switch (kind) {
        case 0:
        case 1:
            Support::writeFile(file, randomFile(random));
            return done;
        case 2:
            Support::writeFile(m_directory.file("new"), randomFile(random));
            fs::rename(path("new"), path(name));
            return done;
        case 3:
            fs::remove(path(name));
            return done;
        case 4:
            if (isThere && oneIn(2, random))
                fs::resize_file(path(name), random() % (fs::file_size(path(name)) + 1));
            return done;
        case 5:
            return oneIn(3, random) ? done + link(name, anyOf(fileNames, random)) : done;
        default:
            break;
        }
        if (!isThere)
            return done;
        const auto time = fs::last_write_time(path(name));
        Support::writeFile(file, changedInPlace(Support::readFile(file), random));
        fs::last_write_time(path(name), time);
        return done;
    }

    std::string link(const std::string& name, const std::string& target) {
        if (name == target || fs::is_symlink(path(target)))
            return "no link\n";
        for (const std::string& other : fileNames) // no circles
            if (fs::is_symlink(path(other)) && fs::read_symlink(path(other)) == name)
                return "no link\n";
        fs::remove(path(name));
        fs::create_symlink(target, path(name));
        return "link to " + target + '\n';
    }

    Support::TemporaryDirectory m_directory;
    Manager m_manager;
    std::vector<std::shared_ptr<const Support::RandomClassDefinition>> m_classes;
    std::vector<std::shared_ptr<RandomClass>> m_objects;
    std::string m_calls;
};

/// Counts what must happen often enough to say much.
class Counts {
public:
    void add(const std::string& record) {
        for (auto& [part, needed, count] : m_counts)
            for (auto at = record.find(part); at != record.npos; at = record.find(part, at + 1))
                ++count;
    }
    void expectEnough() const {
        for (const auto& [part, needed, count] : m_counts)
            EXPECT_GT(count, needed) << part;
    }

private:
    struct Count {
        std::string part;
        unsigned int needed;
        unsigned int count = 0;
    };
    std::vector<Count> m_counts = {{" signalled", 1000},        {" repaired by", 200},
                                   {" differences saved", 800}, {"save: yes", 500},
                                   {"save: no", 200},           {"meanwhile", 100}};
};

TEST(ManagerEquivalence, HoldsWhateverIsDone) {
    const Support::LogCapture quiet("ConfigurationManager");
    Side<ConfigurationManager> side(ConfigurationManager::getInstance());
    Side<LiteralManager> oracle{LiteralManager()};
    Counts counts;
    for (unsigned int seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const Support::RunningProduct product(static_cast<int>(random() % 2));
        Random same = random;
        oracle.start(same);
        side.start(random);
        std::string trace = "seed " + std::to_string(seed) + ", done:\n";
        std::string files = oracle.files();
        for (int i = 0; i < 12; ++i) {
            random.discard(1);
            same = random;
            const std::string done = oracle.step(same);
            const std::string record = oracle.takeRecord();
            counts.add(done);
            counts.add(record);
            trace += done;
            const std::string all = trace + "files before:\n" + files;
            ASSERT_EQ(done, side.step(random)) << all;
            ASSERT_EQ(record, side.takeRecord()) << all;
            files = oracle.files();
            ASSERT_EQ(files, side.files()) << all;
        }
    }
    counts.expectEnough();
}

} // namespace
} // namespace Orvant
