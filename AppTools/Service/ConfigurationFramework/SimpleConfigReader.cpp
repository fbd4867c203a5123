#include <ConfigurationFramework/SimpleConfigReader.h>

#include <ConfigurationFramework/SharedReference.h>
#include <ConfigurationFramework/SimpleConfigReaderImpl.h>

#include <typeinfo>
#include <utility>

namespace Orvant {

SimpleConfigReader::SimpleConfigReader(const FileName& file, const std::string& content,
                                       const std::list<std::string>& validVersions)
    : m_impl(std::make_unique<SimpleConfigReaderImpl>(*this, file, content, validVersions)) {}

SimpleConfigReader::SimpleConfigReader(const FileName& file,
                                       const std::list<std::string>& validVersions,
                                       std::string& bytes)
    : m_impl(std::make_unique<SimpleConfigReaderImpl>(*this, file, "", validVersions, &bytes)) {}

SimpleConfigReader::SimpleConfigReader(std::shared_ptr<ParsedDocument> document)
    : m_impl(std::make_unique<SimpleConfigReaderImpl>(*this, std::move(document))) {}

SimpleConfigReader::~SimpleConfigReader() = default;

ConfigurationAccessResult SimpleConfigReader::setCurrentNode(const std::string& name) {
    SharedReference::forget(*this);
    return m_impl->setCurrentNode(name);
}

ConfigurationAccessResult SimpleConfigReader::setCurrentKeyedNode(const std::string& name,
                                                                  const std::string& key) {
    SharedReference::forget(*this);
    return m_impl->setCurrentKeyedNode(name, key);
}

ConfigurationAccessResult SimpleConfigReader::getString(std::string& value, bool& editable) {
    return m_impl->getString(value, editable);
}

ConfigurationAccessResult SimpleConfigReader::findAndGetClassContents(const std::string& name,
                                                                      const std::string& key,
                                                                      ConfigurationObject& object) {
    return m_impl->loadFrom(m_impl->findAnywhere(name, key), object);
}

ConfigurationAccessResult SimpleConfigReader::findAndGetClassContents(const std::string& name,
                                                                      ConfigurationObject& object) {
    return m_impl->loadFrom(m_impl->findAnywhere(name), object);
}

ConfigurationAccessResult SimpleConfigReader::getClassContents(ConfigurationObject& object) {
    return m_impl->getClassContents(object);
}

ConfigurationAccessResult
SimpleConfigReader::getClassContents(const std::string& name, const std::vector<std::string>& keys,
                                     std::vector<ConfigurationObject*>& objects) {
    return m_impl->getClassContents(name, keys, objects);
}

ConfigurationAccessResult SimpleConfigReader::getClassContents(const std::string& name,
                                                               const std::string& key,
                                                               ConfigurationObject& object) {
    return m_impl->loadFrom(m_impl->findChild(name, key), object);
}

ConfigurationAccessResult SimpleConfigReader::getClassContents(const std::string& name,
                                                               ConfigurationObject& object) {
    return m_impl->loadFrom(m_impl->findChild(name), object);
}

ConfigurationAccessResult SimpleConfigReader::getBool(const std::string& name, bool& value,
                                                      bool& editable) {
    return m_impl->getBool(name, value, editable);
}

ConfigurationAccessResult SimpleConfigReader::getInt(const std::string& name, int& value,
                                                     bool& editable) {
    return m_impl->getNumber(name, value, editable);
}

ConfigurationAccessResult SimpleConfigReader::getUnsignedInt(const std::string& name,
                                                             unsigned int& value, bool& editable) {
    return ConfigReader::getUnsignedInt(name, value, editable);
}

ConfigurationAccessResult SimpleConfigReader::getDouble(const std::string& name, double& value,
                                                        bool& editable) {
    return m_impl->getNumber(name, value, editable);
}

ConfigurationAccessResult SimpleConfigReader::getDoubleScientific(const std::string& name,
                                                                  const int& /*precision*/,
                                                                  double& value, bool& editable) {
    // Extraction accepts both notations, whichever the stream is set to.
    return m_impl->getNumber(name, value, editable);
}

ConfigurationAccessResult SimpleConfigReader::getFloat(const std::string& name, float& value,
                                                       bool& editable) {
    return ConfigReader::getFloat(name, value, editable);
}

ConfigurationAccessResult SimpleConfigReader::getString(const std::string& name, std::string& value,
                                                        bool& editable) {
    return m_impl->getString(name, value, editable);
}

ConfigurationAccessResult
SimpleConfigReader::getStringVector(const std::string& name, std::vector<std::string>& values,
                                    bool& editable, std::map<std::string, bool>& itemEditable) {
    return m_impl->getStringVector(name, values, editable, &itemEditable);
}

ConfigurationAccessResult SimpleConfigReader::getStrings(const std::string& name,
                                                         std::vector<std::string>& values,
                                                         bool& editable) {
    // A derived class may override what is asked otherwise.
    return typeid(*this) == typeid(SimpleConfigReader)
               ? m_impl->getStringVector(name, values, editable, nullptr)
               : ConfigReader::getStrings(name, values, editable);
}

ConfigurationAccessResult SimpleConfigReader::tagExists(const std::string& name) {
    SharedReference::forget(*this);
    return m_impl->tagExists(name);
}

ConfigurationAccessResult SimpleConfigReader::getEditable(bool& editable) {
    return m_impl->getEditable(editable);
}

ConfigurationAccessResult SimpleConfigReader::getKeys(const std::string& name,
                                                      std::set<std::string>& keys) {
    return m_impl->getKeys(name, keys);
}

ConfigurationAccessResult
SimpleConfigReader::createConfigurationObjects(const std::string& name,
                                               std::function<void(std::string)> callback) {
    return m_impl->createConfigurationObjects(name, callback);
}

} // namespace Orvant
