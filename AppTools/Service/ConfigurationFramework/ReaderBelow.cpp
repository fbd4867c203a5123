#include <ConfigurationFramework/ReaderBelow.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/xml/PlaceRestorer.h>

#include <algorithm>
#include <utility>

namespace Orvant {

namespace {

/// Loads only its lock from an element.
class EmptyObject : public ConfigurationObject {
public:
    EmptyObject() : ConfigurationObject("", "", LoadAndSave, AllProducts) {}

    ConfigurationObject* createConfigurationObject() const override { return new EmptyObject; }
};

/// Is loaded in place of an object: runs an operation on each reader that is on the element, and
/// passes all other steps of a load on to the object.
class Probe : public ConfigurationObject {
public:
    using Operation = std::function<ConfigurationAccessResult(ConfigReader&)>;

    Probe(ConfigurationObject& object, Operation operation)
        : ConfigurationObject("", "", LoadAndSave, AllProducts),
          m_object(object),
          m_operation(std::move(operation)) {}
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe() override = default;

    /// @return Success when the operation succeeded on at least one reader
    ConfigurationAccessResult result() const { return m_result; }

    void loadContent(ConfigReader& reader) override {
        if (m_operation(reader) == ConfigurationAccessResult::Success)
            m_result = ConfigurationAccessResult::Success;
    }
    ConfigurationObject* createConfigurationObject() const override {
        return m_object.createConfigurationObject();
    }
    ConfigurationObject* clone() const override { return m_object.clone(); }
    void overwriteInvalidConfigValues(const ConfigurationObject* other) override {
        m_object.overwriteInvalidConfigValues(other);
    }
    void emitSignalsAfterConfigLoading() override {
        if (m_result == ConfigurationAccessResult::Success)
            m_object.emitSignalsAfterConfigLoading();
    }

private:
    ConfigurationObject& m_object;
    Operation m_operation;
    ConfigurationAccessResult m_result = ConfigurationAccessResult::Failure;
};

} // namespace

ReaderBelow::ReaderBelow(ConfigReader& outer, const std::string& element,
                         const ConfigurationObject& child, const ConfigurationObject* reference)
    : m_outer(outer), m_element(element), m_child(child), m_reference(reference) {}

ReaderBelow::ReaderBelow(const ReaderBelow& parent, const ConfigurationObject& child,
                         const ConfigurationObject* reference)
    : ReaderBelow(parent.m_outer, parent.m_element, child, reference) {}

const ReaderBelow* ReaderBelow::madeFor(const ConfigurationObject& object,
                                        const ConfigReader& reader) {
    const auto* const below = dynamic_cast<const ReaderBelow*>(&reader);
    return below != nullptr && &below->m_child == &object ? below : nullptr;
}

/// Runs an operation on every reader that the outer reader puts on the parent's element.
/// @param object what the operation loads
ConfigurationAccessResult ReaderBelow::ask(ConfigurationObject& object,
                                           const Operation& operation) {
    // Called by a callback of another operation, whose place counts.
    if (m_source != nullptr)
        return operation(*m_source);
    Probe probe(object, [&](ConfigReader& source) {
        const PlaceRestorer restorer(m_source);
        m_source = &source;
        if (m_found)
            source.tagExists(*m_found);
        return operation(source);
    });
    m_outer.getClassContents(m_element, probe);
    return probe.result();
}

ConfigurationAccessResult ReaderBelow::ask(const Operation& operation) {
    EmptyObject nothing;
    return ask(nothing, operation);
}

ConfigurationAccessResult ReaderBelow::findAndGetClassContents(const std::string& name,
                                                               const std::string& key,
                                                               ConfigurationObject& object) {
    return ask(object, [&](ConfigReader& source) {
        return source.findAndGetClassContents(name, key, object);
    });
}

ConfigurationAccessResult ReaderBelow::findAndGetClassContents(const std::string& name,
                                                               ConfigurationObject& object) {
    return ask(object,
               [&](ConfigReader& source) { return source.findAndGetClassContents(name, object); });
}

ConfigurationAccessResult ReaderBelow::getClassContents(ConfigurationObject& object) {
    return ask(object, [&](ConfigReader& source) { return source.getClassContents(object); });
}

ConfigurationAccessResult
ReaderBelow::getClassContents(const std::string& name, const std::vector<std::string>& keys,
                              std::vector<ConfigurationObject*>& objects) {
    bool allFound = keys.size() <= objects.size();
    for (std::size_t i = 0; i < std::min(keys.size(), objects.size()); ++i) {
        // One by one: each is cloned and repaired by itself.
        const std::vector<std::string> key = {keys[i]};
        std::vector<ConfigurationObject*> object = {objects[i]};
        const auto found = ask(*objects[i], [&](ConfigReader& source) {
            return source.getClassContents(name, key, object);
        });
        allFound = found == ConfigurationAccessResult::Success && allFound;
    }
    return allFound ? ConfigurationAccessResult::Success : ConfigurationAccessResult::Failure;
}

ConfigurationAccessResult ReaderBelow::getClassContents(const std::string& name,
                                                        const std::string& key,
                                                        ConfigurationObject& object) {
    return ask(object,
               [&](ConfigReader& source) { return source.getClassContents(name, key, object); });
}

ConfigurationAccessResult ReaderBelow::getClassContents(const std::string& name,
                                                        ConfigurationObject& object) {
    return ask(object, [&](ConfigReader& source) { return source.getClassContents(name, object); });
}

ConfigurationAccessResult ReaderBelow::getBool(const std::string& name, bool& value,
                                               bool& editable) {
    return ask([&](ConfigReader& source) { return source.getBool(name, value, editable); });
}

ConfigurationAccessResult ReaderBelow::getInt(const std::string& name, int& value, bool& editable) {
    return ask([&](ConfigReader& source) { return source.getInt(name, value, editable); });
}

ConfigurationAccessResult ReaderBelow::getUnsignedInt(const std::string& name, unsigned int& value,
                                                      bool& editable) {
    return ConfigReader::getUnsignedInt(name, value, editable);
}

ConfigurationAccessResult ReaderBelow::getDouble(const std::string& name, double& value,
                                                 bool& editable) {
    return ask([&](ConfigReader& source) { return source.getDouble(name, value, editable); });
}

ConfigurationAccessResult ReaderBelow::getDoubleScientific(const std::string& name,
                                                           const int& precision, double& value,
                                                           bool& editable) {
    return ask([&](ConfigReader& source) {
        return source.getDoubleScientific(name, precision, value, editable);
    });
}

ConfigurationAccessResult ReaderBelow::getFloat(const std::string& name, float& value,
                                                bool& editable) {
    return ConfigReader::getFloat(name, value, editable);
}

ConfigurationAccessResult ReaderBelow::getString(const std::string& name, std::string& value,
                                                 bool& editable) {
    return ask([&](ConfigReader& source) { return source.getString(name, value, editable); });
}

ConfigurationAccessResult ReaderBelow::getStringVector(const std::string& name,
                                                       std::vector<std::string>& values,
                                                       bool& editable,
                                                       std::map<std::string, bool>& itemEditable) {
    values.clear();
    itemEditable.clear();
    return ask([&](ConfigReader& source) {
        return source.getStringVector(name, values, editable, itemEditable);
    });
}

ConfigurationAccessResult ReaderBelow::tagExists(const std::string& name) {
    const auto result = ask([&](ConfigReader& source) { return source.tagExists(name); });
    if (result == ConfigurationAccessResult::Success && m_source == nullptr)
        m_found = name;
    return result;
}

ConfigurationAccessResult ReaderBelow::getEditable(bool& editable) {
    EmptyObject element;
    const auto result = getClassContents(element);
    if (result == ConfigurationAccessResult::Success)
        editable = element.isEditable();
    return result;
}

ConfigurationAccessResult ReaderBelow::getKeys(const std::string& name,
                                               std::set<std::string>& keys) {
    return ask([&](ConfigReader& source) { return source.getKeys(name, keys); });
}

ConfigurationAccessResult
ReaderBelow::createConfigurationObjects(const std::string& name,
                                        std::function<void(std::string)> callback) {
    return ask(
        [&](ConfigReader& source) { return source.createConfigurationObjects(name, callback); });
}

} // namespace Orvant
