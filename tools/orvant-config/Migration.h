#pragma once

#include "ElementLines.h"
#include "FormerNames.h"

#include <ConfigurationFramework/ConfigurationCatalogue.h>
#include <ConfigurationFramework/ConfigurationFileEditor.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace Orvant::Tool {

/// What a migration did with an element.
struct MigrationStep {
    enum Kind {
        Renamed,  ///< it has its name of today
        Replaced, ///< its text is one of today
        Dropped,  ///< it, or its lock, is not in the new file
        Kept      ///< it stays, but no load takes it
    };

    Kind kind;
    ConfigurationElementPath path; ///< in the file as it was; of a text: today's
    unsigned int line;             ///< in the file as it was; 0: it is not known
    std::string text;              ///< what was done, for people
};

/// Makes the document of an earlier version one of today.
class Migration {
public:
    /// @param lines all must outlive this
    Migration(const ConfigurationCatalogue& catalogue, const SettingIndex& settings,
              ConfigurationFileEditor& editor, const ElementLines& lines);

    /// Moves elements to their places of today, drops those without one, and replaces former texts.
    /// @return what was done, by line
    std::vector<MigrationStep> run();

private:
    /// An element of the file as it was.
    struct Element {
        ConfigurationElementPath path;    ///< as it was
        ConfigurationElementPath current; ///< as it is
        const CatalogueItem* item;        ///< null: it has no place today
        ConfigurationElementPath today;   ///< its place, if it has one
        std::size_t end = 0;              ///< of those that are in it, which come after it
        bool isLeft = false;              ///< all that was to be moved out of it is
    };

    void collect();
    void move();
    void moveOne(Element& element);
    void moveFreely(Element& element);
    void drop();
    bool hadSettings(std::size_t position) const;
    void checkTexts();
    void checkText(const ConfigurationElementPath& place, const CatalogueItem& item,
                   unsigned int line);
    void tell(MigrationStep::Kind kind, const Element& element, const std::string& text);

    const ConfigurationCatalogue& m_catalogue;
    FormerNames m_names;
    ConfigurationFileEditor& m_editor;
    const ElementLines& m_lines;
    std::vector<Element> m_elements; ///< in document order
    std::vector<MigrationStep> m_steps;
};

} // namespace Orvant::Tool
