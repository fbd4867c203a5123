#include <ConfigurationFramework/WriterTarget.h>

#include <ConfigurationFramework/ConfigWriter.h>
#include <ConfigurationFramework/files/FileSaving.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>

#include <system_error>
#include <utility>

#include <xercesc/dom/DOMException.hpp>

namespace Orvant {

namespace {

const Logging s_log("ConfigWriter");

XmlString checked(XmlText text, const std::string& elementName) {
    if (text.changed)
        s_log.logERROR("Characters that XML cannot hold were replaced by U+FFFD in the element \"" +
                           elementName + '"',
                       __FILE__, __func__, __LINE__);
    return std::move(text.text);
}

} // namespace

WriterTarget::~WriterTarget() = default;

std::unique_ptr<ConfigWriter> WriterTarget::makeWriter(std::unique_ptr<WriterTarget> target) {
    return std::unique_ptr<ConfigWriter>(new ConfigWriter(std::move(target)));
}

WriterTarget& WriterTarget::of(const ConfigWriter& writer) {
    return *writer.m_impl;
}

bool WriterTarget::saveToFile(const FileName& file) {
    try {
        PrintedDocument printed = print();
        if (printed.problem.empty())
            if (const std::error_code error = saveInPlace(file, printed.text))
                printed.problem = error.message();
        m_saveProblem = std::move(printed.problem);
    } catch (const FileNameException& e) {
        m_saveProblem = e.what();
    }
    return m_saveProblem.empty();
}

ChildSelection named(const std::string& name) {
    return {XercesHelperFunctions::stringToXmlCh(name), std::nullopt};
}

ChildSelection keyed(const std::string& name, const std::string& key) {
    return {XercesHelperFunctions::stringToXmlCh(name), toXmlText(key).text};
}

XmlString toTag(const std::string& name) {
    XmlText tag = toXmlText(name);
    if (tag.changed)
        throw xercesc::DOMException(xercesc::DOMException::INVALID_CHARACTER_ERR);
    return std::move(tag.text);
}

XmlString toText(const std::string& text, const std::string& elementName) {
    return checked(toXmlText(text), elementName);
}

XmlString toComment(const std::string& comment, const std::string& elementName) {
    return checked(toXmlComment(comment), elementName);
}

} // namespace Orvant
