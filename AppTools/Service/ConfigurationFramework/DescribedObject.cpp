#include <ConfigurationFramework/DescribedObject.h>

#include <ConfigurationFramework/ConfigurationValueBase.h>
#include <ConfigurationFramework/KeyedGroup.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace Orvant {

struct DescribedObject::Blueprint {
    struct Child {
        std::shared_ptr<const Blueprint> object;
        bool isKind;
        std::optional<std::string> key;
    };

    std::string name;
    std::string description;
    Persistence persistence;
    ProductType products;
    bool isEditable;
    std::vector<std::unique_ptr<const ConfigurationValueBase>> values = {};
    std::vector<Child> children = {};
};

std::shared_ptr<const DescribedObject::Blueprint>
DescribedObject::makeBlueprint(const ConfigurationObjectDescription& description) {
    if (!description.name.empty() && !isXmlName(description.name))
        throw std::invalid_argument('"' + description.name + "\" cannot be the name of an element");
    auto blueprint = std::make_shared<Blueprint>(
        Blueprint{description.name, description.description, description.persistence,
                  description.products, description.isEditable});
    for (const ConfigurationValueDescription& value : description.values)
        blueprint->values.push_back(value.makeValue());
    for (const auto& [object, isKind, key] : description.children) {
        if (isKind && object.name.empty())
            throw std::invalid_argument("a kind of children needs a name");
        blueprint->children.push_back({makeBlueprint(object), isKind, key});
    }
    return blueprint;
}

DescribedObject::DescribedObject(std::shared_ptr<const Blueprint> blueprint)
    : ConfigurationObject(blueprint->name, blueprint->description, blueprint->persistence,
                          blueprint->products),
      m_blueprint(std::move(blueprint)) {
    setEditable(m_blueprint->isEditable);
    for (const auto& value : m_blueprint->values)
        addConfigurationValue(value->clone());
    for (const Blueprint::Child& child : m_blueprint->children) {
        auto object = std::make_unique<DescribedObject>(child.object);
        if (child.isKind)
            addConfigurationObject(new KeyedGroup(std::move(object)));
        else
            addConfigurationObject(object.release());
    }
}

ConfigurationObject* DescribedObject::createConfigurationObject() const {
    return new DescribedObject(m_blueprint);
}

std::optional<std::string> DescribedObject::getChildKey(std::size_t position) const {
    return m_blueprint->children[position].key;
}

} // namespace Orvant
