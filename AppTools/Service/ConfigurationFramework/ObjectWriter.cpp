#include <ConfigurationFramework/ObjectWriter.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ElementAddress.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <string>
#include <utility>
#include <vector>

namespace Orvant {

namespace {

std::string toUtf8(const XmlString& text) {
    return XercesHelperFunctions::xmlChToString(text.c_str());
}

bool isSaveOnly(const ConfigurationItemBase& item) {
    return item.isSavable() && !item.isLoadable();
}

void removeChildren(const std::string& name, WrittenElement& written) {
    const XmlString tag = XercesHelperFunctions::stringToXmlCh(name);
    std::erase_if(written.children,
                  [&](const WrittenElement& child) { return child.id.tag == tag; });
}

void removeValues(const ConfigurationObject& object, WrittenElement& written) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        removeChildren((*value)->getName(), written);
}

/// Removes what is saved but never loaded: nothing is known of it.
void removeSaveOnly(const ConfigurationObject& object, WrittenElement& written) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        if (isSaveOnly(**value))
            removeChildren((*value)->getName(), written);
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child) {
        const bool isNameless = (*child)->getName().empty();
        if (isNameless && isSaveOnly(**child))
            removeValues(**child, written);
        else if (isNameless)
            removeSaveOnly(**child, written);
        else if (isSaveOnly(**child))
            removeChildren((*child)->getName(), written);
        else
            for (WrittenElement& element : written.children)
                if (toUtf8(element.id.tag) == (*child)->getName())
                    removeSaveOnly(**child, element);
    }
}

} // namespace

ObjectWriter::ObjectWriter()
    : m_writer(WriterTarget::makeWriter(std::make_unique<ElementWriter>())),
      m_elements(dynamic_cast<ElementWriter&>(WriterTarget::of(*m_writer))) {}

/// @return the only element that was written; nothing when there is none
template <typename Write>
std::optional<WrittenElement> ObjectWriter::take(Write write) {
    m_elements.takeAll(); // what an exception left
    write();
    std::vector<WrittenElement> written = m_elements.takeAll();
    return written.empty() ? std::nullopt : std::optional(std::move(written.front()));
}

WrittenElement ObjectWriter::writeInFull(const ConfigurationRegistration& registration,
                                         const ConfigurationObject& object) {
    return take([&] { ElementAddress(registration).put(*m_writer, object); }).value();
}

std::optional<WrittenElement>
ObjectWriter::writeDifferences(const ConfigurationRegistration& registration,
                               const ConfigurationObject& object, ConfigReader& reference) {
    return take([&] { ElementAddress(registration).putDifferences(*m_writer, object, reference); });
}

std::optional<WrittenElement>
ObjectWriter::writeLoaded(const ConfigurationRegistration& registration,
                          const ConfigurationObject& object) {
    if (isSaveOnly(object))
        return std::nullopt;
    WrittenElement written = writeInFull(registration, object);
    removeSaveOnly(object, written);
    return written;
}

} // namespace Orvant
