#include <ConfigurationFramework/xml/ConfinedParsing.h>

#include <ConfigurationFramework/files/RegularFile.h>

#include <FileHandling/FileName.h>
#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>
#include <Transcoding/Transcode.h>
#include <UnicodeTools/UnicodeTools.h>

#include <cstring>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/RuntimeException.hpp>

namespace Orvant {

namespace {

const Logging s_log("DocumentParsing");

constexpr std::size_t mebibyte = std::size_t{1} << 20U;
constexpr const XMLCh* memorySystemId = u"example";

} // namespace

ParserConfinement::ParserConfinement(const Limits& limits)
    : m_memory(maxEntityReferences), m_memoryFactor(limits.memoryFactor) {
    m_securityManager.setEntityExpansionLimit(maxEntityReferences);
    m_memory.limitCharacters(maxCharacters, limits.untoldCharacters);
}

xercesc::InputSource* ParserConfinement::resolveEntity(const XMLCh*, const XMLCh* systemId) {
    s_log.logERROR("Not opened: " + XercesHelperFunctions::xmlChToString(systemId) +
                       ", which a document refers to",
                   __FILE__, __func__, __LINE__);
    static constexpr XMLByte nothing[1] = {};
    return new xercesc::MemBufInputSource(nothing, 0, systemId);
}

void ParserConfinement::parse(ConfinedParser& parser, const char* bytes, std::size_t size,
                              const XMLCh* systemId) {
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes), size,
                                            systemId);
    m_documentSize = size;
    m_memory.limitBytes(64 * mebibyte + m_memoryFactor * size);
    try {
        parser.parse(source);
    } catch (const xercesc::OutOfMemoryException&) {
        if (m_memory.exceeded() != nullptr && parser.getErrorHandler() != nullptr)
            parser.getErrorHandler()->fatalError(xercesc::SAXParseException(
                u"the document takes too much memory", nullptr, systemId, 0, 0));
        else
            ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
    }
    // What is added to the document from now on comes from the application.
    m_memory.endLimits();
}

std::string ParserConfinement::parseFile(ConfinedParser& parser, const FileName& file) {
    const std::wstring widePath = UnicodeTools::utf8_to_wstring(file.toNativeString());
    const auto systemId = transcode<XMLCh>(std::wstring_view(widePath));
    // The bytes are read here because Xerces would parse the name as a URL, convert it to the
    // locale's encoding, and leak if it names a directory.
    auto bytes = readRegularFile(file);
    if (!bytes)
        ThrowXML1(xercesc::RuntimeException, xercesc::XMLExcepts::Scan_CouldNotOpenSource,
                  systemId.c_str());
    parse(parser, bytes->data(), bytes->size(), systemId.c_str());
    return std::move(*bytes);
}

void ParserConfinement::parseString(ConfinedParser& parser, const std::string& content) {
    parse(parser, content.c_str(), std::strlen(content.c_str()), memorySystemId);
}

void ParserConfinement::parseBytes(ConfinedParser& parser, const std::string& bytes) {
    parse(parser, bytes.data(), bytes.size(), memorySystemId);
}

ConfinedParser::ConfinedParser(ParserConfinement& confinement)
    : XercesDOMParser(nullptr, &confinement.m_memory, nullptr), m_confinement(confinement) {
    setEntityResolver(&confinement);
    setSecurityManager(&confinement.m_securityManager);
}

void ConfinedParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
    m_confinement.m_memory.tellExpansion(declaration.getValueLen());
}

void ConfinedParser::endEntityReference(const xercesc::XMLEntityDecl&) {}

void ConfinedParser::entityDecl(const xercesc::DTDEntityDecl& declaration, bool, bool) {
    m_confinement.m_memory.addEntity(declaration.getValueLen());
}

void ConfinedParser::startIntSubset() {
    m_confinement.m_memory.limitGrowth(4 * mebibyte +
                                       m_confinement.m_memoryFactor / 4 * documentSize());
}

void ConfinedParser::endIntSubset() {
    m_confinement.m_memory.endGrowth();
}

} // namespace Orvant
