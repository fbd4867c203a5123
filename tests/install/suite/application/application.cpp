// What the libraries log goes to the suite's own log.

#include <ConfigurationFramework/ConfigException.h>
#include <ConfigurationFramework/SimpleConfigReader.h>
#include <FileHandling/FileName.h>
#include <Logging/Logging.h>

#include <iostream>

int main() {
    const Orvant::SimpleConfigReader reader(
        "", R"(<!DOCTYPE Configuration SYSTEM "other.dtd"><Configuration version="1.0"/>)",
        {"1.0"});
    try {
        Orvant::SimpleConfigReader("no such file", "", {"1.0"});
    } catch (const Orvant::ConfigException& e) {
        e.log();
    }

    const auto& messages = Orvant::Logging::s_messages;
    for (const auto& message : messages)
        std::cout << message << '\n';
    const bool arrived = messages.size() == 2 &&
                         messages[0].starts_with("DocumentParsing: Not opened: other.dtd") &&
                         messages[1].starts_with("OvException: ConfigException thrown at ");
    return arrived ? 0 : 1;
}
