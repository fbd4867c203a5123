#pragma once

namespace Orvant {

/// Restores a reader's or writer's place in its document at the end of the scope, even when an
/// object throws while it is loaded or saved.
/// @tparam Place an element, or whatever stands on one
template <typename Place>
class PlaceRestorer {
public:
    explicit PlaceRestorer(Place& place) : m_place(place), m_former(place) {}
    PlaceRestorer(const PlaceRestorer&) = delete;
    PlaceRestorer& operator=(const PlaceRestorer&) = delete;
    ~PlaceRestorer() { m_place = m_former; }

private:
    Place& m_place;
    Place m_former;
};

} // namespace Orvant
