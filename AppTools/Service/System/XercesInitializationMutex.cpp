#include <System/XercesInitializationMutex.h>

namespace Orvant {

boost::mutex& XercesInitializationMutex::getMutex() {
    // Never destroyed: writers that live in static objects still lock it while the process ends.
    static auto* const s_mutex = new boost::mutex;
    return *s_mutex;
}

} // namespace Orvant
