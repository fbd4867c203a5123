#include <ConfigurationFramework/ConfigReader.h>

namespace Orvant {

ConfigReader::~ConfigReader() = default;

} // namespace Orvant
