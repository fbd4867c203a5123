#include <ConfigurationFramework/xml/XercesSession.h>

#include <GeneralServices/XercesHelperFunctions.h>
#include <Logging/Logging.h>
#include <System/XercesInitializationMutex.h>

#include <boost/thread/lock_types.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Orvant {

namespace {

using XercesLock = boost::unique_lock<boost::mutex>;

void initialize() {
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale);
}

} // namespace

bool initializeXerces(const Logging& log, const std::source_location& place) {
    const XercesLock lock(XercesInitializationMutex::getMutex());
    try {
        [[maybe_unused]] static const bool s_keptForTheProcess = (initialize(), true);
        initialize();
        return true;
    } catch (const xercesc::XMLException& e) {
        log.logERROR("Error during Xerces-c initialization: " +
                         XercesHelperFunctions::xmlChToString(e.getMessage()),
                     place.file_name(), place.function_name(), place.line());
        return false;
    }
}

XercesSession::XercesSession(const Logging& log, const std::source_location& place)
    : m_initialized(initializeXerces(log, place)) {}

XercesSession::~XercesSession() {
    if (!m_initialized)
        return;
    const XercesLock lock(XercesInitializationMutex::getMutex());
    xercesc::XMLPlatformUtils::Terminate();
}

} // namespace Orvant
