#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Orvant::Support {

/// An element as it stands in a document.
struct WrittenElement {
    std::string name;     ///< without prefix
    std::string_view tag; ///< start tag
    std::map<std::string, std::string> attributes;
    std::vector<WrittenElement> children;
    std::size_t begin = 0;
    std::size_t end = 0; ///< behind it

    /// @return its value; empty when there is no such attribute
    std::string attribute(const std::string& key) const;
};

std::string withoutPrefix(const std::string& name);

/// @return the words in these attributes of an element and all in it
std::set<std::string> wordsIn(const WrittenElement& element,
                              const std::set<std::string>& attributes);
/// The same without prefixes.
std::set<std::string> namesIn(const WrittenElement& element,
                              const std::set<std::string>& attributes);

/// A well-formed document whose markup is ASCII, as it is written.
class WrittenDocument {
public:
    /// What is between two elements, or one tag.
    struct Token {
        enum Kind { Start, End, Empty, Comment, Blank, Other };
        Kind kind;
        std::size_t begin;
        std::size_t end; ///< behind it
    };

    /// @param text is kept by reference
    /// @throws std::runtime_error when it is not well-formed in a way that matters here
    explicit WrittenDocument(std::string_view text);

    std::string_view text() const { return m_text; }
    std::string_view text(const Token& token) const {
        return m_text.substr(token.begin, token.end - token.begin);
    }
    const std::vector<Token>& tokens() const { return m_tokens; }
    const WrittenElement& element() const { return m_element; }

private:
    Token tokenAt(std::size_t begin) const;
    std::size_t endOfTag(std::size_t begin) const;
    std::size_t endOfDoctype(std::size_t begin) const;
    std::size_t behind(std::string_view mark, std::size_t from) const;
    WrittenElement elementOf(std::vector<Token>::const_iterator& token) const;

    std::string_view m_text;
    std::vector<Token> m_tokens;
    WrittenElement m_element;
};

/// An element that was cut out of a schema.
struct CutElement {
    const WrittenElement* element = nullptr;
    const WrittenElement* owner =
        nullptr;                 ///< the declaration of the schema that it is in, or is itself
    bool isInInlineType = false; ///< of an element in that declaration
};

/// What was cut out of a schema.
class SchemaCut {
public:
    /// Both are kept by reference.
    SchemaCut(const WrittenDocument& original, const WrittenDocument& result);

    const WrittenDocument& original() const { return m_original; }
    const WrittenDocument& result() const { return m_result; }
    const std::vector<CutElement>& elements() const { return m_elements; }
    /// @return what else differs, besides the comments that belong to them; empty: nothing
    std::string difference() const;

private:
    bool align(const WrittenElement& original, const WrittenElement& result,
               const CutElement& place, std::vector<CutElement>& cut) const;
    std::string differenceOfTokens() const;
    std::string differenceOfLines() const;
    bool isOnLinesOfItsOwn(const WrittenElement& element) const;

    const WrittenDocument& m_original;
    const WrittenDocument& m_result;
    std::vector<CutElement> m_elements;
    bool m_aligned;
};

} // namespace Orvant::Support
