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

/// Adds up what a DOM of a configuration document takes while the document is parsed, and ends the
/// parse when that is too much, before memory runs out. Readers build no DOM, but measure all the
/// same, so that what is read can also be written.
///
/// An application's settings stay far below: it takes default attributes of a DTD, entities or
/// megabytes of empty elements to get there.
///
/// All operations that add throw xercesc::RuntimeException when a limit is exceeded; the scanner
/// turns it into a parse error.
class DocumentMeasure {
public:
    /// Maximum attributes of an element, given or declared. Xerces compares each with the others.
    static constexpr std::size_t maxAttributes = 1'000;
    /// Maximum number of tags, and of attribute names.
    static constexpr std::size_t maxNames = 50'000;
    /// Maximum number of attributes of type ID, which a DOM compares with one another.
    static constexpr std::size_t maxIds = 10'000;

    /// @return maximum number of bytes that the nodes of a DOM may take
    static constexpr std::size_t maxNodeBytes(std::size_t documentSize) {
        return (std::size_t{52} << 20U) + 14 * documentSize;
    }
    /// @return maximum number of name comparisons. A DOM finds each name among those with the same
    ///         hash, of which only hostile documents have many.
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
    /// Hash by which a DOM stores names.
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
    /// Of two tags with one number, the later: declared ones and others are numbered separately.
    std::unordered_map<const xercesc::XMLElementDecl*, Hash> m_otherTags;
    std::unordered_map<XmlString, Hash> m_attributeNames; ///< except those that are everywhere
    std::array<std::size_t, hashes> m_namesOfHash{};
    std::size_t m_maxComparisons;
    std::size_t m_comparisons = 0;
    std::size_t m_ids = 0;
    bool m_endsWithSpace = false; ///< in the open element, with nothing else after it
};

} // namespace Orvant
