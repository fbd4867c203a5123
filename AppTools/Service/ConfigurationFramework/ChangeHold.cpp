#include <ConfigurationFramework/ChangeHold.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SettingsBase.h>

namespace Orvant {

namespace {

thread_local const ChangeHold* innermost = nullptr;

void collect(const ConfigurationObject& object, ChangeObservers& observers) {
    if (const auto* const settings = dynamic_cast<const SettingsBase*>(&object))
        settings->collectObservers(observers);
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        collect(**child, observers);
}

} // namespace

ChangeHold::ChangeHold(const ConfigurationObject& object, Cause cause)
    : m_object(&object), m_cause(cause), m_outer(innermost) {
    innermost = this;
}

ChangeHold::ChangeHold(const Objects& objects, Cause cause)
    : m_objects(&objects), m_cause(cause), m_outer(innermost) {
    innermost = this;
}

ChangeHold::~ChangeHold() {
    innermost = m_outer;
}

template <typename Matches>
bool ChangeHold::anyCovers(const ConfigurationObject& object, Matches matches) {
    for (const ChangeHold* hold = innermost; hold != nullptr; hold = hold->m_outer)
        for (const auto* held = &object; held != nullptr && matches(*hold);
             held = held->getParent())
            if (hold->holds(held))
                return true;
    return false;
}

bool ChangeHold::holds(const ConfigurationObject* object) const {
    return m_objects == nullptr ? object == m_object : m_objects->contains(object);
}

bool ChangeHold::covers(const ConfigurationObject& object) {
    return anyCovers(object, [](const ChangeHold& /*hold*/) { return true; });
}

bool ChangeHold::coversForLoad(const ConfigurationObject& object) {
    return anyCovers(object, [](const ChangeHold& hold) { return hold.m_cause == Cause::Load; });
}

void tellAll(const ChangeObservers& observers) {
    FirstException exception;
    for (const auto& observer : observers)
        exception.run([&] { observer->tell(); });
    exception.rethrow();
}

void tellAllIn(const ConfigurationObject& object) {
    if (ChangeHold::covers(object))
        return;
    ChangeObservers observers;
    collect(object, observers);
    tellAll(observers);
}

} // namespace Orvant
