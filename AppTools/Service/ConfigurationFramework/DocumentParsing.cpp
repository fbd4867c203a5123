#include <ConfigurationFramework/DocumentParsing.h>

#include <ConfigurationFramework/RegularFile.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>
#include <Transcoding/Transcode.h>
#include <UnicodeTools/UnicodeTools.h>

#include <cstring>
#include <new>
#include <utility>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/internal/XMLReader.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

namespace Orvant {

namespace {

const Logging s_log("DocumentParsing");

// What a parse needs besides what its document takes.
constexpr std::size_t freeBlockSize = std::size_t{64} << 20U;
// A buffer has two bytes a character and doubles when it grows.
constexpr std::size_t blockBytesPerByte = 8;

constexpr const XMLCh* memorySystemId = u"example";

} // namespace

ParserMemory::~ParserMemory() {
    while (m_blocks.next != &m_blocks)
        deallocate(m_blocks.next + 1);
}

/// @throws xercesc::OutOfMemoryException when the limit is passed
void ParserMemory::countExpansion(XMLSize_t size) {
    // For the document and for each entity that it expands, the scanner makes a reader, whose size
    // nothing else has. In Xerces, a block made with a memory manager carries a header.
    static const XMLSize_t header =
        xercesc::XMLPlatformUtils::alignPointerForNewBlockAllocation(sizeof(MemoryManager*));
    if (size != header + sizeof(xercesc::XMLReader) || !std::exchange(m_hasDocument, true))
        return;
    if (m_expansions++ < m_limit)
        return;
    m_isExceeded = true;
    throw xercesc::OutOfMemoryException();
}

void ParserMemory::limitBlocksFor(std::size_t documentSize) {
    m_largestBlock = freeBlockSize + blockBytesPerByte * documentSize;
}

void* ParserMemory::allocate(XMLSize_t size) {
    countExpansion(size);
    if (size > m_largestBlock) {
        m_isExceeded = true;
        throw xercesc::OutOfMemoryException();
    }
    void* const place = xercesc::XMLPlatformUtils::fgMemoryManager->allocate(sizeof(Block) + size);
    auto* const block = new (place) Block{m_blocks.previous, &m_blocks};
    block->previous->next = block;
    block->next->previous = block;
    return block + 1;
}

void ParserMemory::deallocate(void* memory) {
    if (memory == nullptr)
        return;
    Block* const block = static_cast<Block*>(memory) - 1;
    block->previous->next = block->next;
    block->next->previous = block->previous;
    xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(block);
}

xercesc::MemoryManager* ParserMemory::getExceptionMemoryManager() {
    return xercesc::XMLPlatformUtils::fgMemoryManager->getExceptionMemoryManager();
}

ParserConfinement::ParserConfinement() : m_memory(maxEntityReferences) {
    m_securityManager.setEntityExpansionLimit(maxEntityReferences);
}

xercesc::InputSource* ParserConfinement::resolveEntity(const XMLCh*, const XMLCh* systemId) {
    s_log.logERROR("Not opened: " + XercesHelperFunctions::xmlChToString(systemId) +
                       ", which a document refers to",
                   __FILE__, __func__, __LINE__);
    static constexpr XMLByte nothing[1] = {};
    return new xercesc::MemBufInputSource(nothing, 0, systemId);
}

void ParserConfinement::parse(xercesc::XercesDOMParser& parser, const char* bytes, std::size_t size,
                              const XMLCh* systemId) {
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes), size,
                                            systemId);
    m_memory.limitBlocksFor(size);
    try {
        parser.parse(source);
    } catch (const xercesc::OutOfMemoryException&) {
        if (m_memory.isExceeded() && parser.getErrorHandler() != nullptr)
            parser.getErrorHandler()->fatalError(xercesc::SAXParseException(
                u"entity references expand too far", nullptr, systemId, 0, 0));
        else
            ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
    }
}

void ParserConfinement::parseFile(xercesc::XercesDOMParser& parser, const FileName& file) {
    const std::wstring widePath = UnicodeTools::utf8_to_wstring(file.toNativeString());
    const auto systemId = transcode<XMLCh>(std::wstring_view(widePath));
    // The bytes are read here because Xerces would take the name apart as a URL, spell it in the
    // locale's encoding, and leak when it is that of a directory.
    const auto bytes = readRegularFile(file);
    if (!bytes)
        ThrowXML1(xercesc::RuntimeException, xercesc::XMLExcepts::Scan_CouldNotOpenSource,
                  systemId.c_str());
    parse(parser, bytes->data(), bytes->size(), systemId.c_str());
}

void ParserConfinement::parseString(xercesc::XercesDOMParser& parser, const std::string& content) {
    parse(parser, content.c_str(), std::strlen(content.c_str()), memorySystemId);
}

void ParserConfinement::parseBytes(xercesc::XercesDOMParser& parser, const std::string& bytes) {
    parse(parser, bytes.data(), bytes.size(), memorySystemId);
}

} // namespace Orvant
