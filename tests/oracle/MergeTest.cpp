// A merge into what another process wrote keeps what was changed here and what was written there,
// whatever the documents hold.

#include "RandomDocuments.h"
#include "RandomObjects.h"

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ManagerFixture.h>
#include <ObjectState.h>

#include <gtest/gtest.h>

#include <regex>

namespace Orvant {
namespace {

using Support::anyOf;
using Support::fewNames;
using Support::ObjectState;
using Support::Random;
using Support::TestObject;

class RandomMerge : public Support::ManagerFixture {
protected:
    ~RandomMerge() override { m_manager.setSaveMode(ConfigurationManager::InPlace); }

    /// A document that a writer printed: only then elements have the line breaks that they will
    /// have. Nothing is locked in it: what is locked where it cannot be read loads without its
    /// lock.
    std::string randomFile(Random& random) {
        static const std::regex no("'false'");
        const std::string document =
            Support::randomDocument("<Configuration version='1.0'>", random, 3);
        return ConfigWriter(FileName(), std::regex_replace(document, no, "'true'")).getAsString();
    }

    /// Starts an application with an object.
    std::shared_ptr<TestObject> load(const TestObject& object) {
        m_manager.reset();
        m_manager.setSaveMode(ConfigurationManager::Merge);
        useTwoFiles();
        const std::shared_ptr<TestObject> loaded(
            dynamic_cast<TestObject*>(object.createConfigurationObject()));
        return add(loaded);
    }
};

ObjectState writtenState(const ConfigurationObject& object) {
    return Support::stateOf(object, Support::writtenDigits);
}

TEST_F(RandomMerge, KeepsWhatWasChangedHereAndWrittenThere) {
    unsigned int changes = 0;
    for (unsigned int seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const std::string system = randomFile(random);
        const std::string mine = randomFile(random);
        const std::string theirs = randomFile(random);
        const auto object = Support::randomPlainObject(anyOf(fewNames, random), random);
        // What the system's file does not hold the user's may lock.
        Support::writeFile(m_systemFile, system);
        AdvancedConfigReader reader;
        reader.addFileSource(m_systemFile, {}, AdvancedConfigReader::System, {"1.0"});
        const std::unique_ptr<ConfigurationObject> found(object->createConfigurationObject());
        if (reader.getClassContents(object->getName(), *found) ==
            ConfigurationAccessResult::Failure)
            continue;
        Support::writeFile(m_userFile, theirs);
        const ObjectState written = writtenState(*load(*object));
        Support::writeFile(m_userFile, mine);
        const auto changed = load(*object);
        const ObjectState before = writtenState(*changed);
        Support::setRandomUnlockedValues(*changed, random);
        const ObjectState after = writtenState(*changed);
        ObjectState expected = written;
        for (auto& [path, state] : expected)
            if (after.at(path) != before.at(path)) {
                state.text = after.at(path).text;
                ++changes;
            }
        Support::writeFile(m_userFile, theirs);
        const std::string trace = "seed " + std::to_string(seed) + ", object " + object->getName() +
                                  "\n" + system + "\nloaded:\n" + mine + "\nwritten meanwhile:\n" +
                                  theirs;
        ASSERT_TRUE(m_manager.saveConfiguration("1.0")) << m_manager.getSaveReport().text << trace;
        const std::string merged = Support::readFile(m_userFile);
        ASSERT_EQ(expected, writtenState(*load(*object)))
            << "before: " << testing::PrintToString(before) << '\n'
            << trace << "\nmerged:\n"
            << merged;
    }
    EXPECT_GT(changes, 300U) << "too few changes to say much";
}

} // namespace
} // namespace Orvant
