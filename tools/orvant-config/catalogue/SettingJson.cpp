#include "catalogue/SettingJson.h"

#include "catalogue/SettingText.h"

namespace Orvant::Tool {

nlohmann::ordered_json jsonOf(const CatalogueItem& item) {
    const ConfigurationValueDescription& value = *item.value;
    const ConfigurationConstraint& constraint = value.constraint;
    nlohmann::ordered_json json{{"path", item.path},
                                {"type", typeText(value.type)},
                                {"label", constraint.label},
                                {"description", value.description}};
    if (value.isList())
        json["default"] = value.defaultTexts;
    else
        json["default"] = value.defaultTexts.front();
    if (constraint.minimum)
        json["minimum"] = *constraint.minimum;
    if (constraint.maximum)
        json["maximum"] = *constraint.maximum;
    for (const auto& [text, label] : constraint.choices)
        json["choices"].push_back({{"text", text}, {"label", label}});
    if (!constraint.condition.empty())
        json["condition"] = constraint.condition;
    json["hidden"] = value.visibility != ConfigurationItemBase::Visible;
    json["loaded"] = item.isLoaded;
    return json;
}

} // namespace Orvant::Tool
