#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/util/SecurityManager.hpp>

namespace Orvant {

class FileName;

/// The memory of a parser, from Xerces' own. Counts what is allocated to expand entity references,
/// and frees at its end what the parser leaves behind.
class ParserMemory : public xercesc::MemoryManager {
public:
    /// @param limit how many references may be expanded
    explicit ParserMemory(std::size_t limit) : m_limit(limit) {}
    ParserMemory(const ParserMemory&) = delete;
    ParserMemory& operator=(const ParserMemory&) = delete;
    ~ParserMemory() override;

    /// @return true when a limit was passed
    bool isExceeded() const { return m_isExceeded; }

    void limitExpansions(std::size_t limit) { m_limit = limit; }

    /// Refuses from now on a block so large that no document of that size needs it, which takes
    /// references of large entities, in an attribute say.
    void limitBlocksFor(std::size_t documentSize);

    /// @throws xercesc::OutOfMemoryException when a limit is passed: what it takes to end the
    /// parse
    void* allocate(XMLSize_t size) override;
    void deallocate(void* memory) override;
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    /// Stands before each block and links it with the others.
    struct alignas(std::max_align_t) Block {
        Block* previous = this;
        Block* next = this;
    };

    void countExpansion(XMLSize_t size);

    Block m_blocks; ///< both ends of the ring
    std::size_t m_limit;
    std::size_t m_expansions = 0;
    std::size_t m_largestBlock = std::numeric_limits<std::size_t>::max();
    bool m_hasDocument = false;
    bool m_isExceeded = false;
};

/// Keeps a parser to the document that it is given: whatever is external (entities, a DTD) resolves
/// to nothing, so that no file is read and no connection made, and more than
/// `maxEntityReferences` entity references, wherever they stand, are a parse error. What is not
/// opened is told in the error log. Must outlive the parser.
class ParserConfinement : public xercesc::EntityResolver {
public:
    static constexpr std::size_t maxEntityReferences = 10'000;

    ParserConfinement();

    /// @return a confined parser with Xerces' default features
    template <typename Parser>
    std::unique_ptr<Parser> makeParser() {
        auto parser = std::make_unique<Parser>(nullptr, &m_memory, nullptr);
        parser->setEntityResolver(this);
        parser->setSecurityManager(&m_securityManager);
        return parser;
    }

    /// Allows another number of entity references from now on, those before included.
    void limitReferences(std::size_t limit) { m_memory.limitExpansions(limit); }

    /// Parses a file with the confined parser.
    /// @throws xercesc::XMLException when the file is not a regular file or cannot be read
    /// @throws FileNameException for a name that no file system could hold
    /// and as parseString()
    void parseFile(xercesc::XercesDOMParser& parser, const FileName& file);

    /// Parses a document in memory with the confined parser.
    /// @param content the document, up to its first NUL
    /// @throws xercesc::XMLException for too many entity references where the parser has no error
    ///         handler to tell of them, and for a document that the memory cannot hold
    void parseString(xercesc::XercesDOMParser& parser, const std::string& content);

    /// Parses a document in memory with the confined parser.
    /// @param bytes the document, all of it
    /// @throws xercesc::XMLException as parseString()
    void parseBytes(xercesc::XercesDOMParser& parser, const std::string& bytes);

    xercesc::InputSource* resolveEntity(const XMLCh* publicId, const XMLCh* systemId) override;

private:
    void parse(xercesc::XercesDOMParser& parser, const char* bytes, std::size_t size,
               const XMLCh* systemId);

    // Counts the references in content and attributes, and reports them as any other error.
    xercesc::SecurityManager m_securityManager;
    // Counts all of them, those within a DTD too.
    ParserMemory m_memory;
};

} // namespace Orvant
