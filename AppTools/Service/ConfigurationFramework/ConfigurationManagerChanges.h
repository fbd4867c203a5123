#pragma once

#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/ConfigurationManagerKnowledge.h>
#include <ConfigurationFramework/ConfigurationManagerLayers.h>
#include <ConfigurationFramework/ElementAddress.h>
#include <ConfigurationFramework/ObjectWriter.h>
#include <ConfigurationFramework/reading/DocumentTree.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

namespace Orvant {

/// What the application changed in objects, to be merged into a document that others may have
/// changed.
class ConfigurationManagerChanges {
public:
    /// @param system what objects are compared with, so that only differences are stored; null:
    ///               they are stored in full
    /// @param user   the document that the changes are for
    /// @param locking what else locks; null: nothing
    ConfigurationManagerChanges(const LayerDocument* system, const LayerDocument& user,
                                const LayerDocument* locking = nullptr);

    /// Has all that a file held count as changed where the file is missing by now.
    void restoreLostFile() { m_restoresLostFile = true; }
    /// Adds what changed in an object since it was last known; null: what is not its default.
    void add(const ConfigurationRegistration& registration,
             const ConfigurationManager::KnownState* known);
    /// Adds everything in an object.
    void addAll(const ConfigurationRegistration& registration);
    /// @return true when no object changed
    bool empty() const {
        return m_base.children.empty() && m_now.children.empty() && m_stored.children.empty();
    }
    /// @return number of elements that were added, replaced or removed
    std::size_t mergeInto(xercesc::DOMElement& root) const;
    /// Puts the document, with the changes merged into it, into the place of the user's in a
    /// reader.
    void addTo(AdvancedConfigReader& reader) const;
    /// An object as it was added.
    struct State {
        ConfigurationRegistration registration;
        std::shared_ptr<const WrittenElement> written; ///< as the file has it with the changes
        std::shared_ptr<const WrittenElement> base = nullptr; ///< that it differs from; null: none
    };
    std::vector<State> takeStates();

private:
    using Written = std::shared_ptr<const WrittenElement>; ///< null: nothing

    void add(const ConfigurationRegistration& registration, const Written& base);
    Written writtenNow(const ConfigurationRegistration& registration, const Written& base);
    Written baseOf(const ConfigurationRegistration& registration,
                   const ConfigurationManager::KnownState* known);
    template <typename Visit>
    void forEachLocking(Visit visit) const;
    DocumentTree::Element fallbackOf(const ConfigurationRegistration& registration) const;

    const LayerDocument* m_system;
    const LayerDocument& m_user;
    const LayerDocument* m_locking;
    bool m_restoresLostFile = false;
    ObjectWriter m_writer;
    SystemReader m_reference;
    std::vector<State> m_states;
    // Roots that hold the objects that changed.
    WrittenElement m_base{{u"Configuration", {}}};
    WrittenElement m_now{{u"Configuration", {}}};
    WrittenElement m_stored{{u"Configuration", {}}};
};

} // namespace Orvant
