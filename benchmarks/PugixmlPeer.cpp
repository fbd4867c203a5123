#include "PugixmlPeer.h"

#include <string_view>
#include <unordered_map>

#include <pugixml.hpp>

namespace Orvant::Benchmarks {

namespace {

std::shared_ptr<pugi::xml_document> parse(const std::string& file) {
    auto document = std::make_shared<pugi::xml_document>();
    return document->load_file(file.c_str()) ? document : nullptr;
}

/// The objects of a document by name: pugixml itself looks at one child after the other.
class Layer {
public:
    explicit Layer(const std::string& file) : m_document(parse(file)) {
        for (const pugi::xml_node object : m_document->document_element())
            m_objects.emplace(object.name(), object);
    }

    pugi::xml_node object(const std::string& name) const {
        const auto found = m_objects.find(name);
        return found == m_objects.end() ? pugi::xml_node() : found->second;
    }

    bool save(const std::string& file) const { return m_document->save_file(file.c_str()); }

private:
    std::shared_ptr<pugi::xml_document> m_document;
    std::unordered_map<std::string_view, pugi::xml_node> m_objects;
};

struct Layers {
    Layer system;
    Layer user;

    explicit Layers(const SettingsFiles& files)
        : system(files.systemXml()), user(files.userXml()) {}
};

template <typename T>
T convert(const pugi::xml_node& element) {
    const pugi::xml_text text = element.text();
    if constexpr (std::is_same_v<T, bool>) {
        return text.as_bool();
    } else if constexpr (std::is_same_v<T, int>) {
        return text.as_int();
    } else if constexpr (std::is_same_v<T, unsigned int>) {
        return text.as_uint();
    } else if constexpr (std::is_same_v<T, float>) {
        return text.as_float();
    } else if constexpr (std::is_same_v<T, double>) {
        return text.as_double();
    } else if constexpr (std::is_same_v<T, std::string>) {
        return text.as_string();
    } else {
        Texts texts;
        for (const pugi::xml_node item : element.children("item"))
            texts.emplace_back(item.text().as_string());
        return texts;
    }
}

struct Group {
    pugi::xml_node system;
    pugi::xml_node user;

    template <typename T>
    T get(const std::string& name) const {
        const pugi::xml_node users = user.child(name.c_str());
        return convert<T>(users ? users : system.child(name.c_str()));
    }
};

} // namespace

Loaded loadWithPugixml(const SettingsFiles& files) {
    const auto layers = std::make_shared<Layers>(files);
    return readTyped<std::string, Texts>(layers, files.shape(), [&](const std::string& object) {
        return Group{layers->system.object(object), layers->user.object(object)};
    });
}

int readOneWithPugixml(const SettingsFiles& files) {
    const auto [object, value] = probeOf(files.shape());
    const auto system = parse(files.systemXml());
    const auto user = parse(files.userXml());
    const char* const name = objectName(object).c_str();
    return Group{system->document_element().child(name), user->document_element().child(name)}
        .get<int>(valueName(value));
}

std::shared_ptr<void> parseWithPugixml(const std::string& file) {
    return parse(file);
}

struct PugixmlStore::Document {
    explicit Document(const std::string& path) : file(path), layer(path) {}

    std::string file;
    Layer layer;
};

PugixmlStore::PugixmlStore(const SettingsFiles& files)
    : m_document(std::make_shared<Document>(files.userXml())) {}

void PugixmlStore::set(std::size_t object, std::size_t value, const Value& newValue) {
    const char* const name = valueName(value).c_str();
    pugi::xml_node parent = m_document->layer.object(objectName(object));
    parent.remove_child(name);
    pugi::xml_node element = parent.append_child(name);
    std::visit(
        [&]<typename T>(const T& held) {
            if constexpr (std::is_same_v<T, Texts>)
                for (const std::string& text : held)
                    element.append_child("item").text().set(text.c_str());
            else if constexpr (std::is_same_v<T, std::string>)
                element.text().set(held.c_str());
            else
                element.text().set(held);
        },
        newValue);
}

bool PugixmlStore::save() {
    return m_document->layer.save(m_document->file);
}

} // namespace Orvant::Benchmarks
