#include <ConfigurationFramework/writing/ChildElements.h>

namespace Orvant {

using xercesc::DOMElement;

bool ChildSelection::includes(const DOMElement& child) const {
    return tag == child.getTagName() && (!key || *key == child.getAttribute(keyAttribute));
}

void ChildElements::add(DOMElement& child) {
    Namesakes& namesakes = m_namesakes[child.getTagName()];
    namesakes.elements.emplace(m_next, &child);
    namesakes.byKey[child.getAttribute(keyAttribute)].insert(m_next);
    ++m_next;
}

DOMElement* ChildElements::find(const ChildSelection& selection) const {
    const auto found = m_namesakes.find(selection.tag);
    if (found == m_namesakes.end())
        return nullptr;
    const Namesakes& namesakes = found->second;
    if (!selection.key)
        return namesakes.elements.begin()->second;
    const auto keyed = namesakes.byKey.find(*selection.key);
    return keyed == namesakes.byKey.end() ? nullptr : namesakes.elements.at(*keyed->second.begin());
}

std::vector<DOMElement*> ChildElements::take(const ChildSelection& selection) {
    std::vector<DOMElement*> taken;
    const auto found = m_namesakes.find(selection.tag);
    if (found == m_namesakes.end())
        return taken;
    Namesakes& namesakes = found->second;
    if (!selection.key) {
        for (const auto& [position, element] : namesakes.elements)
            taken.push_back(element);
        namesakes.elements.clear();
    } else if (const auto keyed = namesakes.byKey.find(*selection.key);
               keyed != namesakes.byKey.end()) {
        for (const Position position : keyed->second)
            taken.push_back(namesakes.elements.extract(position).mapped());
        namesakes.byKey.erase(keyed);
    }
    if (namesakes.elements.empty())
        m_namesakes.erase(found);
    return taken;
}

} // namespace Orvant
