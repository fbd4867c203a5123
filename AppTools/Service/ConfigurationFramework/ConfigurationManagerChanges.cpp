#include <ConfigurationFramework/ConfigurationManagerChanges.h>

#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/reading/ParsedDocument.h>
#include <ConfigurationFramework/writing/ElementMerge.h>
#include <ConfigurationFramework/xml/DomWalk.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

using Element = DocumentTree::Element;

std::string toUtf8(const XmlString& text) {
    return XercesHelperFunctions::xmlChToString(text.c_str());
}

/// The element of a document that a written one is loaded from.
Element find(DocumentTree& tree, Element parent, const WrittenElement& written) {
    const std::string name = toUtf8(written.id.tag);
    if (written.id.key) {
        const Element keyed = tree.findChild(parent, name, toUtf8(*written.id.key));
        return keyed != DocumentTree::none ? keyed : tree.findChildWithoutKey(parent, name);
    }
    const Element child = tree.findChild(parent, name);
    const bool isList = written.isList() && !written.children.empty();
    return child != DocumentTree::none || !isList ? child : tree.findBelow(parent, name);
}

/// Whether a load takes the lock of an element. It does not where a value holds markup.
bool isLocked(const DocumentTree& tree, Element element, const WrittenElement& written) {
    const bool holdsMarkup = tree.hasChildren(element) && !tree.text(element);
    return !tree.isEditable(element) && (!holdsMarkup || written.isGroup() || written.isList());
}

/// Removes what is locked in a document below an element.
void removeLocked(DocumentTree& tree, Element parent, WrittenElement& written) {
    std::erase_if(written.children, [&](WrittenElement& child) {
        const Element element = find(tree, parent, child);
        if (element == DocumentTree::none)
            return false;
        if (isLocked(tree, element, child))
            return true;
        // A value is locked as a whole; locks of a list's items are for nobody.
        if (child.isGroup())
            removeLocked(tree, element, child);
        return false;
    });
}

} // namespace

ConfigurationManagerChanges::ConfigurationManagerChanges(const LayerDocument* system,
                                                         const LayerDocument& user,
                                                         const LayerDocument* locking)
    : m_system(system), m_user(user), m_locking(locking) {
    if (system != nullptr)
        system->addTo(m_reference, AdvancedConfigReader::System);
}

void ConfigurationManagerChanges::add(const ConfigurationRegistration& registration,
                                      const ConfigurationManager::KnownState* known) {
    add(registration, baseOf(registration, known));
}

void ConfigurationManagerChanges::addAll(const ConfigurationRegistration& registration) {
    add(registration, Written());
}

void ConfigurationManagerChanges::add(const ConfigurationRegistration& registration,
                                      const Written& base) {
    const auto now = std::make_shared<const WrittenElement>(
        m_writer.writeInFull(registration, *registration.object));
    const bool isUnchanged = base != nullptr && *base == *now;
    m_states.push_back({registration, now});
    std::optional<WrittenElement> stored;
    if (m_system != nullptr) {
        m_reference.setCompared(registration);
        stored = m_writer.writeDifferences(registration, *registration.object, m_reference);
    } else if (!isUnchanged) {
        stored = *now;
    }
    if (isUnchanged && (!stored || !hasMore(*stored, *now)))
        return;
    // What was loaded from the element without a key has to move to the one with the key.
    if (base != nullptr && (isUnchanged || !isFallbackUsed(registration)))
        m_base.children.push_back(*base);
    m_now.children.push_back(*now);
    if (stored)
        m_stored.children.push_back(std::move(*stored));
}

/// The object as this process last knew it to be in the files; nothing: not at all.
ConfigurationManagerChanges::Written
ConfigurationManagerChanges::baseOf(const ConfigurationRegistration& registration,
                                    const ConfigurationManager::KnownState* known) {
    const bool wasLoaded = known != nullptr && !known->isLoadRefused;
    // All that a lost file held is written again, though only part of it was changed.
    const bool isLost =
        m_restoresLostFile && wasLoaded && known->layers->user.isAccepted() && !m_user.isAccepted();
    if (wasLoaded && known->written && !isLost)
        return known->written;
    std::unique_ptr<ConfigurationObject> former;
    try {
        former = makeFresh(*registration.object);
    } catch (const std::logic_error&) {
        return nullptr; // it is saved as long as nothing has to be compared
    }
    AdvancedConfigReader reader;
    if (wasLoaded)
        known->layers->system.addTo(reader, AdvancedConfigReader::System);
    if (wasLoaded && !isLost)
        known->layers->user.addTo(reader, AdvancedConfigReader::User);
    ElementAddress(registration).load(reader, *former);
    auto written = m_writer.writeLoaded(registration, *former);
    return written ? std::make_shared<const WrittenElement>(std::move(*written)) : nullptr;
}

/// Whether the document has the object only under its name without a key.
bool ConfigurationManagerChanges::isFallbackUsed(
    const ConfigurationRegistration& registration) const {
    const auto document = m_user.document();
    if (!registration.key || document == nullptr)
        return false;
    DocumentTree& tree = document->tree;
    return tree.findChild(DocumentTree::root, registration.name,
                          throughDocument(*registration.key)) == DocumentTree::none &&
           tree.findChildWithoutKey(DocumentTree::root, registration.name) != DocumentTree::none;
}

std::size_t ConfigurationManagerChanges::mergeInto(xercesc::DOMElement& root) const {
    WrittenElement base = m_base;
    WrittenElement now = m_now;
    WrittenElement stored = m_stored;
    for (const LayerDocument* const layer : {m_system == nullptr ? &m_user : m_system, m_locking}) {
        const auto document = layer == nullptr ? nullptr : layer->document();
        if (document != nullptr)
            for (WrittenElement* element : {&base, &now, &stored})
                removeLocked(document->tree, DocumentTree::root, *element);
    }
    return mergeChanges(root, {&base, &now, &stored});
}

void ConfigurationManagerChanges::addTo(AdvancedConfigReader& reader) const {
    if (empty())
        return;
    const auto document = m_user.isAccepted() ? ConfigWriterImpl::openBytes(m_user.bytes())
                                              : std::make_unique<ConfigWriterImpl>("");
    if (mergeInto(document->root()) != 0)
        LayerDocument(m_user.file(), document->print().text, document->version(), true)
            .addTo(reader, AdvancedConfigReader::User);
}

} // namespace Orvant
