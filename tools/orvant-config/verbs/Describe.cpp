#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/SettingText.h"

#include <memory>

namespace Orvant::Tool {

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string persistenceText(ConfigurationItemBase::Persistence persistence) {
    switch (persistence) {
    case ConfigurationItemBase::LoadAndSave:
        return "loaded and saved";
    case ConfigurationItemBase::NotPersistent:
        return "neither loaded nor saved";
    case ConfigurationItemBase::SaveOnly:
        return "saved, never loaded";
    case ConfigurationItemBase::LoadOnly:
        return "loaded, saved only in full";
    }
    return "unknown";
}

std::string productsText(ConfigurationItemBase::ProductType products) {
    if ((products & ConfigurationItemBase::AllProducts) == ConfigurationItemBase::AllProducts)
        return "all";
    std::string text;
    constexpr unsigned int count = 6;
    for (unsigned int product = 0; product < count; ++product)
        if ((static_cast<unsigned int>(products) & (1U << product)) != 0)
            text += (text.empty() ? "" : ", ") + std::to_string(product);
    return text.empty() ? "none" : text;
}

void addValue(const ConfigurationValueDescription& value, Rows& rows) {
    const ConfigurationConstraint& constraint = value.constraint;
    rows.push_back({"Type", typeText(value.type)});
    rows.push_back({"Default", oneLine(defaultText(value))});
    if (constraint.minimum)
        rows.push_back({"At least", *constraint.minimum});
    if (constraint.maximum)
        rows.push_back({"At most", *constraint.maximum});
    for (const auto& [text, label] : constraint.choices)
        rows.push_back({"Choice", oneLine('"' + text + '"' + (label == text ? "" : ", " + label))});
    if (!constraint.condition.empty())
        rows.push_back(
            {"Condition", oneLine(constraint.condition) + " (only the application can check it)"});
    rows.push_back({"Shown", value.visibility == ConfigurationItemBase::Visible ? "yes" : "no"});
}

ExitCode describe(Session& session, const std::string& path) {
    const CatalogueItem& item = *session.find(path).item;
    Rows rows{{"Path", item.path}};
    if (item.value != nullptr)
        rows.push_back({"Label", oneLine(item.value->constraint.label)});
    const auto& [description, persistence, products] =
        item.value != nullptr
            ? std::tie(item.value->description, item.value->persistence, item.value->products)
            : std::tie(item.object->description, item.object->persistence, item.object->products);
    rows.push_back({"Description", oneLine(description)});
    if (item.value != nullptr)
        addValue(*item.value, rows);
    else
        rows.push_back({"Type", "object"});
    rows.push_back({"Persistence", persistenceText(persistence)});
    rows.push_back({"Products", productsText(products)});
    if (item.isLockedByClass)
        rows.push_back({"Locked", "by the application, whatever the files say"});
    session.output().printTable(rows);
    return ExitCode::Clean;
}

} // namespace

void addDescribe(CommandLine& commandLine) {
    const auto path = std::make_shared<std::string>();
    CLI::App& verb =
        commandLine.addVerb("describe", "Tell everything that is declared of one setting",
                            [path](Session& session) { return describe(session, *path); });
    verb.add_option("PATH", *path, "The setting, or an object")->required();
}

} // namespace Orvant::Tool
