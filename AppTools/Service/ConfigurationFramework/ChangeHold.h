#pragma once

#include <ConfigurationFramework/ChangeSubscription.h>

#include <exception>
#include <memory>
#include <vector>

namespace Orvant {

class ConfigurationObject;

using ChangeObservers = std::vector<std::shared_ptr<ChangeObserver>>;

/// While it lives, what an object is set to is not yet told to those who watch its settings: a load
/// or more defaults follow.
class ChangeHold {
public:
    /// @param object must outlive this
    explicit ChangeHold(const ConfigurationObject& object);
    ChangeHold(const ChangeHold&) = delete;
    ChangeHold& operator=(const ChangeHold&) = delete;
    ~ChangeHold();

    /// Ends the hold and, unless it is inside another, tells of everything in the object and its
    /// children that changed.
    /// @throws the first exception of a callback, when all have been called
    void release();

private:
    const ConfigurationObject& m_object;
    bool m_isReleased = false;
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

/// Tells observers. What they do meanwhile is told at once, even within a hold.
/// @param observers a copy: callbacks may subscribe, end subscriptions, and delete settings
/// @throws the first exception of a callback, when all have been called
void tellAll(ChangeObservers observers);

} // namespace Orvant
