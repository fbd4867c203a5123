#include <ConfigurationFramework/LoadedLayer.h>

#include <utility>

namespace Orvant {

namespace {

thread_local bool isSystemLoaded = false;

} // namespace

LoadedLayer::LoadedLayer(bool isSystem) : m_former(std::exchange(isSystemLoaded, isSystem)) {}

LoadedLayer::~LoadedLayer() {
    isSystemLoaded = m_former;
}

bool LoadedLayer::isSystem() {
    return isSystemLoaded;
}

} // namespace Orvant
