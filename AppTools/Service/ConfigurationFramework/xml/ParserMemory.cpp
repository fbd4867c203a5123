#include <ConfigurationFramework/xml/ParserMemory.h>

#include <algorithm>
#include <new>
#include <utility>

#include <xercesc/internal/XMLReader.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace Orvant {

namespace {

constexpr const char* s_expansion = "the text that entity references expand to";

} // namespace

ParserMemory::~ParserMemory() {
    while (m_blocks.next != &m_blocks)
        deallocate(m_blocks.next + 1);
}

void ParserMemory::addEntity(std::size_t length) {
    m_longestEntity = std::max(m_longestEntity, length);
}

void ParserMemory::tellExpansion(std::size_t length) {
    m_awaitsTelling = false;
    m_told += length;
    refuseIf(m_told > m_maxTold, s_expansion);
}

void ParserMemory::refuseIf(bool isTooMuch, const char* what) {
    if (!isTooMuch)
        return;
    m_exceeded = what;
    throw xercesc::OutOfMemoryException();
}

/// The scanner makes a reader for the document and for each entity that it expands; nothing else
/// has the size of a reader.
bool ParserMemory::isReader(XMLSize_t size) {
    // In Xerces, a block made with a memory manager carries a header.
    static const XMLSize_t header =
        xercesc::XMLPlatformUtils::alignPointerForNewBlockAllocation(sizeof(MemoryManager*));
    return size == header + sizeof(xercesc::XMLReader);
}

void ParserMemory::countExpansion() {
    if (m_readers++ == 0)
        return; // It reads the document.
    if (std::exchange(m_awaitsTelling, true))
        m_untold += m_longestEntity;
    refuseIf(m_expansions++ >= m_maxExpansions, "the number of entity references");
    refuseIf(m_readers > maxNestedExpansions + 1, "the depth of entity references");
    refuseIf(m_untold > m_maxUntold, s_expansion);
}

void* ParserMemory::allocate(XMLSize_t size) {
    refuseIf(size > m_maxBytesOfGrowth - m_bytes, "the memory for its DTD");
    refuseIf(size > m_maxBytes - m_bytes, "the memory for all of it");
    if (isReader(size))
        countExpansion();
    void* const place = xercesc::XMLPlatformUtils::fgMemoryManager->allocate(sizeof(Block) + size);
    auto* const block = new (place) Block{m_blocks.previous, &m_blocks, size};
    block->previous->next = block;
    block->next->previous = block;
    m_bytes += size;
    return block + 1;
}

void ParserMemory::deallocate(void* memory) {
    if (memory == nullptr)
        return;
    Block* const block = static_cast<Block*>(memory) - 1;
    block->previous->next = block->next;
    block->next->previous = block->previous;
    m_bytes -= block->size;
    if (isReader(block->size))
        --m_readers;
    xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(block);
}

xercesc::MemoryManager* ParserMemory::getExceptionMemoryManager() {
    return xercesc::XMLPlatformUtils::fgMemoryManager->getExceptionMemoryManager();
}

} // namespace Orvant
