#pragma once

#include <ConfigurationFramework/ConfigurationAccessResult.h>
#include <ConfigurationFramework/DocumentParsing.h>

#include <GeneralServices/XmlErrorHandler.h>

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

class ConfigReader;
class ConfigurationObject;
class FileName;

/// The parsed document of a SimpleConfigReader and the place in it. The operations are those of the
/// reader; objects are loaded through `reader`, the reader that owns this.
class SimpleConfigReaderImpl {
public:
    SimpleConfigReaderImpl(ConfigReader& reader, const FileName& file, const std::string& content,
                           const std::list<std::string>& validVersions);

    ConfigurationAccessResult setCurrentNode(const std::string& name);
    ConfigurationAccessResult setCurrentKeyedNode(const std::string& name, const std::string& key);

    ConfigurationAccessResult getBool(const std::string& name, bool& value, bool& editable);
    template <typename Number>
    ConfigurationAccessResult getNumber(const std::string& name, Number& value, bool& editable);
    ConfigurationAccessResult getString(std::string& value, bool& editable);
    ConfigurationAccessResult getString(const std::string& name, std::string& value,
                                        bool& editable);
    ConfigurationAccessResult getStringVector(const std::string& name,
                                              std::vector<std::string>& values, bool& editable,
                                              std::map<std::string, bool>& itemEditable);

    ConfigurationAccessResult tagExists(const std::string& name);
    ConfigurationAccessResult getEditable(bool& editable);
    ConfigurationAccessResult getKeys(const std::string& name, std::set<std::string>& keys);

    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      const std::string& key,
                                                      ConfigurationObject& object);
    ConfigurationAccessResult findAndGetClassContents(const std::string& name,
                                                      ConfigurationObject& object);
    ConfigurationAccessResult getClassContents(ConfigurationObject& object);
    ConfigurationAccessResult getClassContents(const std::string& name,
                                               const std::vector<std::string>& keys,
                                               std::vector<ConfigurationObject*>& objects);
    ConfigurationAccessResult getClassContents(const std::string& name, const std::string& key,
                                               ConfigurationObject& object);
    ConfigurationAccessResult getClassContents(const std::string& name,
                                               ConfigurationObject& object);
    ConfigurationAccessResult
    createConfigurationObjects(const std::string& name,
                               const std::function<void(std::string)>& callback);

private:
    void init(const FileName& file, const std::string& content,
              const std::list<std::string>& validVersions);
    ConfigurationAccessResult makeCurrent(xercesc::DOMElement* element);
    ConfigurationAccessResult loadFrom(xercesc::DOMElement* element, ConfigurationObject& object);

    ConfigReader& m_reader;
    ParserConfinement m_confinement;
    std::unique_ptr<xercesc::XercesDOMParser> m_parser;
    xercesc::DOMDocument* m_document = nullptr;
    xercesc::DOMElement* m_current = nullptr;
    XmlErrorHandler m_errorHandler;
};

} // namespace Orvant
