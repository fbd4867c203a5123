#include <ConfigurationFramework/ObjectWriter.h>

#include <ConfigurationFramework/ConfigurationObject.h>
#include <ConfigurationFramework/ElementAddress.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Orvant {

namespace {

bool isSaveOnly(const ConfigurationItemBase& item) {
    return item.isSavable() && !item.isLoadable();
}

/// What an element holds of an object and its nameless children.
struct Contents {
    std::unordered_set<XmlString> saveOnly = {}; ///< tags
    std::unordered_multimap<XmlString, const ConfigurationObject*> children = {};
};

void addValues(const ConfigurationObject& object, bool isSaveOnlyItself, Contents& contents) {
    for (auto value = object.beginValueIterator(); value != object.endValueIterator(); ++value)
        if (isSaveOnlyItself || isSaveOnly(**value))
            contents.saveOnly.insert(XercesHelperFunctions::stringToXmlCh((*value)->getName()));
}

void addNamed(const ConfigurationObject& child, Contents& contents) {
    XmlString tag = XercesHelperFunctions::stringToXmlCh(child.getName());
    if (isSaveOnly(child))
        contents.saveOnly.insert(std::move(tag));
    else
        contents.children.emplace(std::move(tag), &child);
}

void add(const ConfigurationObject& object, Contents& contents) {
    addValues(object, false, contents);
    // One of a kind speaks for all.
    if (const ConfigurationObject* const prototype = object.getChildPrototype()) {
        addNamed(*prototype, contents);
        return;
    }
    for (auto child = object.beginObjectIterator(); child != object.endObjectIterator(); ++child) {
        const bool isNameless = (*child)->getName().empty();
        if (isNameless && isSaveOnly(**child))
            addValues(**child, true, contents);
        else if (isNameless)
            add(**child, contents);
        else
            addNamed(**child, contents);
    }
}

/// Removes what is saved but never loaded: nothing is known of it.
void removeSaveOnly(const ConfigurationObject& object, WrittenElement& written) {
    Contents contents;
    add(object, contents);
    std::erase_if(written.children, [&](const WrittenElement& child) {
        return contents.saveOnly.contains(child.id.tag);
    });
    for (WrittenElement& child : written.children) {
        const auto [first, last] = contents.children.equal_range(child.id.tag);
        for (auto found = first; found != last; ++found)
            removeSaveOnly(*found->second, child);
    }
}

} // namespace

ObjectWriter::ObjectWriter()
    : m_writer(WriterTarget::makeWriter(std::make_unique<ComparingWriter>())),
      m_elements(dynamic_cast<ComparingWriter&>(WriterTarget::of(*m_writer))) {}

/// @param former what is perhaps written again
/// @return the only element that was written; nothing when it is the former one, or there is none
template <typename Write>
std::optional<WrittenElement> ObjectWriter::take(Write write,
                                                 std::span<const WrittenElement> former) {
    m_elements.start(former);
    write();
    if (m_elements.isAsExpected())
        return std::nullopt;
    std::vector<WrittenElement> written = m_elements.takeAll();
    return written.empty() ? std::nullopt : std::optional(std::move(written.front()));
}

WrittenElement ObjectWriter::writeInFull(const ConfigurationRegistration& registration,
                                         const ConfigurationObject& object) {
    return take([&] { ElementAddress(registration).put(*m_writer, object); }).value();
}

std::optional<WrittenElement>
ObjectWriter::writeIfChanged(const ConfigurationRegistration& registration,
                             const ConfigurationObject& object, const WrittenElement& former) {
    return take([&] { ElementAddress(registration).put(*m_writer, object); }, {&former, 1});
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
