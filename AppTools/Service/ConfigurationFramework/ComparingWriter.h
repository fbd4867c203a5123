#pragma once

#include <ConfigurationFramework/ElementWriter.h>
#include <ConfigurationFramework/writing/WrittenElement.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace Orvant {

/// Compares what is written with what was written before, and makes elements only from the first
/// difference on: most objects are unchanged at most saves, and making elements takes several times
/// as long.
class ComparingWriter final : public ElementWriter {
public:
    /// Starts anew, with an empty root that is current.
    /// @param expected what is perhaps written into the root; must outlive the writing
    void start(std::span<const WrittenElement> expected);
    /// @return whether exactly what was expected was written. Comments do not count.
    bool isAsExpected() const;
    /// @return all that was written into the root, which is empty and current then
    std::vector<WrittenElement> takeAll();

    void createNode(const std::string& name, const std::string& comment) override;
    void createKeyedNode(const std::string& name, const std::string& key,
                         const std::string& comment) override;
    void enterLastChild() override;
    ConfigurationAccessResult makeCurrent(const ChildSelection& selection) override;
    void deleteChildren(const ChildSelection& selection) override;

    void putText(const std::string& name, const std::string& text,
                 const std::string& comment) override;
    void putString(const std::string& value) override;
    void putStringVector(const std::string& name, const std::vector<std::string>& values,
                         const std::string& comment) override;
    void putElementUnlessEmpty(const std::string& name, const std::optional<std::string>& key,
                               const std::string& comment,
                               const std::function<void()>& writeContents) override;
    void keepPlace(const std::function<void()>& action) override;

    std::set<std::string> namesHiddenByDescendants(const std::vector<std::string>& names) override;
    ConfigurationAccessResult moveToFront(const std::string& name) override;

    PrintedDocument print() override;

private:
    /// An element that is written to, as far as it is as expected.
    struct Level {
        std::span<const WrittenElement> expected; ///< children
        bool isWithText = false;                  ///< whether a text is expected in it
        std::size_t written = 0;                  ///< children
        bool isLastEmpty = false;                 ///< the last was created, and nothing else yet
    };

    const WrittenElement* next();
    bool createAsExpected(const std::string& name, const std::optional<std::string>& key);
    bool closeLast();
    bool isComplete(const Level& level) const;
    void leaveTo(std::size_t depth);
    void build();

    /// From the root to the current element.
    std::vector<Level> m_levels = std::vector<Level>(1);
    std::vector<Place> m_places; ///< the same, when elements began to be made
    bool m_isBuilding = false;   ///< elements are made
};

} // namespace Orvant
