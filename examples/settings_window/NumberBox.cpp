#include "NumberBox.h"

#include <cmath>

namespace Ui {

namespace {

// Beyond these, numbers are written with an exponent.
constexpr double smallest = 1e-5;
constexpr double largest = 1e15;

} // namespace

NumberBox::NumberBox(QWidget* parent, int decimals) : QDoubleSpinBox(parent) {
    setDecimals(decimals);
    QLocale plain = locale();
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    setLocale(plain);
}

QString NumberBox::textFromValue(double value) const {
    const double size = std::abs(value);
    const bool isPlain = size == 0 || (size >= smallest && size < largest);
    return locale().toString(value, isPlain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

double NumberBox::valueFromText(const QString& text) const {
    return locale().toDouble(text);
}

QValidator::State NumberBox::validate(QString& text, int& /*position*/) const {
    bool isNumber = false;
    const double value = locale().toDouble(text, &isNumber);
    const bool isWhole = decimals() != 0 || value == std::floor(value);
    return isNumber && isWhole && value >= minimum() && value <= maximum()
               ? QValidator::Acceptable
               : QValidator::Intermediate; // the start of a number; the last one stays otherwise
}

} // namespace Ui
