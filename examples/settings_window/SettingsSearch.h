#pragma once

#include "SettingsModel.h"

#include <QString>

#include <algorithm>

namespace Ui {

/// @return whether a search finds the row: by label, name or path
inline bool matches(const SettingRow& row, const QString& search) {
    const auto has = [&](const std::string& text) {
        return QString::fromStdString(text).contains(search, Qt::CaseInsensitive);
    };
    return has(row.constraint().label) || has(row.path()); // which ends with the name
}

/// @return whether a search finds something in the group itself
inline bool matches(const SettingsGroup& group, const QString& search) {
    return std::ranges::any_of(group.rows, [&](const auto& row) { return matches(*row, search); });
}

} // namespace Ui
