#pragma once

#include "RandomDocuments.h"

#include <ConfigurationFramework/ConfigurationObject.h>

#include <bitset>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Orvant::Support {

/// What a class may do in its own way.
enum class Habit : std::size_t {
    LocksFromTheStart,   ///< its first value, in the constructor
    LocksWithDefaults,   ///< its last value, when it sets its defaults
    UnlocksWithDefaults, ///< everything, before it sets its defaults
    CorrectsItself,      ///< when it was loaded
    LoadsFromElsewhere,  ///< from an element that it looks for in the whole document
    LoadsMore,           ///< than its values
    SavesMore,           ///< than its values
    SavesInFull,         ///< where only differences are asked for
    SavesAlways,
    SavesNever,
    MovesReaders,     ///< that it is compared with
    AsksCopies,       ///< of itself whether and how they are saved
    RepairsItsOwnWay, ///< what a user's document may not change
    PairsByName,      ///< its children
    FailsToSaveOnce,
    Count
};

/// Defines a class at random: what it consists of and what it does in its own way.
struct RandomClassDefinition {
    std::string name;
    ConfigurationItemBase::Persistence persistence = ConfigurationItemBase::LoadAndSave;
    ConfigurationItemBase::ProductType products = ConfigurationItemBase::AllProducts;
    std::bitset<static_cast<std::size_t>(Habit::Count)> habits;
    std::shared_ptr<const ConfigurationObject> items; ///< the values and plain children that it has
    std::vector<std::shared_ptr<const RandomClassDefinition>> children;
};

/// @param depth how deep its children of random classes are nested
std::shared_ptr<const RandomClassDefinition> randomClass(const std::string& name, int depth,
                                                         Random& random);

/// An object of a class that is defined at random.
class RandomClass : public ConfigurationObject {
public:
    explicit RandomClass(std::shared_ptr<const RandomClassDefinition> definition);

    /// Has the object, but none that it creates, report what is called and its state then.
    /// @param watch gets a line for each call
    void watch(const std::function<void(const std::string&)>& watch);

    std::function<void()> onLoad;   ///< called once, at the end of a load from one document
    std::function<void()> onSignal; ///< called once, when it was loaded

    ConfigurationObject* createConfigurationObject() const override;
    void loadContent(ConfigReader& reader) override;
    void saveContent(ConfigWriter& writer) const override;
    void saveContent(ConfigWriter& writer, ConfigReader& reader, bool onlyDifferent) const override;
    bool canBeSavedToUserConfig(ConfigReader& reader) const override;
    void setDefaultValues() override;
    void overwriteInvalidConfigValues(const ConfigurationObject* other) override;
    void emitSignalsAfterConfigLoading() override;
    const ConfigurationObject* getCounterpart(const ConfigurationObject& child,
                                              std::size_t position,
                                              const ConfigurationObject& other) const override;

private:
    bool has(Habit habit) const;
    void report(const std::string& call) const;
    void saveMore(ConfigWriter& writer) const;

    std::shared_ptr<const RandomClassDefinition> m_definition;
    std::function<void(const std::string&)> m_watch;
    mutable bool m_fails = false;
};

/// @return all that can be asked of an object: values, whether they are its own, locks, warnings
std::string describeObject(const ConfigurationObject& object);

} // namespace Orvant::Support
