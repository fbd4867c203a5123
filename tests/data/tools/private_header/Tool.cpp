#include <ConfigurationFramework/ConfigurationManager.h>
#include <ConfigurationFramework/files/RegularFile.h>
