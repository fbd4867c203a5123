#include "catalogue/Suggestions.h"

#include "common/NearestName.h"

namespace Orvant::Tool {

namespace {

/// A name without its key.
std::string plain(const std::string& name) {
    return name.substr(0, name.find('['));
}

} // namespace

Suggestions::Suggestions(const SettingIndex& settings) : m_settings(settings) {
    for (const CatalogueItem& item : settings.items()) {
        const std::string& name = item.steps.back().name;
        const std::size_t end = item.path.rfind('/');
        m_names[end == std::string::npos ? "" : item.path.substr(0, end)].push_back(name);
        m_paths.try_emplace(name, item.path);
    }
}

std::string Suggestions::forUnknown(const std::string& path) const {
    std::string parent;
    std::string name = plain(path);
    // A key may hold slashes itself.
    for (std::size_t slash = path.rfind('/'); slash != std::string::npos && slash != 0;
         slash = path.rfind('/', slash - 1))
        if (const auto found = m_settings.find(path.substr(0, slash))) {
            parent = found->item->path;
            name = plain(path.substr(slash + 1));
            break;
        }
    const auto names = m_names.find(parent);
    const std::string nearest = names == m_names.end() ? "" : nearestName(name, names->second);
    if (!nearest.empty())
        return nearest == name ? "" : nearest;
    const auto elsewhere = m_paths.find(name);
    return elsewhere == m_paths.end() ? "" : elsewhere->second;
}

} // namespace Orvant::Tool
