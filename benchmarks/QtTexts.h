#pragma once

#include "Settings.h"

#include <QString>
#include <QStringList>

namespace Orvant::Benchmarks {

/// A value as Qt's classes take it.
inline const auto& toQt(const auto& scalar) {
    return scalar;
}
inline QString toQt(const std::string& text) {
    return QString::fromStdString(text);
}
inline QStringList toQt(const Texts& texts) {
    QStringList list;
    for (const std::string& text : texts)
        list << toQt(text);
    return list;
}

} // namespace Orvant::Benchmarks
