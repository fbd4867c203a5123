#pragma once

#include <ConfigurationFramework/xml/XmlText.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/util/RefVectorOf.hpp>

namespace Orvant {

/// Adds up, while a configuration document is parsed, what a DOM of it takes, and ends the parse
/// when that is too much, before the memory is filled. Readers make no DOM, but measure all the
/// same: what is read can then be written, too.
///
/// What an application's settings take is far below: it needs default attributes of a DTD, entities
/// or megabytes of empty elements to get there.
///
/// All operations that add throw xercesc::RuntimeException when a limit is passed; the scanner
/// makes a parse error of it.
class DocumentMeasure {
public:
    /// Most attributes of an element, given or declared. Xerces compares each with the others.
    static constexpr std::size_t maxAttributes = 1'000;
    /// Most tags, and most names of attributes.
    static constexpr std::size_t maxNames = 50'000;
    /// Most attributes of type ID, which a DOM compares with one another.
    static constexpr std::size_t maxIds = 10'000;

    /// @return most bytes that the nodes of a DOM may take
    static constexpr std::size_t maxNodeBytes(std::size_t documentSize) {
        return (std::size_t{52} << 20U) + 14 * documentSize;
    }
    /// @return most comparisons of names. A DOM finds each name among those with the same hash,
    ///         which other documents than hostile ones have few of.
    static constexpr std::size_t maxComparisons(std::size_t documentSize) {
        return 10'000'000 + 10 * documentSize;
    }

    /// @param documentSize bytes of the document to come
    explicit DocumentMeasure(std::size_t documentSize = 0)
        : m_maxBytes(maxNodeBytes(documentSize)), m_maxComparisons(maxComparisons(documentSize)) {}

    void startElement(const xercesc::XMLElementDecl& declaration,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      XMLSize_t attributeCount);
    void endElement();
    void addText(const XMLCh* text, XMLSize_t length, bool isCData);
    void addComment(const XMLCh* comment);
    void addInstruction(const XMLCh* target, const XMLCh* data);

private:
    /// Number of a hash that a DOM files names under.
    using Hash = std::uint16_t;
    static constexpr std::size_t hashes = 257;
    struct Tag {
        const xercesc::XMLElementDecl* declaration = nullptr;
        Hash hash = 0;
    };

    Hash hashOf(const xercesc::XMLElementDecl& declaration);
    Hash addName(const XMLCh* name);
    void compare(Hash hash);
    void addAttribute(const xercesc::XMLAttr& attribute);
    void addNode(XMLSize_t characters);
    void add(std::size_t bytes);

    std::size_t m_maxBytes;
    std::size_t m_bytes = 0;
    std::size_t m_depth = 0;
    std::size_t m_deepest = 0;
    std::vector<Tag> m_tags; ///< by the number that the scanner gives each
    /// Of two tags with one number, the later: declared ones and others are numbered apart.
    std::unordered_map<const xercesc::XMLElementDecl*, Hash> m_otherTags;
    std::unordered_map<XmlString, Hash> m_attributeNames; ///< but for those that are everywhere
    std::array<std::size_t, hashes> m_namesOfHash{};
    std::size_t m_maxComparisons;
    std::size_t m_comparisons = 0;
    std::size_t m_ids = 0;
    bool m_endsWithSpace = false; ///< in the open element, with nothing else after it
};

} // namespace Orvant
