#include "RandomClass.h"

#include "RandomObjects.h"

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriter.h>
#include <ObjectState.h>
#include <ValueVisit.h>

#include <stdexcept>
#include <utility>

namespace Orvant::Support {

namespace {

void unlock(const ConfigurationObject& object) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        (*value)->setEditable(true);
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child) {
        (*child)->setEditable(true);
        unlock(**child);
    }
}

/// Brings a value within the bounds that its class sets.
void correct(ConfigurationValueBase& value) {
    visitValue(value, []<typename T>(ConfigurationValue<T>& typed) {
        if constexpr (std::is_same_v<T, std::string>) {
            if (typed.getValue().empty())
                typed.setValue("corrected");
        } else if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) {
            if (typed.getValue() > T{100})
                typed.setValue(T{100});
        }
    });
}

} // namespace

std::shared_ptr<const RandomClassDefinition> randomClass(const std::string& name, int depth,
                                                         Random& random) {
    auto definition = std::make_shared<RandomClassDefinition>();
    definition->name = name;
    definition->persistence = randomPersistence(random);
    definition->products = randomProducts(random);
    for (std::size_t habit = 0; habit < definition->habits.size(); ++habit)
        definition->habits.set(habit, oneIn(7, random));
    definition->items = randomObject(name, random, 1);
    for (auto count = depth == 0 ? 0 : random() % 2; count > 0; --count)
        definition->children.push_back(
            randomClass(oneIn(4, random) ? "" : anyOf(fewNames, random), depth - 1, random));
    return definition;
}

RandomClass::RandomClass(std::shared_ptr<const RandomClassDefinition> definition)
    : ConfigurationObject(definition->name, "", definition->persistence, definition->products),
      m_definition(std::move(definition)) {
    const ConfigurationObject& items = *m_definition->items;
    for (auto value = items.beginValueIterator(); value != items.endValueIterator(); ++value)
        addConfigurationValue((*value)->clone());
    for (auto child = items.beginObjectIterator(); child != items.endObjectIterator(); ++child)
        addConfigurationObject((*child)->clone());
    for (const auto& child : m_definition->children)
        addConfigurationObject(std::make_unique<RandomClass>(child).release());
    if (has(Habit::LocksFromTheStart) && getConfigurationValuesSize() != 0)
        (*beginValueIterator())->setEditable(false);
}

bool RandomClass::has(Habit habit) const {
    return m_definition->habits.test(static_cast<std::size_t>(habit));
}

void RandomClass::watch(const std::function<void(const std::string&)>& watch) {
    m_watch = watch;
    m_fails = has(Habit::FailsToSaveOnce);
    for (auto child = beginObjectIterator(); child != endObjectIterator(); ++child)
        if (auto* const own = dynamic_cast<RandomClass*>(*child))
            own->watch(watch);
}

void RandomClass::report(const std::string& call) const {
    if (m_watch)
        m_watch(call + ' ' + describeObject(*this));
}

ConfigurationObject* RandomClass::createConfigurationObject() const {
    return new RandomClass(m_definition);
}

void RandomClass::loadContent(ConfigReader& reader) {
    if (has(Habit::LoadsFromElsewhere))
        reader.tagExists("Value");
    ConfigurationObject::loadContent(reader);
    if (has(Habit::LoadsMore)) {
        std::set<std::string> keys;
        reader.getKeys("A", keys);
        for (const std::string& key : keys)
            addUserWarningMessage(key);
    }
    report("loaded");
    if (const auto action = std::exchange(onLoad, nullptr))
        action();
}

void RandomClass::saveMore(ConfigWriter& writer) const {
    if (has(Habit::SavesMore))
        writer.putString("More", getUserWarningMessages(), "");
}

void RandomClass::saveContent(ConfigWriter& writer) const {
    report("saved");
    ConfigurationObject::saveContent(writer);
    saveMore(writer);
}

void RandomClass::saveContent(ConfigWriter& writer, ConfigReader& reader,
                              bool onlyDifferent) const {
    report("differences saved");
    if (has(Habit::MovesReaders))
        reader.tagExists("Value");
    const std::unique_ptr<const ConfigurationObject> copy(has(Habit::AsksCopies) ? clone()
                                                                                 : nullptr);
    const ConfigurationObject& saved = copy == nullptr ? *this : *copy;
    saved.ConfigurationObject::saveContent(writer, reader,
                                           onlyDifferent && !has(Habit::SavesInFull));
    saveMore(writer);
}

bool RandomClass::canBeSavedToUserConfig(ConfigReader& reader) const {
    report("asked");
    if (has(Habit::SavesNever))
        return false;
    if (has(Habit::MovesReaders))
        reader.tagExists("Value");
    const std::unique_ptr<const ConfigurationObject> copy(has(Habit::AsksCopies) ? clone()
                                                                                 : nullptr);
    const ConfigurationObject& asked = copy == nullptr ? *this : *copy;
    const bool isDifferent = asked.ConfigurationObject::canBeSavedToUserConfig(reader);
    if (std::exchange(m_fails, false))
        throw std::runtime_error("cannot be saved");
    // What moves one reader has to move the next one, too.
    return isDifferent || has(Habit::SavesAlways) || has(Habit::MovesReaders);
}

void RandomClass::setDefaultValues() {
    if (has(Habit::UnlocksWithDefaults)) {
        setEditable(true);
        unlock(*this);
    }
    ConfigurationObject::setDefaultValues();
    if (has(Habit::LocksWithDefaults) && getConfigurationValuesSize() != 0)
        (*(endValueIterator() - 1))->setEditable(false);
    report("set to its defaults");
}

void RandomClass::overwriteInvalidConfigValues(const ConfigurationObject* other) {
    ConfigurationObject::overwriteInvalidConfigValues(other);
    if (has(Habit::RepairsItsOwnWay) && other != nullptr && getConfigurationValuesSize() != 0 &&
        other->getConfigurationValuesSize() != 0)
        (*beginValueIterator())->adoptValue(*other->beginValueIterator());
    report("repaired by " + (other == nullptr ? "nothing" : describeObject(*other)) + " to");
}

void RandomClass::emitSignalsAfterConfigLoading() {
    ConfigurationObject::emitSignalsAfterConfigLoading();
    if (has(Habit::CorrectsItself))
        for (auto value = beginValueIterator(); value != endValueIterator(); ++value)
            correct(**value);
    report("signalled");
    if (const auto action = std::exchange(onSignal, nullptr))
        action();
}

const ConfigurationObject* RandomClass::getCounterpart(const ConfigurationObject& child,
                                                       std::size_t position,
                                                       const ConfigurationObject& other) const {
    return has(Habit::PairsByName) ? other.getConfigurationObject(child.getName())
                                   : ConfigurationObject::getCounterpart(child, position, other);
}

std::string describeObject(const ConfigurationObject& object) {
    const auto lockOf = [](const ConfigurationItemBase& item) {
        return item.isEditable() ? "" : " locked";
    };
    std::string text = object.getName() + lockOf(object) + '{';
    for (const ConfigurationValueBase* value : object.getConfigurationValues())
        text += value->getName() + (value->hasValue() ? " is " : " is by default ") +
                textOf(*value, allDigits) + lockOf(*value) + ';';
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        text += describeObject(**child);
    return text + '}' + object.getUserWarningMessages();
}

} // namespace Orvant::Support
