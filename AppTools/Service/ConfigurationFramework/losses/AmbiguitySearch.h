#pragma once

#include <ConfigurationFramework/losses/RevertibleNames.h>
#include <ConfigurationFramework/losses/WrittenSchema.h>

#include <cstddef>
#include <vector>

namespace Orvant {

/// Finds two elements of one name that a validator could not tell apart: the second can follow
/// where the first could be repeated or left out.
class AmbiguitySearch {
public:
    using Index = SourceDocument::Index;

    struct State {
        std::size_t changes;
        std::size_t losses;
    };
    State state() const { return {m_open.changes(), m_losses.size()}; }
    /// Goes back to what there was before something was added.
    void goBack(const State& state);

    /// Begins content of its own, which follows nothing.
    void begin() { m_open.clear(); }
    /// Goes on with the content that there is.
    /// @return the losses between such elements that were not returned before
    std::vector<Index> add(const std::vector<WrittenSchema::Place>& content);

private:
    struct Lost {
        Index node;
        std::size_t foundFrom; ///< from this one up to itself, all have been returned
    };

    void enter(const WrittenSchema::Place& place, std::vector<Index>& found);
    void findFrom(std::size_t first, std::vector<Index>& found);

    RevertibleNames m_open; ///< with the number of losses before
    std::vector<Lost> m_losses;
};

} // namespace Orvant
