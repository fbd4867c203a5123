#pragma once

#include <cstddef>
#include <limits>

#include <xercesc/framework/MemoryManager.hpp>

namespace Orvant {

/// The memory of a parser, taken from Xerces' own. Limits how much the parser holds at a time and
/// how far entity references expand, and finally frees what the parser leaves behind.
class ParserMemory : public xercesc::MemoryManager {
public:
    /// Maximum nesting of entity references that are expanded: each takes a hundred kilobytes.
    static constexpr std::size_t maxNestedExpansions = 32;

    /// @param maxExpansions how many references may be expanded in all
    explicit ParserMemory(std::size_t maxExpansions) : m_maxExpansions(maxExpansions) {}
    ParserMemory(const ParserMemory&) = delete;
    ParserMemory& operator=(const ParserMemory&) = delete;
    ~ParserMemory() override;

    /// @return what was too much, in English; null while no limit was exceeded
    const char* exceeded() const { return m_exceeded; }

    /// Limits what is held at a time.
    void limitBytes(std::size_t bytes) { m_maxBytes = bytes; }
    /// Limits how much more may be held until endGrowth().
    void limitGrowth(std::size_t bytes) { m_maxBytesOfGrowth = m_bytes + bytes; }
    void endGrowth() { m_maxBytesOfGrowth = unlimited; }
    void endLimits() { m_maxBytes = m_maxBytesOfGrowth = unlimited; }

    /// Limits the characters that references expand to.
    /// @param told   in content, where the scanner reports each
    /// @param untold in a DTD and in attributes, where each counts as the longest entity; the last
    ///               is not counted
    void limitCharacters(std::size_t told, std::size_t untold) {
        m_maxTold = told;
        m_maxUntold = untold;
    }
    /// Reports a declared entity: every expansion from now on may be of it.
    /// @param length characters of its replacement text
    void addEntity(std::size_t length);
    /// Reports the text of the last expansion.
    /// @param length characters of the replacement text
    /// @throws xercesc::OutOfMemoryException when a limit is exceeded
    void tellExpansion(std::size_t length);

    /// @throws xercesc::OutOfMemoryException when a limit is exceeded: the exception that ends the
    /// parse
    void* allocate(XMLSize_t size) override;
    void deallocate(void* memory) override;
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// Precedes each block and links it with the others.
    struct alignas(std::max_align_t) Block {
        Block* previous = this;
        Block* next = this;
        std::size_t size = 0;
    };

    static bool isReader(XMLSize_t size);
    void countExpansion();
    void refuseIf(bool isTooMuch, const char* what);

    Block m_blocks; ///< both ends of the ring
    std::size_t m_bytes = 0;
    std::size_t m_maxBytes = unlimited;
    std::size_t m_maxBytesOfGrowth = unlimited;
    std::size_t m_readers = 0; ///< for the document and the references that are being expanded
    std::size_t m_expansions = 0;
    std::size_t m_maxExpansions;
    std::size_t m_longestEntity = 0;
    std::size_t m_told = 0;
    std::size_t m_maxTold = unlimited;
    std::size_t m_untold = 0;
    std::size_t m_maxUntold = unlimited;
    bool m_awaitsTelling = false; ///< the last expansion may still be reported
    const char* m_exceeded = nullptr;
};

} // namespace Orvant
