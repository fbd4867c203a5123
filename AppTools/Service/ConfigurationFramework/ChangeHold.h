#pragma once

#include <ConfigurationFramework/ChangeSubscription.h>

#include <exception>
#include <memory>
#include <unordered_set>
#include <vector>

namespace Orvant {

class ConfigurationObject;

using ChangeObservers = std::vector<std::shared_ptr<ChangeObserver>>;

/// While it lives, those who watch settings in an object wait for the end of something that changes
/// them more than once, such as a reset with a load after it.
class ChangeHold {
public:
    /// Why they wait.
    enum class Cause {
        Change, ///< the object sets or tells something
        Load    ///< a manager loads the object, perhaps after a reset
    };

    /// Objects that wait together.
    using Objects = std::unordered_set<const ConfigurationObject*>;

    /// @param object is not used after this
    ChangeHold(const ConfigurationObject& object, Cause cause);
    /// @param objects must outlive this; what is in it is not used after this
    ChangeHold(const Objects& objects, Cause cause);
    ChangeHold(const ChangeHold&) = delete;
    ChangeHold& operator=(const ChangeHold&) = delete;
    ~ChangeHold();

    /// @return whether an object, or one that it is in, is held
    static bool covers(const ConfigurationObject& object);
    /// @return whether an object, or one that it is in, is held for a load
    static bool coversForLoad(const ConfigurationObject& object);

private:
    template <typename Matches>
    static bool anyCovers(const ConfigurationObject& object, Matches matches);
    bool holds(const ConfigurationObject* object) const;

    const ConfigurationObject* m_object = nullptr;
    const Objects* m_objects = nullptr;
    Cause m_cause;
    const ChangeHold* m_outer;
};

/// Runs several steps, whatever they throw.
class FirstException {
public:
    template <typename Step>
    void run(Step step) {
        try {
            step();
        } catch (...) {
            if (m_first == nullptr)
                m_first = std::current_exception();
        }
    }
    /// @throws what a step threw first, if any did
    void rethrow() const {
        if (m_first != nullptr)
            std::rethrow_exception(m_first);
    }

private:
    std::exception_ptr m_first;
};

/// Tells observers.
/// @param observers keeps them alive: callbacks may subscribe, end subscriptions, and delete
///                  settings
/// @throws the first exception of a callback, when all have been called
void tellAll(const ChangeObservers& observers);

/// Tells everybody who watches settings in an object or its children, unless the object is held.
/// @param object callbacks may delete it
/// @throws the first exception of a callback, when all have been called
void tellAllIn(const ConfigurationObject& object);

/// Runs what changes an object, however often. Those who watch settings in it are told at its end,
/// even when it throws.
/// @throws what the step throws, or else the first exception of a callback
template <typename Step>
void tellAfter(const ConfigurationObject& object, Step step,
               ChangeHold::Cause cause = ChangeHold::Cause::Change) {
    FirstException exception;
    exception.run([&] {
        const ChangeHold hold(object, cause);
        step();
    });
    exception.run([&] { tellAllIn(object); });
    exception.rethrow();
}

/// tellAfter() of a load by a manager.
/// @{
template <typename Step>
void tellAfterLoad(const ConfigurationObject& object, Step step) {
    tellAfter(object, step, ChangeHold::Cause::Load);
}
/// @param objects those that are loaded: nobody is told before all are, since what a callback sets
///                in another one would be lost when that is loaded; null is ignored
template <typename Step>
void tellAfterLoad(const std::vector<std::shared_ptr<ConfigurationObject>>& objects, Step step) {
    ChangeHold::Objects held;
    for (const auto& object : objects)
        held.insert(object.get());
    FirstException exception;
    exception.run([&] {
        const ChangeHold hold(held, ChangeHold::Cause::Load);
        step();
    });
    for (const auto& object : objects)
        if (object != nullptr)
            exception.run([&] { tellAllIn(*object); });
    exception.rethrow();
}
/// @}

} // namespace Orvant
