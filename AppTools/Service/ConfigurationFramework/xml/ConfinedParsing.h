#pragma once

#include <ConfigurationFramework/xml/ParserMemory.h>

#include <cstddef>
#include <memory>
#include <string>

#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/util/SecurityManager.hpp>

namespace Orvant {

class ConfinedParser;
class FileName;

/// Confines a parser to the document that it is given: everything external (entities, a DTD)
/// resolves to nothing, so that no file is read and no connection is made. What the document may
/// expand to is limited: the number of entity references, wherever they are, and how far they nest
/// and expand; what its DTD holds; and the total memory. Exceeding a limit is a parse error. What
/// is not opened is reported in the error log. Must outlive the parser.
class ParserConfinement : public xercesc::EntityResolver {
public:
    static constexpr std::size_t maxEntityReferences = 10'000;
    /// Maximum number of characters that references in content expand to.
    static constexpr std::size_t maxCharacters = 10'000'000;

    /// Limits that depend on the kind of document.
    struct Limits {
        /// Maximum number of characters that references in attributes and in a DTD expand to,
        /// except the last. Xerces does not report their entities, so each counts as the longest.
        std::size_t untoldCharacters;
        /// Bytes of memory per byte of a document, on top of the 64 MiB that any may take. A DTD
        /// may take a quarter of that, on top of 4 MiB.
        std::size_t memoryFactor;
    };
    static constexpr Limits configurations{500'000, 16};
    static constexpr Limits schemas{maxCharacters, 64};

    explicit ParserConfinement(const Limits& limits);

    /// @return a confined parser: a ConfinedParser with Xerces' default features
    template <typename Parser>
    std::unique_ptr<Parser> makeParser() {
        return std::make_unique<Parser>(*this);
    }

    /// Parses a file with the confined parser.
    /// @return the bytes of the file
    /// @throws xercesc::XMLException when the file is not a regular file or cannot be read
    /// @throws FileNameException for a name that no file system could hold
    /// and as parseString()
    std::string parseFile(ConfinedParser& parser, const FileName& file);

    /// Parses a document in memory with the confined parser.
    /// @param content the document, up to its first NUL
    /// @throws xercesc::XMLException for an exceeded limit if the parser has no error handler to
    ///         report it to, and for a document that does not fit into memory
    /// @throws xercesc::DOMException for an XML version or a name of a document type that a DOM
    ///         does not accept
    void parseString(ConfinedParser& parser, const std::string& content);

    /// Parses a document in memory with the confined parser.
    /// @param bytes the document, all of it
    /// @throws as parseString()
    void parseBytes(ConfinedParser& parser, const std::string& bytes);

    /// @return bytes of the document that is being parsed
    std::size_t documentSize() const { return m_documentSize; }

    /// @return which limit made a document take "too much memory", in English; null if none did
    const char* exceeded() const { return m_memory.exceeded(); }

    xercesc::InputSource* resolveEntity(const XMLCh* publicId, const XMLCh* systemId) override;

private:
    friend class ConfinedParser;

    void parse(ConfinedParser& parser, const char* bytes, std::size_t size, const XMLCh* systemId);

    // Counts the references in content and attributes, and reports an excess like any other error.
    xercesc::SecurityManager m_securityManager;
    // Counts all references, also those within a DTD.
    ParserMemory m_memory;
    std::size_t m_memoryFactor; ///< bytes for each byte of a document
    std::size_t m_documentSize = 0;
};

/// The Xerces DOM parser, confined. It keeps only the replacement of an entity reference and only
/// the name of a DTD: what a DTD declares takes effect in the scanner, and a DOM would hold it a
/// second time and give default attributes to new elements.
class ConfinedParser : public xercesc::XercesDOMParser {
public:
    explicit ConfinedParser(ParserConfinement& confinement);

    void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
    void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;

    void entityDecl(const xercesc::DTDEntityDecl& declaration, bool isParameter,
                    bool isIgnored) override;
    void startIntSubset() override;
    void endIntSubset() override;
    void startExtSubset() override {}
    void endExtSubset() override {}
    void startAttList(const xercesc::DTDElementDecl&) override {}
    void endAttList(const xercesc::DTDElementDecl&) override {}
    void attDef(const xercesc::DTDElementDecl&, const xercesc::DTDAttDef&, bool) override {}
    void elementDecl(const xercesc::DTDElementDecl&, bool) override {}
    void notationDecl(const xercesc::XMLNotationDecl&, bool) override {}
    void doctypeComment(const XMLCh*) override {}
    void doctypePI(const XMLCh*, const XMLCh*) override {}
    void doctypeWhitespace(const XMLCh*, XMLSize_t) override {}

protected:
    /// @return bytes of the document that is being parsed
    std::size_t documentSize() const { return m_confinement.documentSize(); }

private:
    ParserConfinement& m_confinement;
};

} // namespace Orvant
