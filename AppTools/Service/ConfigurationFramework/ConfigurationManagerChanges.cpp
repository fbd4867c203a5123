#include <ConfigurationFramework/ConfigurationManagerChanges.h>

#include <ConfigurationFramework/ConfigWriterImpl.h>
#include <ConfigurationFramework/SettingsBase.h>
#include <ConfigurationFramework/model/FreshObject.h>
#include <ConfigurationFramework/reading/ParsedDocument.h>
#include <ConfigurationFramework/writing/ElementMerge.h>
#include <ConfigurationFramework/xml/XmlText.h>

#include <GeneralServices/XercesHelperFunctions.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Orvant {

namespace {

using Element = DocumentTree::Element;

std::string toUtf8(const XmlString& text) {
    return XercesHelperFunctions::xmlChToString(text.c_str());
}

bool hasKey(const DocumentTree& tree, Element element, const WrittenElement& written) {
    return !written.id.key || tree.key(element) == toUtf8(*written.id.key);
}

/// The element of a document whose locks hold for a written one.
/// @param isTarget whether it is written to that document: then a child of an object gets an
///                 element of its own there, which the locks of the default entry are not for
Element find(DocumentTree& tree, Element parent, const WrittenElement& written, bool isTarget) {
    const std::string name = toUtf8(written.id.tag);
    if (written.id.key) {
        const Element keyed = tree.findChild(parent, name, toUtf8(*written.id.key));
        const bool inherits = !isTarget || parent == DocumentTree::root;
        return keyed != DocumentTree::none || !inherits ? keyed
                                                        : tree.findChildWithoutKey(parent, name);
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

/// Replaces what is locked in a document below an element.
/// @param isTarget whether it is the document that is written to
/// @param replacementOf returns what takes the place of a child, given that and its counterpart in
///                      the former element (null: none); nothing to remove it
template <typename Replace>
void replaceLocked(DocumentTree& tree, Element parent, WrittenElement& written,
                   const WrittenElement* former, bool isTarget, Replace replacementOf) {
    const ChildrenById formers(former);
    std::erase_if(written.children, [&](WrittenElement& child) {
        const Element element = find(tree, parent, child, isTarget);
        if (element == DocumentTree::none || child.isLocked)
            return false;
        const WrittenElement* const formerChild = formers.find(child.id);
        if (isLocked(tree, element, child)) {
            auto replacement = replacementOf(formerChild);
            // What a child inherits from the default entry is locked, but not that it is there.
            if (!replacement && parent != DocumentTree::root && !hasKey(tree, element, child))
                replacement = WrittenElement{.id = child.id, .comment = child.comment};
            if (replacement)
                child = std::move(*replacement);
            return !replacement.has_value();
        }
        // A value is locked as a whole; locks of a list's items are for nobody.
        if (child.isGroup())
            replaceLocked(tree, element, child, formerChild, isTarget, replacementOf);
        return false;
    });
}

std::optional<WrittenElement> removed(const WrittenElement* /*former*/) {
    return std::nullopt;
}

std::optional<WrittenElement> asBefore(const WrittenElement* former) {
    return former == nullptr ? std::nullopt : std::optional(*former);
}

std::optional<WrittenElement> lockedAsBefore(const WrittenElement* former) {
    auto locked = asBefore(former);
    if (locked)
        locked->isLocked = true;
    return locked;
}

bool isElementKept(const ConfigurationRegistration& registration) {
    const auto* const settings = dynamic_cast<const SettingsBase*>(registration.object.get());
    return settings != nullptr && settings->isElementKept() && registration.key;
}

/// Whether one of the files has the element of an object.
bool hasElement(const ConfigurationManagerLayers& layers,
                const ConfigurationRegistration& registration) {
    const auto has = [&](const LayerDocument& layer) {
        const auto document = layer.document();
        return document != nullptr &&
               document->tree.findChild(DocumentTree::root, registration.name,
                                        throughDocument(*registration.key)) != DocumentTree::none;
    };
    return has(layers.system) || has(layers.user);
}

/// Puts an element into a root of its own.
WrittenElement inRoot(const WrittenElement& element) {
    return {.id = {u"Configuration", std::nullopt}, .children = {element}};
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
    const bool isNew = isElementKept(registration) && known != nullptr &&
                       !hasElement(*known->layers, registration);
    add(registration, isNew ? nullptr : baseOf(registration, known));
}

void ConfigurationManagerChanges::addAll(const ConfigurationRegistration& registration) {
    add(registration, Written());
}

/// @param base the object as it was last known; null: it was not
void ConfigurationManagerChanges::add(const ConfigurationRegistration& registration,
                                      const Written& base) {
    const Written now = writtenNow(registration, base);
    const bool isUnchanged = base != nullptr && now == base;
    m_states.push_back({registration, now, isUnchanged ? nullptr : base});
    if (isUnchanged && m_system == nullptr)
        return;
    std::optional<WrittenElement> stored;
    if (m_system != nullptr) {
        m_reference.setCompared(registration);
        stored = m_writer.writeDifferences(registration, *registration.object, m_reference);
    } else {
        stored = *now;
    }
    // A class may write more into the user's file than in full.
    if (isUnchanged && (!stored || !hasMore(*stored, *now)))
        return;
    if (stored)
        stored->isKept = isElementKept(registration);
    // What was loaded from the element without a key has to move to the one with the key.
    const Element former =
        isUnchanged || base == nullptr ? DocumentTree::none : fallbackOf(registration);
    WrittenElement current = *now;
    if (former != DocumentTree::none && m_system == nullptr) {
        replaceLocked(m_user.document()->tree, former, current, base.get(), true, lockedAsBefore);
        stored = current;
    }
    if (base != nullptr && former == DocumentTree::none)
        m_base.children.push_back(*base);
    m_now.children.push_back(std::move(current));
    if (stored)
        m_stored.children.push_back(std::move(*stored));
}

/// The object in full: the base itself if it is that.
ConfigurationManagerChanges::Written
ConfigurationManagerChanges::writtenNow(const ConfigurationRegistration& registration,
                                        const Written& base) {
    if (base == nullptr)
        return std::make_shared<const WrittenElement>(
            m_writer.writeInFull(registration, *registration.object));
    auto changed = m_writer.writeIfChanged(registration, *registration.object, *base);
    return changed && !(*changed == *base)
               ? std::make_shared<const WrittenElement>(std::move(*changed))
               : base;
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
    const ConfigurationObject* const keptLocks = wasLoaded ? known->keptLocks.get() : nullptr;
    if (wasLoaded && keptLocks == nullptr)
        known->layers->system.addTo(reader, AdvancedConfigReader::System);
    if (wasLoaded && !isLost)
        known->layers->user.addTo(reader, AdvancedConfigReader::User);
    ElementAddress(registration).load(reader, *former);
    if (keptLocks != nullptr)
        former->restoreLocks(*keptLocks);
    auto written = m_writer.writeLoaded(registration, *former);
    return written ? std::make_shared<const WrittenElement>(std::move(*written)) : nullptr;
}

/// @return the element without a key, if the document has none with the object's
DocumentTree::Element
ConfigurationManagerChanges::fallbackOf(const ConfigurationRegistration& registration) const {
    const auto document = m_user.document();
    if (!registration.key || document == nullptr)
        return DocumentTree::none;
    DocumentTree& tree = document->tree;
    return tree.findChild(DocumentTree::root, registration.name,
                          throughDocument(*registration.key)) == DocumentTree::none
               ? tree.findChildWithoutKey(DocumentTree::root, registration.name)
               : DocumentTree::none;
}

std::size_t ConfigurationManagerChanges::mergeInto(xercesc::DOMElement& root) const {
    WrittenElement base = m_base;
    WrittenElement now = m_now;
    WrittenElement stored = m_stored;
    const bool isTarget = m_system == nullptr;
    forEachLocking([&](DocumentTree& tree) {
        for (WrittenElement* element : {&base, &now, &stored})
            replaceLocked(tree, DocumentTree::root, *element, nullptr, isTarget, removed);
    });
    return mergeChanges(root, {&base, &now, &stored});
}

/// Calls back with each document whose locks hold.
template <typename Visit>
void ConfigurationManagerChanges::forEachLocking(Visit visit) const {
    for (const LayerDocument* const layer : {m_system == nullptr ? &m_user : m_system, m_locking})
        if (const auto document = layer == nullptr ? nullptr : layer->document())
            visit(document->tree);
}

std::vector<ConfigurationManagerChanges::State> ConfigurationManagerChanges::takeStates() {
    const bool isTarget = m_system == nullptr;
    for (State& state : m_states) {
        if (state.base == nullptr)
            continue;
        // What a lock kept out of the file stays a change: the lock may go.
        WrittenElement known = inRoot(*state.written);
        const WrittenElement base = inRoot(*state.base);
        forEachLocking([&](DocumentTree& tree) {
            replaceLocked(tree, DocumentTree::root, known, &base, isTarget, asBefore);
        });
        if (!known.children.empty())
            state.written =
                std::make_shared<const WrittenElement>(std::move(known.children.front()));
    }
    return std::move(m_states);
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
