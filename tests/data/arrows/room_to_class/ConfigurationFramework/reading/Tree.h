#include <ConfigurationFramework/ConfigWriter.h>
