#include <ConfigurationFramework/ChangeHold.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SettingsBase.h>
#include <ConfigurationFramework/xml/PlaceRestorer.h>

#include <utility>

namespace Orvant {

namespace {

thread_local int holds = 0;

void collect(const ConfigurationObject& object, ChangeObservers& observers) {
    if (const auto* const settings = dynamic_cast<const SettingsBase*>(&object))
        observers.insert(observers.end(), settings->observers().begin(),
                         settings->observers().end());
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child)
        collect(**child, observers);
}

} // namespace

ChangeHold::ChangeHold(const ConfigurationObject& object) : m_object(object) {
    ++holds;
}

ChangeHold::~ChangeHold() {
    if (!m_isReleased)
        --holds;
}

void ChangeHold::release() {
    if (std::exchange(m_isReleased, true))
        return;
    if (--holds != 0)
        return;
    ChangeObservers observers;
    collect(m_object, observers);
    tellAll(std::move(observers));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): a copy that callbacks cannot change
void tellAll(ChangeObservers observers) {
    const PlaceRestorer restorer(holds);
    holds = 0;
    FirstException exception;
    for (const auto& observer : observers)
        exception.run([&] { observer->tell(); });
    exception.rethrow();
}

} // namespace Orvant
