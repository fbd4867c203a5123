#include <ConfigurationFramework/ChangeSubscription.h>

#include <utility>

namespace Orvant {

ChangeObserver::~ChangeObserver() = default;

ChangeSubscription::ChangeSubscription(std::shared_ptr<ChangeObserver> observer)
    : m_observer(std::move(observer)) {}

ChangeSubscription& ChangeSubscription::operator=(ChangeSubscription&& other) noexcept {
    if (this == &other)
        return *this;
    end();
    m_observer = std::move(other.m_observer);
    return *this;
}

ChangeSubscription::~ChangeSubscription() {
    end();
}

void ChangeSubscription::end() {
    // Destroyed last: what the callback holds may end this again.
    if (const auto ended = std::exchange(m_observer, nullptr))
        ended->end();
}

bool ChangeSubscription::isActive() const {
    return m_observer != nullptr && m_observer->isActive();
}

} // namespace Orvant
