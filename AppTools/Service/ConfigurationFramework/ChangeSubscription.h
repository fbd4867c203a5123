#pragma once

#include <ConfigurationFramework/Export.h>

#include <memory>

namespace Orvant {

/// Somebody who is told of a change. Ended, it is never told again.
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ChangeObserver {
public:
    ChangeObserver() = default;
    ChangeObserver(const ChangeObserver&) = delete;
    ChangeObserver& operator=(const ChangeObserver&) = delete;
    virtual ~ChangeObserver();

    /// Tells of the value if it is another than the last one told.
    /// @throws what the callback throws
    virtual void tell() = 0;
    /// @return whether it is still told
    bool isActive() const { return m_isActive; }
    /// Has it never be told again.
    void end() { m_isActive = false; }

private:
    bool m_isActive = true;
};

/// What Setting::onChange() returns: the callback is called until this ends or the setting does.
///
/// @code
/// ChangeSubscription watch = view.unit.onChange([&](Unit unit) { rulers.show(unit); });
/// @endcode
class ORVANT_CONFIGURATIONFRAMEWORK_EXPORT ChangeSubscription {
public:
    /// A subscription to nothing.
    ChangeSubscription() = default;
    /// @param observer who is told until this ends
    explicit ChangeSubscription(std::shared_ptr<ChangeObserver> observer);
    ChangeSubscription(const ChangeSubscription&) = delete;
    ChangeSubscription& operator=(const ChangeSubscription&) = delete;
    /// The source is a subscription to nothing afterwards; what the target was, ends.
    /// @{
    ChangeSubscription(ChangeSubscription&&) = default;
    ChangeSubscription& operator=(ChangeSubscription&& other) noexcept;
    /// @}
    ~ChangeSubscription();

    /// Ends the subscription; allowed in its own callback.
    void end();
    /// @return whether the callback is still called: false, too, when the setting is gone
    bool isActive() const;

private:
    std::shared_ptr<ChangeObserver> m_observer;
};

} // namespace Orvant
