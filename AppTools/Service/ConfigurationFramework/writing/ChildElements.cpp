#include <ConfigurationFramework/writing/ChildElements.h>

namespace Orvant {

using xercesc::DOMElement;

void ChildElements::add(DOMElement& child, const XmlString& key) {
    Namesakes& namesakes = m_namesakes[child.getTagName()];
    namesakes.elements.emplace(m_next, &child);
    namesakes.byKey[key].insert(m_next);
    ++m_next;
}

DOMElement* ChildElements::find(const XmlString& name, const XmlString* key) const {
    const auto found = m_namesakes.find(name);
    if (found == m_namesakes.end())
        return nullptr;
    const Namesakes& namesakes = found->second;
    if (key == nullptr)
        return namesakes.elements.begin()->second;
    const auto keyed = namesakes.byKey.find(*key);
    return keyed == namesakes.byKey.end() ? nullptr : namesakes.elements.at(*keyed->second.begin());
}

std::vector<DOMElement*> ChildElements::take(const XmlString& name, const XmlString* key) {
    std::vector<DOMElement*> taken;
    const auto found = m_namesakes.find(name);
    if (found == m_namesakes.end())
        return taken;
    Namesakes& namesakes = found->second;
    if (key == nullptr) {
        for (const auto& [position, element] : namesakes.elements)
            taken.push_back(element);
        namesakes.elements.clear();
    } else if (const auto keyed = namesakes.byKey.find(*key); keyed != namesakes.byKey.end()) {
        for (const Position position : keyed->second)
            taken.push_back(namesakes.elements.extract(position).mapped());
        namesakes.byKey.erase(keyed);
    }
    if (namesakes.elements.empty())
        m_namesakes.erase(found);
    return taken;
}

} // namespace Orvant
