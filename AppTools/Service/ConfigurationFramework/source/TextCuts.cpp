#include <ConfigurationFramework/source/TextCuts.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace Orvant {

namespace {

using Index = SourceDocument::Index;
using Nodes = std::vector<Index>;

/// The nodes directly in an element, by position.
class Siblings {
public:
    /// Nodes that go together.
    struct Run {
        std::size_t first;
        std::size_t last;
    };
    struct Range {
        std::size_t begin;
        std::size_t end;
    };

    Siblings(const SourceDocument& document, Index parent) : m_document(document) {
        for (const Index child : document.children(parent))
            m_children.push_back(child);
    }

    /// @return a node with the comments that belong to it
    Run runOf(Index child) const {
        const std::size_t position = positionOf(child);
        return {firstComment(position), lastComment(position)};
    }

    /// @return the bytes to cut, so that what stays begins and ends its line as before
    Range rangeOf(const Run& run, std::string_view bytes) const {
        const SourceDocument::Node& first = node(run.first);
        const std::size_t end = node(run.last).end;
        if (isNextOnLine(run.last) && !isOnLineOfPrevious(run.first))
            return {first.begin, node(run.last + 1).begin};
        if (first.followsText)
            return {first.begin, end};
        // The line before keeps its own end, and nothing from behind the nodes comes there.
        const std::size_t lineEnd = bytes.substr(0, first.begin).substr(first.gap).find('\n');
        const std::size_t rest = bytes.find_first_not_of(" \t\r", end);
        if (lineEnd != std::string_view::npos && rest != std::string_view::npos &&
            bytes[rest] == '\n')
            return {first.gap + lineEnd + 1, rest + 1};
        return {first.gap, end};
    }

    /// @return whether there is nothing but white space between a node and the one before it
    bool followsPrevious(std::size_t position) const {
        return !node(position).followsText && node(position).gap == node(position - 1).end;
    }

private:
    std::size_t positionOf(Index child) const {
        return static_cast<std::size_t>(std::ranges::lower_bound(m_children, child) -
                                        m_children.begin());
    }
    const SourceDocument::Node& node(std::size_t position) const {
        return m_document[m_children[position]];
    }
    bool isComment(std::size_t position) const {
        return node(position).kind == SourceDocument::Kind::Comment && !node(position).inEntity;
    }
    bool isOnLineOfPrevious(std::size_t position) const { return node(position).breaksBefore == 0; }
    /// @return whether there is another node behind a node on its last line
    bool isNextOnLine(std::size_t position) const {
        return position + 1 < m_children.size() && isOnLineOfPrevious(position + 1) &&
               followsPrevious(position + 1);
    }

    /// @return position of the first comment of those directly above a node, or of the node
    std::size_t firstComment(std::size_t position) const {
        std::size_t first = position;
        while (first > 0 && isComment(first - 1) && node(first).breaksBefore <= 1 &&
               followsPrevious(first))
            --first;
        // What is on a line with something else belongs to that.
        while (first < position && isOnLineOfPrevious(first))
            ++first;
        return first;
    }

    /// @return position of the last comment on the last line of a node, or of the node
    std::size_t lastComment(std::size_t position) const {
        std::size_t last = position;
        while (isNextOnLine(last) && isComment(last + 1))
            ++last;
        // Between two elements on one line, it is open which one a comment belongs to.
        return isNextOnLine(last) ? position : last;
    }

    const SourceDocument& m_document;
    Nodes m_children;
};

} // namespace

std::string withoutNodes(const std::string& bytes, const SourceDocument& document,
                         const Nodes& cut) {
    std::unordered_map<Index, Siblings> siblingsIn;
    std::string rest;
    std::size_t done = 0;
    for (auto node = cut.begin(); node != cut.end();) {
        const Index parent = document[*node].parent;
        const Siblings& siblings = siblingsIn.try_emplace(parent, document, parent).first->second;
        Siblings::Run run = siblings.runOf(*node);
        for (++node; node != cut.end() && document[*node].parent == parent; ++node) {
            const Siblings::Run next = siblings.runOf(*node);
            if (next.first != run.last + 1 || !siblings.followsPrevious(next.first))
                break;
            run.last = next.last;
        }
        const Siblings::Range range = siblings.rangeOf(run, bytes);
        rest.append(bytes, done, range.begin - done);
        done = range.end;
    }
    return rest.append(bytes, done);
}

} // namespace Orvant
