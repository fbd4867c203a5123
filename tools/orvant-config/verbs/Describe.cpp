#include "verbs/Verbs.h"

#include "CommandLine.h"
#include "catalogue/SettingJson.h"
#include "catalogue/SettingText.h"

#include <memory>
#include <tuple>

namespace Orvant::Tool {

namespace {

using Rows = std::vector<std::vector<std::string>>;

constexpr unsigned int productCount = 6;

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

std::vector<unsigned int> numbersOf(ConfigurationItemBase::ProductType products) {
    std::vector<unsigned int> numbers;
    for (unsigned int number = 0; number < productCount; ++number)
        if ((static_cast<unsigned int>(products) & (1U << number)) != 0)
            numbers.push_back(number);
    return numbers;
}

std::string productsText(ConfigurationItemBase::ProductType products) {
    const std::vector<unsigned int> numbers = numbersOf(products);
    if (numbers.size() == productCount)
        return "all";
    std::string text;
    for (const unsigned int number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text.empty() ? "none" : text;
}

/// What values and objects declare: description, persistence, products.
auto declarationOf(const CatalogueItem& item) {
    return item.value != nullptr
               ? std::tie(item.value->description, item.value->persistence, item.value->products)
               : std::tie(item.object->description, item.object->persistence,
                          item.object->products);
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

Rows rowsOf(const CatalogueItem& item) {
    const auto& [description, persistence, products] = declarationOf(item);
    Rows rows{{"Path", item.path}};
    if (item.value != nullptr)
        rows.push_back({"Label", oneLine(item.value->constraint.label)});
    rows.push_back({"Description", oneLine(description)});
    if (item.value != nullptr)
        addValue(*item.value, rows);
    else
        rows.push_back({"Type", "object"});
    rows.push_back({"Persistence", persistenceText(persistence)});
    rows.push_back({"Products", productsText(products)});
    if (item.isLockedByClass)
        rows.push_back({"Locked", "by the application, whatever the files say"});
    return rows;
}

nlohmann::ordered_json fullJsonOf(const CatalogueItem& item) {
    const auto& [description, persistence, products] = declarationOf(item);
    nlohmann::ordered_json json = item.value != nullptr
                                      ? jsonOf(item)
                                      : nlohmann::ordered_json{{"path", item.path},
                                                               {"type", "object"},
                                                               {"description", description},
                                                               {"loaded", item.isLoaded}};
    json["persistence"] = persistenceText(persistence);
    json["products"] = numbersOf(products);
    json["lockedByApplication"] = item.isLockedByClass;
    return json;
}

ExitCode describe(Session& session, const std::string& path) {
    const CatalogueItem& item = *session.find(path).item;
    const Output& output = session.output();
    if (output.isJson())
        output.print(fullJsonOf(item));
    else
        output.printTable(rowsOf(item));
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
