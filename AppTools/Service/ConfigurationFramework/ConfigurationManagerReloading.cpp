#include <ConfigurationFramework/ConfigurationManagerReloading.h>

#include <ConfigurationFramework/AdvancedConfigReader.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ElementAddress.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/ObjectWriter.h>
#include <ConfigurationFramework/ValueText.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/model/ValueCopy.h>

#include <algorithm>
#include <memory>

namespace Orvant {

namespace {

/// Whether children with keys come from the same files.
bool haveSameOrigins(const ConfigurationObject& first, const ConfigurationObject& second) {
    const auto* const group = dynamic_cast<const KeyedGroup*>(&first);
    const auto* const other = dynamic_cast<const KeyedGroup*>(&second);
    return group == nullptr || other == nullptr || group->hasSameOrigins(*other);
}

/// Whether what is loaded has the same locks in both objects and, where asked for, the same values.
bool isSame(const ConfigurationObject& first, const ConfigurationObject& second,
            bool compareValues) {
    const auto isSameValue = [&](const auto* mine, const auto* others) {
        return !mine->isLoadable() || (mine->isEditable() == others->isEditable() &&
                                       (!compareValues || mine->comapreValue(others)));
    };
    const auto* const prototype = first.getChildPrototype();
    const auto* const otherPrototype = second.getChildPrototype();
    const auto isSameObject = [&](const auto* mine, const auto* others) {
        return isSame(*mine, *others, compareValues);
    };
    return first.isEditable() == second.isEditable() &&
           std::equal(first.beginValueIterator(), first.endValueIterator(),
                      second.beginValueIterator(), second.endValueIterator(), isSameValue) &&
           std::equal(first.beginObjectIterator(), first.endObjectIterator(),
                      second.beginObjectIterator(), second.endObjectIterator(), isSameObject) &&
           (prototype == nullptr || otherPrototype == nullptr ||
            isSame(*prototype, *otherPrototype, true)) &&
           haveSameOrigins(first, second);
}

/// Calls back with each child and its counterpart in a former state of the object.
template <typename Visit>
void forEachChildPair(ConfigurationObject& object, const ConfigurationObject& former, Visit visit) {
    for (std::size_t i = 0; i < object.getConfigurationObjectsSize(); ++i) {
        ConfigurationObject& child = *object.beginObjectIterator()[static_cast<std::ptrdiff_t>(i)];
        if (const auto* const counterpart = object.getCounterpart(child, i, former))
            visit(child, *counterpart);
    }
}

/// Gives the values that are not loaded back to an object that was reset.
void keepUnloaded(ConfigurationObject& object, const ConfigurationObject& former) {
    auto formerValue = former.beginValueIterator();
    for (auto value = object.beginValueIterator();
         value != object.endValueIterator() && formerValue != former.endValueIterator();
         ++value, ++formerValue)
        if (!(*value)->isLoadable())
            adoptState(**value, **formerValue);
    forEachChildPair(object, former, keepUnloaded);
}

bool isInexactInText(const ConfigurationValueBase& value) {
    return value.getValueType() == ConfigurationValueBase::DoubleValue ||
           value.getValueType() == ConfigurationValueBase::FloatValue;
}

/// Numbers that read the same as before keep the digits that a text does not hold.
void keepExact(ConfigurationObject& object, const ConfigurationObject& former) {
    auto formerValue = former.beginValueIterator();
    for (auto value = object.beginValueIterator();
         value != object.endValueIterator() && formerValue != former.endValueIterator();
         ++value, ++formerValue)
        if (isInexactInText(**value) && (*value)->hasValue() && (*formerValue)->hasValue() &&
            textOf(**value) == textOf(**formerValue))
            (*value)->adoptValue(*formerValue);
    forEachChildPair(object, former, keepExact);
}

} // namespace

bool isUpToDate(const ConfigurationRegistration& registration, AdvancedConfigReader& reader) {
    const ConfigurationObject& object = *registration.object;
    const auto loaded = makeFresh(object);
    ElementAddress(registration).load(reader, *loaded);
    if (!object.writesContent()) {
        // Only its class knows what an object without items loads.
        const bool hasItems =
            object.getConfigurationValuesSize() != 0 || object.getConfigurationObjectsSize() != 0;
        return hasItems && isSame(object, *loaded, true);
    }
    // Texts are compared: a value that was set may be more exact than its text.
    ObjectWriter writer;
    return isSame(object, *loaded, false) &&
           writer.writeLoaded(registration, object) == writer.writeLoaded(registration, *loaded);
}

void loadAnew(const ConfigurationRegistration& registration, AdvancedConfigReader& reader) {
    ConfigurationObject& object = *registration.object;
    const std::unique_ptr<const ConfigurationObject> former(object.clone());
    object.restoreLocks(*makeFresh(object));
    object.setDefaultValues();
    keepUnloaded(object, *former);
    const auto loaded = ElementAddress(registration).load(reader, object);
    keepExact(object, *former);
    if (loaded == ConfigurationAccessResult::Failure)
        object.emitSignalsAfterConfigLoading();
}

} // namespace Orvant
