#include <ConfigurationFramework/schema/MeasuringParser.h>

#include <algorithm>

#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Orvant {

void MeasuringParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int,
                                   const XMLCh*,
                                   const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                   XMLSize_t attributeCount, bool isEmpty, bool) {
    const std::size_t declared =
        declaration.hasAttDefs() ? declaration.getAttDefList().getAttDefCount() : 0;
    refuseIf(attributeCount > SchemaLimits::attributes || declared > SchemaLimits::attributes,
             u"an element has more than 100 attributes");
    refuseIf(++m_depth > SchemaLimits::depth, u"elements nest more than 1,000 deep");
    refuseIf(declaration.getId() > SchemaLimits::names, u"there are more than 10,000 tags");
    if (isEmpty)
        --m_depth;
    add(declaration.getFullName(), "</>");
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        m_attributeNames.emplace(attributes.elementAt(i)->getName());
        refuseIf(m_attributeNames.size() > SchemaLimits::names,
                 u"there are more than 10,000 names of attributes");
        add(attributes.elementAt(i)->getName(), " =''");
        add(attributes.elementAt(i)->getValue());
    }
}

void MeasuringParser::endElement(const xercesc::XMLElementDecl&, unsigned int, bool, const XMLCh*) {
    --m_depth;
}

void MeasuringParser::docCharacters(const XMLCh*, XMLSize_t length, bool) {
    add(length);
}

void MeasuringParser::docComment(const XMLCh* comment) {
    add(comment);
}

void MeasuringParser::docPI(const XMLCh*, const XMLCh* data) {
    add(data);
}

/// Ends the parse: the scanner turns the exception into a parse error, but its text does not tell
/// which limit it was.
void MeasuringParser::refuseIf(bool isTooLarge, const XMLCh* limit) {
    if (!isTooLarge)
        return;
    getErrorHandler()->fatalError(xercesc::SAXParseException(limit, *getScanner()->getLocator()));
    ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Out_Of_Memory);
}

void MeasuringParser::add(const XMLCh* text, std::string_view markup) {
    add(xercesc::XMLString::stringLen(text) + markup.size());
}

void MeasuringParser::add(std::size_t length) {
    m_size += length;
    refuseIf(m_size > std::max(documentSize(), SchemaLimits::expandedSize),
             u"references expand the document to more than 10 million characters");
}

} // namespace Orvant
