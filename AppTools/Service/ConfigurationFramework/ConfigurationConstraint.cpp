#include <ConfigurationFramework/ConfigurationConstraint.h>

namespace Orvant {

namespace {

void appendPart(std::string& text, const std::string& part) {
    if (!text.empty() && !part.empty())
        text += " and ";
    text += part;
}

std::string describeRange(const std::optional<std::string>& minimum,
                          const std::optional<std::string>& maximum) {
    if (minimum && maximum)
        return "from " + *minimum + " to " + *maximum;
    if (minimum)
        return "at least " + *minimum;
    return maximum ? "at most " + *maximum : "";
}

std::string describeChoices(const std::vector<ConfigurationChoice>& choices) {
    std::string text;
    for (const ConfigurationChoice& choice : choices)
        text += (text.empty() ? "one of \"" : ", \"") + choice.text + '"';
    return text;
}

} // namespace

bool ConfigurationConstraint::isLimited() const {
    return minimum || maximum || !choices.empty() || !condition.empty();
}

std::string ConfigurationConstraint::describe() const {
    std::string text = describeRange(minimum, maximum);
    appendPart(text, describeChoices(choices));
    appendPart(text, condition);
    return text;
}

} // namespace Orvant
