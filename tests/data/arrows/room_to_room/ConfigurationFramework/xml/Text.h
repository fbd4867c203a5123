#include <ConfigurationFramework/schema/Parser.h>
