#include <ConfigurationFramework/source/RemovedNodes.h>

#include <ConfigurationFramework/source/SchemaSource.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Orvant {

namespace {

using namespace OV_XsdReader;
using Index = SourceDocument::Index;

/// What tells one item of a schema from the others beside it, as far as filters do.
using Key = std::array<std::optional<std::string>, 4>;

struct KeyHash {
    std::size_t operator()(const Key& key) const {
        std::size_t hash = 0;
        for (const auto& part : key)
            hash = hash * 31 + std::hash<std::optional<std::string>>()(part);
        return hash;
    }
};

template <typename Text>
std::optional<std::string> textOf(const xsd::cxx::tree::optional<Text>& text) {
    return text.present() ? std::optional<std::string>(text.get()) : std::nullopt;
}

Key keyOf(const ov_complexType& type) {
    return {textOf(type.name())};
}
Key keyOf(const ov_simpleType& type) {
    return {textOf(type.name())};
}
Key keyOf(const ov_rootElement& element) {
    return {textOf(element.name()), textOf(element.type())};
}
Key keyOf(const ov_attribute& attribute) {
    return {textOf(attribute.name()), textOf(attribute.type()), textOf(attribute.use())};
}
Key keyOf(const ov_element& element) {
    Key key{textOf(element.name()), textOf(element.type()), textOf(element.maxOccurs()), {}};
    if (element.minOccurs().present())
        key[3] = std::to_string(element.minOccurs().get());
    return key;
}

class Comparison {
public:
    explicit Comparison(const SchemaSource& source) : m_source(source) {}

    std::vector<Index> takeRemoved() {
        std::ranges::sort(m_removed);
        return std::move(m_removed);
    }

    void compare(Index schema, const ov_schema& present) {
        compareItems(m_source.children(schema, ModelClass::ComplexType), present.complexType());
        compareItems(m_source.children(schema, ModelClass::SimpleType), present.simpleType());
        compareItems(m_source.children(schema, ModelClass::RootElement), present.element());
    }

private:
    /// Finds the item of the schema for each of the file. Filters only remove, and the first of
    /// several that look the same, so most are found in order from the end; an application can do
    /// more.
    template <typename Sequence>
    void compareItems(const std::vector<Index>& items, const Sequence& present) {
        auto next = present.rbegin();
        std::vector<Index> notInOrder;
        for (const Index item : items | std::views::reverse)
            if (next != present.rend() && keyIn(item) == keyOf(*next))
                compareContents(item, *next++);
            else
                notInOrder.push_back(item);
        std::unordered_multimap<Key, const typename Sequence::value_type*, KeyHash> others;
        for (; next != present.rend(); ++next)
            others.emplace(keyOf(*next), &*next);
        for (const Index item : notInOrder) {
            const auto other = others.empty() ? others.end() : others.find(keyIn(item));
            if (other == others.end()) {
                m_removed.push_back(item);
            } else {
                compareContents(item, *other->second);
                others.erase(other);
            }
        }
    }

    void compareContents(Index item, const ov_complexType& present) {
        if (present.sequence().present())
            compareChildren(item, ModelClass::Sequence, present.sequence().get());
        if (present.choice().present())
            compareChildren(item, ModelClass::Choice, present.choice().get());
        compareItems(m_source.children(item, ModelClass::Attribute), present.attribute());
        if (present.complexContent().present() && present.complexContent()->extension().present())
            compareExtension(item, present.complexContent()->extension().get());
    }

    void compareExtension(Index type, const ov_extension& present) {
        const Index content = m_source.child(type, ModelClass::ComplexContent);
        const Index extension = content == SourceDocument::none
                                    ? content
                                    : m_source.child(content, ModelClass::Extension);
        if (extension == SourceDocument::none)
            return; // the application made this one
        if (present.sequence().present())
            compareChildren(extension, ModelClass::Sequence, present.sequence().get());
        compareItems(m_source.children(extension, ModelClass::Attribute), present.attribute());
    }

    template <typename Group>
    void compareChildren(Index parent, ModelClass group, const Group& present) {
        const Index found = m_source.child(parent, group);
        if (found != SourceDocument::none)
            compareItems(m_source.children(found, ModelClass::Element), present.element());
    }

    void compareContents(Index item, const ov_element& present) {
        const Index type = m_source.child(item, ModelClass::ComplexType);
        if (type != SourceDocument::none && present.complexType().present())
            compareContents(type, present.complexType().get());
    }

    template <typename Leaf>
    void compareContents(Index, const Leaf&) {}

    Key keyIn(Index item) const {
        const auto text = [&](std::string_view name) { return m_source.attribute(item, name); };
        switch (m_source.modelClass(item)) {
        case ModelClass::RootElement:
            return {text("name"), text("type")};
        case ModelClass::Attribute:
            return {text("name"), text("type"), text("use")};
        case ModelClass::Element:
            return {text("name"), text("type"), text("maxOccurs"), numberIn(item, "minOccurs")};
        default:
            return {text("name")};
        }
    }

    /// @return a number of the file as it is written by the model
    std::optional<std::string> numberIn(Index item, std::string_view name) const {
        const auto text = m_source.attribute(item, name);
        if (!text)
            return std::nullopt;
        constexpr int decimal = 10;
        return std::to_string(std::strtol(text->c_str(), nullptr, decimal));
    }

    const SchemaSource& m_source;
    std::vector<Index> m_removed;
};

} // namespace

std::vector<Index> findRemovedNodes(const SchemaSource& source, const ov_schema& schema) {
    Comparison comparison(source);
    comparison.compare(source.document().root(), schema);
    return comparison.takeRemoved();
}

} // namespace Orvant
