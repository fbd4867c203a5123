#pragma once

#include <source_location>

namespace Orvant {

class Logging;

/// Initialises Xerces-C++ under the suite-wide mutex.
///
/// One extra initialisation is kept for the life of the process: setting up Xerces from scratch
/// takes over a millisecond, and the last Terminate() would throw that away.
/// @param log   where a failure is reported; it is not thrown
/// @param place what the report names as its place
/// @return false when Xerces reported a failure
bool initializeXerces(const Logging& log, const std::source_location& place);

/// An initialisation of Xerces-C++ that is released at the end of the scope.
class XercesSession {
public:
    explicit XercesSession(const Logging& log, const std::source_location& place);
    XercesSession(const XercesSession&) = delete;
    XercesSession& operator=(const XercesSession&) = delete;
    ~XercesSession();

private:
    bool m_initialized;
};

} // namespace Orvant
