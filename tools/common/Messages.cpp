#include "common/Messages.h"

namespace Orvant::Tool {

std::string messageAt(const FileName& file, unsigned int line, const std::string& severity,
                      const std::string& text, unsigned int column) {
    std::string message = file.toString() + ':';
    for (const unsigned int number : {line, column})
        if (number != 0)
            message += std::to_string(number) + ':';
    return message + ' ' + severity + ": " + text;
}

} // namespace Orvant::Tool
