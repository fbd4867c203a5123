#  include <ConfigurationFramework/ConfigWriter.h>
