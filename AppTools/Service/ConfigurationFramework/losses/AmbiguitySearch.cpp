#include <ConfigurationFramework/losses/AmbiguitySearch.h>

#include <algorithm>

namespace Orvant {

namespace {

bool isLoss(const WrittenSchema::Place& place) {
    return place.size() == 1 && place.front().maximum == 0 && place.front().name.empty();
}

} // namespace

void AmbiguitySearch::goBack(const State& state) {
    m_open.takeBack(state.changes);
    m_losses.erase(m_losses.begin() + static_cast<std::ptrdiff_t>(state.losses), m_losses.end());
}

std::vector<AmbiguitySearch::Index>
AmbiguitySearch::add(const std::vector<WrittenSchema::Place>& content) {
    std::vector<Index> found;
    for (const WrittenSchema::Place& place : content) {
        if (isLoss(place))
            m_losses.push_back({place.front().node, m_losses.size() + 1});
        else
            enter(place, found);
    }
    return found;
}

void AmbiguitySearch::enter(const WrittenSchema::Place& place, std::vector<Index>& found) {
    const bool canBeEmpty = WrittenSchema::canBeEmpty(place);
    for (const auto& particle : place)
        if (const auto rival = m_open.find(particle.name); rival && particle.maximum > 0)
            findFrom(*rival, found);
    if (!canBeEmpty)
        m_open.clear();
    for (const auto& particle : place)
        if (!particle.name.empty() && particle.maximum > 0 &&
            (canBeEmpty || particle.maximum > particle.minimum))
            m_open.set(particle.name, m_losses.size());
}

void AmbiguitySearch::findFrom(std::size_t first, std::vector<Index>& found) {
    for (std::size_t end = m_losses.size(); end > first;) {
        Lost& lost = m_losses[end - 1];
        if (lost.foundFrom == end)
            found.push_back(lost.node);
        end = std::min(end - 1, lost.foundFrom);
        lost.foundFrom = std::min(lost.foundFrom, first);
    }
}

} // namespace Orvant
