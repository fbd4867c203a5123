#include "SettingsTable.h"

#include <ConfigurationFramework/ConfigurationManager.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>
#include <vector>

namespace Suite {

namespace {

using Orvant::ConfigurationOrigin;
using Row = std::array<std::string, 4>;

std::string nameOf(ConfigurationOrigin::Layer layer) {
    switch (layer) {
    case ConfigurationOrigin::Default:
        return "default";
    case ConfigurationOrigin::System:
        return "system";
    case ConfigurationOrigin::User:
        return "user";
    }
    return "";
}

std::vector<Row> makeRows() {
    std::vector<Row> rows = {{"Setting", "Value", "Source", "Locked by"}};
    for (const ConfigurationOrigin& origin : Orvant::ConfigurationManager::getInstance().explain())
        rows.push_back({origin.path, origin.value, nameOf(origin.layer), origin.lockedBy});
    Row underline;
    for (std::size_t column = 0; column < underline.size(); ++column) {
        std::size_t width = 0;
        for (const Row& row : rows)
            width = std::max(width, row[column].size());
        underline[column].assign(width, '-');
    }
    rows.insert(rows.begin() + 1, underline);
    return rows;
}

} // namespace

std::string settingsTable() {
    const std::vector<Row> rows = makeRows();
    const Row& underline = rows[1];
    std::ostringstream table;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            table << std::left << std::setw(static_cast<int>(underline[column].size() + 2))
                  << row[column];
        table << row.back() << '\n';
    }
    return table.str();
}

} // namespace Suite
