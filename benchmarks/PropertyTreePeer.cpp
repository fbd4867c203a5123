#include "PropertyTreePeer.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

namespace Orvant::Benchmarks {

namespace {

using boost::property_tree::ptree;

struct Layers {
    ptree system;
    ptree user;
};

std::shared_ptr<Layers> openLayers(const SettingsFiles& files) {
    auto layers = std::make_shared<Layers>();
    read_xml(files.systemXml(), layers->system);
    read_xml(files.userXml(), layers->user);
    return layers;
}

const ptree* childOf(const ptree* parent, const std::string& name) {
    if (parent == nullptr)
        return nullptr;
    const auto found = parent->find(name);
    return found == parent->not_found() ? nullptr : &found->second;
}

struct Group {
    const ptree* system;
    const ptree* user;

    Group(const Layers& layers, const std::string& object)
        : system(childOf(childOf(&layers.system, "Configuration"), object)),
          user(childOf(childOf(&layers.user, "Configuration"), object)) {}

    template <typename T>
    T get(const std::string& name) const {
        const ptree* const users = childOf(user, name);
        const ptree* const element = users != nullptr ? users : childOf(system, name);
        if constexpr (std::is_same_v<T, Texts>) {
            Texts texts;
            for (const auto& [tag, item] : *element)
                if (tag == "item")
                    texts.push_back(item.data());
            return texts;
        } else {
            return element->get_value<T>();
        }
    }
};

} // namespace

Loaded loadWithPropertyTree(const SettingsFiles& files) {
    const auto layers = openLayers(files);
    return readTyped<std::string, Texts>(
        layers, files.shape(), [&](const std::string& object) { return Group(*layers, object); });
}

bool checkWithPropertyTree(const SettingsFiles& files) {
    ptree tree;
    try {
        read_xml(files.userXml(), tree);
    } catch (const boost::property_tree::xml_parser_error&) {
        return false;
    }
    return true;
}

int readOneWithPropertyTree(const SettingsFiles& files) {
    const auto [object, value] = probeOf(files.shape());
    return Group(*openLayers(files), objectName(object)).get<int>(valueName(value));
}

struct PropertyTreeStore::Document {
    std::string file;
    ptree tree;
};

PropertyTreeStore::PropertyTreeStore(const SettingsFiles& files)
    : m_document(std::make_shared<Document>(files.userXml())) {
    read_xml(m_document->file, m_document->tree);
}

void PropertyTreeStore::set(std::size_t object, std::size_t value, const Value& newValue) {
    const ptree::path_type path("Configuration." + objectName(object) + '.' + valueName(value));
    std::visit(
        [&]<typename T>(const T& held) {
            if constexpr (std::is_same_v<T, Texts>) {
                ptree items;
                for (const std::string& text : held)
                    items.add("item", text);
                m_document->tree.put_child(path, items);
            } else {
                m_document->tree.put(path, held);
            }
        },
        newValue);
}

bool PropertyTreeStore::save() {
    write_xml(m_document->file, m_document->tree);
    return true;
}

} // namespace Orvant::Benchmarks
