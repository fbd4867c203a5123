#include <ConfigurationFramework/DocumentParsing.h>

#include <ConfigurationFramework/RegularFile.h>

#include <FileHandling/FileName.h>
#include <UnicodeTools/Transcode.h>
#include <UnicodeTools/UnicodeTools.h>

#include <cstring>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/RuntimeException.hpp>

namespace Orvant {

namespace {

void parseBytes(xercesc::XercesDOMParser& parser, const char* bytes, std::size_t size,
                const XMLCh* systemId) {
    const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes), size,
                                            systemId);
    parser.parse(source);
}

} // namespace

ParserConfinement::ParserConfinement() {
    m_securityManager.setEntityExpansionLimit(maxEntityReferences);
}

void ParserConfinement::apply(xercesc::XercesDOMParser& parser) {
    parser.setEntityResolver(this);
    parser.setSecurityManager(&m_securityManager);
}

xercesc::InputSource* ParserConfinement::resolveEntity(const XMLCh*, const XMLCh* systemId) {
    static constexpr XMLByte nothing[1] = {};
    return new xercesc::MemBufInputSource(nothing, 0, systemId);
}

void parseFile(xercesc::XercesDOMParser& parser, const FileName& file) {
    const std::wstring widePath = UnicodeTools::utf8_to_wstring(file.toNativeString());
    const auto systemId = transcode<XMLCh>(std::wstring_view(widePath));
    // The bytes are read here because Xerces would take the name apart as a URL, spell it in the
    // locale's encoding, and leak when it is that of a directory.
    const auto bytes = readRegularFile(file);
    if (!bytes)
        ThrowXML1(xercesc::RuntimeException, xercesc::XMLExcepts::Scan_CouldNotOpenSource,
                  systemId.c_str());
    parseBytes(parser, bytes->data(), bytes->size(), systemId.c_str());
}

void parseString(xercesc::XercesDOMParser& parser, const std::string& content) {
    parseBytes(parser, content.c_str(), std::strlen(content.c_str()), u"example");
}

} // namespace Orvant
