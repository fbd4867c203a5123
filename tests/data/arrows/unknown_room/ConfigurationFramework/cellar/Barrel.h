#include <ConfigurationFramework/xml/Text.h>
