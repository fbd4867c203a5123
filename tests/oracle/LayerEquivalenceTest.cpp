// The layered reader must answer as literal readers in layers do, and load objects as the table of
// ConfigurationObject::overwriteInvalidConfigValues() tells.

#include "LayeredDomReader.h"
#include "RandomDocuments.h"
#include "RandomObjects.h"
#include "ReaderOperations.h"

#include <ObjectState.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <sstream>

namespace Orvant {
namespace {

using Support::anyOf;
using Support::DomConfigReader;
using Support::fewNames;
using Support::LayeredDomReader;
using Support::ObjectState;
using Support::oneIn;
using Support::Random;
using Support::randomDocument;
using Support::stateOf;
using Support::TestObject;

std::string drive(ConfigReader& reader, Random random) {
    std::ostringstream record;
    record.precision(Support::allDigits);
    for (int i = 0; i < 10; ++i)
        Support::askAtRandom(reader, random, record);
    return record.str();
}

TEST(LayerEquivalence, HoldsForQuestions) {
    for (unsigned int seed = 1; seed <= 1000; ++seed) {
        Random random(seed);
        AdvancedConfigReader reader;
        LayeredDomReader oracle;
        std::string trace = "seed " + std::to_string(seed);
        for (const auto priority : {AdvancedConfigReader::Default, AdvancedConfigReader::System,
                                    AdvancedConfigReader::User, AdvancedConfigReader::System}) {
            if (oneIn(3, random))
                continue;
            const std::string document = randomDocument("<Configuration>", random);
            const std::list<std::string> path(oneIn(3, random) ? 1 : 0, anyOf(fewNames, random));
            trace += '\n' + std::to_string(priority) + '\n' + document;
            ASSERT_EQ(oracle.addSource(document, path, priority),
                      reader.addStringSource(document, path, priority, {"1"}))
                << trace;
        }
        random.discard(1);
        const std::string expected = drive(oracle, random);
        ASSERT_EQ(expected, drive(reader, random)) << trace;
    }
}

/// Adds what the table tells: what the system locks is the system's, and so is what the user's
/// document does not tell.
/// @param system the object as the system's document alone loads it
/// @param user   the object as the user's document alone loads it
void addLayered(const ConfigurationObject& system, const ConfigurationObject& user,
                const std::string& path, bool locked, ObjectState& states) {
    locked = locked || !system.isEditable();
    const std::string prefix = path + system.getName() + '/';
    auto users = user.beginValueIterator();
    for (auto value = system.beginValueIterator(); value != system.endValueIterator();
         ++value, ++users) {
        const bool isLocked = locked || !(*value)->isEditable();
        const ConfigurationValueBase& decides =
            !isLocked && (*users)->hasValue() ? **users : **value;
        states[prefix + (*value)->getName()] = {Support::textOf(decides, Support::allDigits),
                                                isLocked};
    }
    auto userChild = user.beginObjectIterator();
    for (auto child = system.beginObjectIterator(); child != system.endObjectIterator();
         ++child, ++userChild)
        addLayered(**child, **userChild, prefix, locked, states);
}

/// @param key nothing: the object is loaded by name
bool load(ConfigReader& reader, const std::optional<std::string>& key,
          ConfigurationObject& object) {
    const auto result = key ? reader.getClassContents(object.getName(), *key, object)
                            : reader.getClassContents(object.getName(), object);
    return result == ConfigurationAccessResult::Success;
}

/// @return the object as it must be after a load from both documents
ObjectState expectedState(const TestObject& object, const std::optional<std::string>& key,
                          const std::string& systemDocument, const std::string& userDocument) {
    DomConfigReader systemReader(systemDocument);
    DomConfigReader userReader(userDocument);
    const std::unique_ptr<ConfigurationObject> system(object.createConfigurationObject());
    const std::unique_ptr<ConfigurationObject> user(object.createConfigurationObject());
    const bool systemHasIt = load(systemReader, key, *system);
    const bool userHasIt = load(userReader, key, *user);
    if (!userHasIt)
        return stateOf(*system);
    if (!systemHasIt)
        return stateOf(*user);
    ObjectState states;
    addLayered(*system, *user, "", false, states);
    return states;
}

TEST(LayerEquivalence, HoldsForObjectsInTwoDocuments) {
    unsigned int lockedCount = 0;
    for (unsigned int seed = 1; seed <= 2000; ++seed) {
        Random random(seed);
        const std::string systemDocument = randomDocument("<Configuration>", random, 4);
        const std::string userDocument = randomDocument("<Configuration>", random, 4);
        const auto object = Support::randomObject(anyOf(fewNames, random), random);
        const auto key =
            oneIn(3, random) ? std::optional(anyOf(Support::fewKeys, random)) : std::nullopt;
        AdvancedConfigReader reader;
        ASSERT_EQ(0,
                  reader.addStringSource(systemDocument, {}, AdvancedConfigReader::System, {"1"}));
        ASSERT_EQ(0, reader.addStringSource(userDocument, {}, AdvancedConfigReader::User, {"1"}));
        const bool found = load(reader, key, *object);
        ASSERT_EQ(found ? 1 : 0, object->signals);
        ASSERT_EQ(expectedState(*object, key, systemDocument, userDocument), stateOf(*object))
            << "seed " << seed << ", object " << object->getName() << '[' << key.value_or("no key")
            << "]\n"
            << systemDocument << '\n'
            << userDocument;
        const auto isLocked = [](const auto& state) { return state.second.locked; };
        lockedCount += std::ranges::any_of(stateOf(*object), isLocked) ? 1 : 0;
    }
    EXPECT_GT(lockedCount, 250U) << "too few locks to say much";
}

} // namespace
} // namespace Orvant
