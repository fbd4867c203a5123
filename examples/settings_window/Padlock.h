#pragma once

#include <QPixmap>

namespace Ui {

/// @return a small padlock, drawn: few fonts have one
QPixmap padlock();

/// What a locked setting says.
inline constexpr const char* lockedText = "locked by the administrator";

} // namespace Ui
