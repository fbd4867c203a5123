#include <ConfigurationFramework/ConfigurationManagerKnowledge.h>

#include <functional>
#include <map>

namespace Orvant {

namespace {

using Layers = std::shared_ptr<const ConfigurationManagerLayers>;

/// Copies what objects have in common once.
class LayersCopy {
public:
    Layers of(const Layers& original) {
        if (original == nullptr)
            return nullptr;
        Layers& copy = m_copies[original.get()];
        if (copy == nullptr)
            copy = original->withoutTrees();
        return copy;
    }

private:
    std::map<const ConfigurationManagerLayers*, Layers> m_copies;
};

} // namespace

std::size_t ConfigurationManager::AddressHash::operator()(const Address& address) const {
    const std::hash<std::string> hash;
    return hash(address.first) + (address.second ? 31 * hash(*address.second) : 0);
}

ConfigurationManager::Knowledge::Knowledge(const Knowledge& other) {
    LayersCopy copy;
    layers = copy.of(other.layers);
    takenOver = copy.of(other.takenOver);
    for (const auto& [address, state] : other.objects)
        objects.emplace(address, state == nullptr
                                     ? nullptr
                                     : std::make_shared<const KnownState>(
                                           copy.of(state->loaded), copy.of(state->layers),
                                           state->written, state->keptLocks, state->isLoadRefused));
}

void ConfigurationManager::Knowledge::releaseTrees() const {
    for (const Layers& known : {layers, takenOver})
        if (known != nullptr)
            known->releaseTrees();
    for (const auto& [address, state] : objects)
        if (state != nullptr) {
            state->loaded->releaseTrees();
            state->layers->releaseTrees();
        }
}

} // namespace Orvant
