#pragma once

#include <System/Export.h>

#include <boost/thread/mutex.hpp>

namespace Orvant {

/// The suite-wide mutex to hold while Xerces-C++ is initialised or terminated.
///
/// @code
/// const boost::unique_lock<boost::mutex> lock(XercesInitializationMutex::getMutex());
/// initialiseXerces();
/// @endcode
class ORVANT_SYSTEM_EXPORT XercesInitializationMutex {
public:
    /// @return the one mutex of the process
    static boost::mutex& getMutex();
};

} // namespace Orvant
