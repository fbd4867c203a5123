#include <ConfigurationFramework/ConfigWriter.h>

#include <ConfigurationFramework/ConfigReader.h>
#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/SharedReference.h>
#include <ConfigurationFramework/xml/NumberText.h>

#include <Logging/Logging.h>

#include <optional>
#include <utility>

namespace Orvant {

namespace {

const Logging s_log("ConfigWriter");

} // namespace

ConfigWriter::ConfigWriter(const std::string& version)
    : m_impl(std::make_unique<ConfigWriterImpl>(version)) {}

ConfigWriter::ConfigWriter(const FileName& file, const std::string& content)
    : m_impl(std::make_unique<ConfigWriterImpl>(file, content)) {}

ConfigWriter::ConfigWriter(std::unique_ptr<WriterTarget> target) : m_impl(std::move(target)) {}

ConfigWriter::~ConfigWriter() = default;

void ConfigWriter::createNode(const std::string& name, const std::string& comment) {
    m_impl->createNode(name, comment);
}

void ConfigWriter::createKeyedNode(const std::string& name, const std::string& key,
                                   const std::string& comment) {
    m_impl->createKeyedNode(name, key, comment);
}

void ConfigWriter::createNodeAndMakeCurrent(const std::string& name, const std::string& comment) {
    createNode(name, comment);
    m_impl->enterLastChild();
}

void ConfigWriter::createKeyedNodeAndMakeCurrent(const std::string& name, const std::string& key,
                                                 const std::string& comment) {
    createKeyedNode(name, key, comment);
    m_impl->enterLastChild();
}

ConfigurationAccessResult ConfigWriter::setCurrentNode(const std::string& name) {
    return m_impl->makeCurrent(named(name));
}

ConfigurationAccessResult ConfigWriter::setCurrentKeyedNode(const std::string& name,
                                                            const std::string& key) {
    return m_impl->makeCurrent(keyed(name, key));
}

void ConfigWriter::deleteNodes(const std::string& name, const std::string& key) {
    m_impl->deleteChildren(key.empty() ? named(name) : keyed(name, key));
}

void ConfigWriter::putString(const std::string& name, const std::string& value,
                             const std::string& comment) {
    m_impl->putText(name, value, comment);
}

void ConfigWriter::putString(const std::string& value) {
    m_impl->putString(value);
}

void ConfigWriter::putInt(const std::string& name, const int& value, const std::string& comment) {
    m_impl->putText(name, formatNumber(value), comment);
}

void ConfigWriter::putUnsignedInt(const std::string& name, const unsigned int& value,
                                  const std::string& comment) {
    putInt(name, static_cast<int>(value), comment);
}

void ConfigWriter::putFloat(const std::string& name, const float& value,
                            const std::string& comment) {
    putDouble(name, value, comment);
}

void ConfigWriter::putDouble(const std::string& name, const double& value,
                             const std::string& comment) {
    m_impl->putText(name, formatNumber(value), comment);
}

void ConfigWriter::putBool(const std::string& name, const bool& value, const std::string& comment) {
    m_impl->putText(name, value ? "true" : "false", comment);
}

void ConfigWriter::putStringVector(const std::string& name, const std::vector<std::string>& values,
                                   const std::string& comment) {
    m_impl->putStringVector(name, values, comment);
}

void ConfigWriter::putValue(const std::string& name, const std::string& value,
                            const int& /*format*/, const std::string& comment) {
    putString(name, value, comment);
}

void ConfigWriter::putValue(const std::string& name, const char* value, const int& /*format*/,
                            const std::string& comment) {
    putString(name, value == nullptr ? "" : value, comment);
}

void ConfigWriter::putValue(const std::string& name, const int& value, const int& /*format*/,
                            const std::string& comment) {
    putInt(name, value, comment);
}

void ConfigWriter::putValue(const std::string& name, const unsigned int& value,
                            const int& /*format*/, const std::string& comment) {
    putInt(name, static_cast<int>(value), comment);
}

void ConfigWriter::putValue(const std::string& name, const float& value, const int& /*format*/,
                            const std::string& comment) {
    m_impl->putText(name, formatScientific(value), comment);
}

void ConfigWriter::putValue(const std::string& name, const double& value, const int& format,
                            const std::string& comment) {
    m_impl->putText(name, format == 0 ? formatNumber(value) : formatScientific(value), comment);
}

void ConfigWriter::putValue(const std::string& name, const bool& value, const int& /*format*/,
                            const std::string& comment) {
    putBool(name, value, comment);
}

void ConfigWriter::putValue(const std::string& name, const std::vector<std::string>& values,
                            const int& /*format*/, const std::string& comment) {
    putStringVector(name, values, comment);
}

void ConfigWriter::putElement(const std::string& name, const std::string& comment,
                              const std::function<void()>& writeContents) {
    m_impl->keepPlace([&] {
        createNodeAndMakeCurrent(name, comment);
        writeContents();
    });
}

void ConfigWriter::putElementUnlessEmpty(const std::string& name, const std::string& comment,
                                         const std::function<void()>& writeContents) {
    m_impl->putElementUnlessEmpty(name, std::nullopt, comment, writeContents);
}

void ConfigWriter::putKeyedElement(const std::string& name, const std::string& key,
                                   const std::string& comment,
                                   const std::function<void()>& writeContents) {
    m_impl->keepPlace([&] {
        createKeyedNodeAndMakeCurrent(name, key, comment);
        writeContents();
    });
}

void ConfigWriter::putKeyedElementUnlessEmpty(const std::string& name, const std::string& key,
                                              const std::string& comment,
                                              const std::function<void()>& writeContents) {
    m_impl->putElementUnlessEmpty(name, key, comment, writeContents);
}

std::set<std::string>
ConfigWriter::getNamesHiddenByDescendants(const std::vector<std::string>& names) const {
    return m_impl->namesHiddenByDescendants(names);
}

void ConfigWriter::putInFront(const std::string& name, const std::function<void()>& putMissing) {
    if (m_impl->moveToFront(name) == ConfigurationAccessResult::Success)
        return;
    m_impl->keepPlace(putMissing);
    m_impl->moveToFront(name);
}

void ConfigWriter::putClassContents(const ConfigurationObject& object) {
    object.saveContent(*this);
}

void ConfigWriter::putClassContents(const std::string& name, const ConfigurationObject& object,
                                    const std::string& comment) {
    putElement(name, comment, [&] {
        object.saveContent(*this);
        object.keepListsReadable(*this);
    });
}

void ConfigWriter::putClassContents(const std::string& name, const std::string& key,
                                    const ConfigurationObject& object, const std::string& comment) {
    putKeyedElement(name, key, comment, [&] {
        object.saveContent(*this);
        object.keepListsReadable(*this);
    });
}

void ConfigWriter::putOnlyDifferentClassContents(const std::string& name,
                                                 const ConfigurationObject& object,
                                                 ConfigReader& reader, const std::string& comment) {
    m_impl->keepPlace([&] {
        deleteNodes(name, "");
        const SharedReference reference(object, reader);
        if (!object.canBeSavedToUserConfig(reader))
            return;
        createNodeAndMakeCurrent(name, comment);
        object.saveContent(*this, reader, true);
        object.keepListsReadable(*this);
    });
}

void ConfigWriter::putOnlyDifferentClassContents(const std::string& name, const std::string& key,
                                                 const ConfigurationObject& object,
                                                 ConfigReader& reader, const std::string& comment) {
    m_impl->keepPlace([&] {
        m_impl->deleteChildren(keyed(name, key));
        const SharedReference reference(object, reader);
        if (!object.canBeSavedToUserConfig(reader))
            return;
        createKeyedNodeAndMakeCurrent(name, key, comment);
        object.saveContent(*this, reader, true);
        object.keepListsReadable(*this);
    });
}

std::string ConfigWriter::getAsString() {
    PrintedDocument printed = m_impl->print();
    if (!printed.problem.empty())
        s_log.logERROR(printed.problem, __FILE__, __func__, __LINE__);
    return std::move(printed.text);
}

bool ConfigWriter::saveToFile(const FileName& file) {
    return m_impl->saveToFile(file);
}

const std::string& ConfigWriter::getSaveProblem() const {
    return m_impl->saveProblem();
}

} // namespace Orvant
