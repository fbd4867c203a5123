#include <ConfigurationFramework/ConfigException.h>
