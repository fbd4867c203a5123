#include <ConfigurationFramework/schema/TextCuts.h>

#include <algorithm>
#include <cstddef>
#include <unordered_map>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Nodes = std::vector<Index>;

/// The bytes to cut for some children of an element.
class Cuts {
public:
    struct Range {
        std::size_t begin;
        std::size_t end;
    };

    Cuts(const SourceDocument& document, Index parent) : m_document(document) {
        for (const Index child : document.children(parent))
            m_children.push_back(child);
    }

    /// @param position of the node among its siblings
    Range rangeOf(std::size_t position) const {
        const SourceDocument::Node& first = node(firstComment(position));
        return {first.followsText ? first.begin : first.gap, node(lastComment(position)).end};
    }

    std::size_t positionOf(Index child) const {
        return static_cast<std::size_t>(std::ranges::lower_bound(m_children, child) -
                                        m_children.begin());
    }

private:
    const SourceDocument::Node& node(std::size_t position) const {
        return m_document[m_children[position]];
    }
    bool isComment(std::size_t position) const {
        return node(position).kind == SourceDocument::Kind::Comment && !node(position).inEntity;
    }
    bool isOnLineOfPrevious(std::size_t position) const { return node(position).breaksBefore == 0; }

    /// @return position of the first comment of those directly above a node, or of the node
    std::size_t firstComment(std::size_t position) const {
        std::size_t first = position;
        while (first > 0 && isComment(first - 1) && node(first).breaksBefore <= 1 &&
               !node(first).followsText)
            --first;
        // What is on a line with something else belongs to that.
        while (first < position && isOnLineOfPrevious(first))
            ++first;
        return first;
    }

    /// @return position of the last comment on the last line of a node, or of the node
    std::size_t lastComment(std::size_t position) const {
        std::size_t last = position;
        const auto isNextHere = [&] {
            return last + 1 < m_children.size() && isOnLineOfPrevious(last + 1) &&
                   !node(last + 1).followsText;
        };
        while (isNextHere() && isComment(last + 1))
            ++last;
        // Between two elements on one line, it is open which one a comment belongs to.
        return isNextHere() ? position : last;
    }

    const SourceDocument& m_document;
    Nodes m_children;
};

} // namespace

std::string withoutNodes(const std::string& bytes, const SourceDocument& document,
                         const Nodes& cut) {
    std::unordered_map<Index, Cuts> siblings;
    std::string rest;
    std::size_t done = 0;
    for (const Index node : cut) {
        const Index parent = document[node].parent;
        const Cuts& cuts = siblings.try_emplace(parent, document, parent).first->second;
        const Cuts::Range range = cuts.rangeOf(cuts.positionOf(node));
        rest.append(bytes, done, range.begin - done);
        done = range.end;
    }
    return rest.append(bytes, done);
}

} // namespace Orvant
