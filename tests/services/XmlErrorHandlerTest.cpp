#include <GeneralServices/XmlErrorHandler.h>

#include <System/XercesInitializationMutex.h>

#include <gtest/gtest.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <string>

namespace Orvant {
namespace {

class XmlErrorHandlerTest : public testing::Test {
protected:
    /// Keeps Xerces in use; declared before everything that needs it.
    struct Session {
        Session() {
            const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
            xercesc::XMLPlatformUtils::Initialize();
        }
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;
        ~Session() {
            const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
            xercesc::XMLPlatformUtils::Terminate();
        }
    };

    XmlErrorHandlerTest() { m_parser.setErrorHandler(&handler); }

    void parse(const std::string& text) {
        const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                                text.size(), "text");
        m_parser.parse(source);
    }
    void validate(const std::string& text) {
        m_parser.setValidationScheme(xercesc::XercesDOMParser::Val_Always);
        parse(text);
    }
    static xercesc::SAXParseException report() {
        return xercesc::SAXParseException(u"message", u"public", u"system", 1, 2);
    }

private:
    Session m_session;
    xercesc::XercesDOMParser m_parser;

protected:
    XmlErrorHandler handler;
};

TEST_F(XmlErrorHandlerTest, HasSeenNothingAtFirst) {
    EXPECT_FALSE(handler.getSawErrors());
}

TEST_F(XmlErrorHandlerTest, SeesNoErrorInAGoodDocument) {
    parse("<a><b/></a>");
    EXPECT_FALSE(handler.getSawErrors());
}

TEST_F(XmlErrorHandlerTest, SeesADocumentThatIsNotWellFormed) {
    parse("<a><b></a>");
    EXPECT_TRUE(handler.getSawErrors());
}

TEST_F(XmlErrorHandlerTest, SeesADocumentThatIsNotValid) {
    validate("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a>text</a>");
    EXPECT_TRUE(handler.getSawErrors());
}

TEST_F(XmlErrorHandlerTest, RemembersAnErrorOverTheNextParseUntilReset) {
    parse("<a><b></a>");
    parse("<a/>");
    EXPECT_TRUE(handler.getSawErrors());
    handler.resetErrors();
    parse("<a/>");
    EXPECT_FALSE(handler.getSawErrors());
}

TEST_F(XmlErrorHandlerTest, CountsErrorsAndFatalErrorsUntilReset) {
    using Report = void (XmlErrorHandler::*)(const xercesc::SAXParseException&);
    for (const Report kind :
         {Report(&XmlErrorHandler::error), Report(&XmlErrorHandler::fatalError)}) {
        (handler.*kind)(report());
        EXPECT_TRUE(handler.getSawErrors());
        handler.resetErrors();
        EXPECT_FALSE(handler.getSawErrors());
    }
}

TEST_F(XmlErrorHandlerTest, TakesAWarningForNoError) {
    handler.warning(report());
    EXPECT_FALSE(handler.getSawErrors());
    handler.error(report());
    handler.warning(report());
    EXPECT_TRUE(handler.getSawErrors());
}

} // namespace
} // namespace Orvant
