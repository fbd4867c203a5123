#include "SettingEditor.h"

#include "ListEditor.h"
#include "NumberBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace Ui {

namespace {

using Edited = std::function<void(SettingValue)>;
using Orvant::ConfigurationConstraint;

constexpr int allDecimals = 15;
constexpr double smallStep = 0.1;
constexpr double wideRange = 10;

template <typename Number>
Number numberFrom(const std::string& text) {
    Number number{};
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

template <typename Number>
Number limit(const std::optional<std::string>& text, Number otherwise) {
    return text ? numberFrom<Number>(*text) : otherwise;
}

/// A float as the shortest number that reads the same: 0.1 instead of 0.100000001.
double shortest(float number) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.begin(), text.end(), number);
    return numberFrom<double>(std::string(text.begin(), written.ptr));
}

SettingEditor makeFor(bool /*type*/, const ConfigurationConstraint& /*constraint*/, QWidget* parent,
                      const Edited& edited) {
    auto* const box = new QCheckBox(parent);
    QObject::connect(box, &QCheckBox::clicked, box, edited);
    return {box, [box](const SettingValue& value) { box->setChecked(std::get<bool>(value)); }};
}

SettingEditor makeFor(int /*type*/, const ConfigurationConstraint& constraint, QWidget* parent,
                      const Edited& edited) {
    auto* const box = new QSpinBox(parent);
    box->setRange(limit(constraint.minimum, std::numeric_limits<int>::min()),
                  limit(constraint.maximum, std::numeric_limits<int>::max()));
    QObject::connect(box, &QSpinBox::valueChanged, box, edited);
    return {box, [box](const SettingValue& value) {
                const QSignalBlocker blocker(box);
                box->setValue(std::get<int>(value));
            }};
}

template <typename Number>
SettingEditor makeNumberBox(const ConfigurationConstraint& constraint, QWidget* parent,
                            const Edited& edited, int decimals) {
    auto* const box = new NumberBox(parent, decimals);
    using Limits = std::numeric_limits<Number>;
    const double minimum = limit(constraint.minimum, static_cast<double>(Limits::lowest()));
    const double maximum = limit(constraint.maximum, static_cast<double>(Limits::max()));
    box->setRange(minimum, maximum);
    box->setSingleStep(decimals == 0 || maximum - minimum >= wideRange ? 1 : smallStep);
    QObject::connect(box, &NumberBox::valueChanged, box,
                     [edited](double number) { edited(static_cast<Number>(number)); });
    return {box, [box](const SettingValue& value) {
                const QSignalBlocker blocker(box);
                if constexpr (std::is_same_v<Number, float>)
                    box->setValue(shortest(std::get<float>(value)));
                else
                    box->setValue(std::get<Number>(value));
            }};
}

SettingEditor makeFor(unsigned int /*type*/, const ConfigurationConstraint& constraint,
                      QWidget* parent, const Edited& edited) {
    return makeNumberBox<unsigned int>(constraint, parent, edited, 0);
}

SettingEditor makeFor(double /*type*/, const ConfigurationConstraint& constraint, QWidget* parent,
                      const Edited& edited) {
    return makeNumberBox<double>(constraint, parent, edited, allDecimals);
}

SettingEditor makeFor(float /*type*/, const ConfigurationConstraint& constraint, QWidget* parent,
                      const Edited& edited) {
    return makeNumberBox<float>(constraint, parent, edited, allDecimals);
}

SettingEditor makeFor(const std::string& /*type*/, const ConfigurationConstraint& /*constraint*/,
                      QWidget* parent, const Edited& edited) {
    auto* const line = new QLineEdit(parent);
    QObject::connect(line, &QLineEdit::textEdited, line,
                     [edited](const QString& text) { edited(text.toStdString()); });
    return {line, [line](const SettingValue& value) {
                line->setText(QString::fromStdString(std::get<std::string>(value)));
            }};
}

SettingEditor makeFor(const std::vector<std::string>& /*type*/,
                      const ConfigurationConstraint& /*constraint*/, QWidget* parent,
                      const Edited& edited) {
    auto* const list = new ListEditor(parent, edited);
    return {list, [list](const SettingValue& value) {
                list->setItems(std::get<std::vector<std::string>>(value));
            }};
}

template <typename T>
T choiceFrom(const std::string& text) {
    if constexpr (std::is_arithmetic_v<T>)
        return numberFrom<T>(text);
    else
        return text;
}

template <typename T>
SettingEditor makeComboBox(const ConfigurationConstraint& constraint, QWidget* parent,
                           const Edited& edited) {
    auto* const box = new QComboBox(parent);
    std::vector<T> values;
    for (const auto& [text, label] : constraint.choices) {
        box->addItem(QString::fromStdString(label.empty() ? text : label));
        values.push_back(choiceFrom<T>(text));
    }
    QObject::connect(box, &QComboBox::activated, box, [values, edited](int chosen) {
        edited(values[static_cast<std::size_t>(chosen)]);
    });
    return {box, [box, values](const SettingValue& value) {
                const auto found = std::ranges::find(values, std::get<T>(value));
                box->setCurrentIndex(
                    found == values.end() ? -1 : static_cast<int>(found - values.begin()));
            }};
}

template <typename T>
constexpr bool hasComboBox =
    !std::is_same_v<T, bool> && !std::is_same_v<T, std::vector<std::string>>;

} // namespace

SettingEditor makeEditor(const SettingRow& row, QWidget* parent, const Edited& edited) {
    const ConfigurationConstraint& constraint = row.constraint();
    return std::visit(
        [&]<typename T>(const T& type) {
            if constexpr (hasComboBox<T>)
                if (!constraint.choices.empty())
                    return makeComboBox<T>(constraint, parent, edited);
            return makeFor(type, constraint, parent, edited);
        },
        row.defaultValue());
}

} // namespace Ui
