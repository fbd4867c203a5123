#pragma once

#include <QDoubleSpinBox>

namespace Ui {

/// A spin box for numbers of any size, which it shows with as many digits as they have.
class NumberBox : public QDoubleSpinBox {
public:
    /// @param decimals 0: whole numbers only
    NumberBox(QWidget* parent, int decimals);

    QString textFromValue(double value) const override;
    double valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& position) const override;
};

} // namespace Ui
