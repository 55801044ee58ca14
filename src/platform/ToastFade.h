#pragma once

#include "platform/ToastPanel.h"

#include <QEasingCurve>
#include <QImage>

namespace framora {

/// The usual easing curves of user interfaces, as cubic Bezier curves.
QEasingCurve toastCurve(ToastPanel::Easing easing);

/// Every premultiplied pixel of `from` times `alpha`, 0 to 1, into `to`, which is as large and of the same
/// format, 32 bits a pixel.
void fadeToast(const QImage& from, QImage& to, double alpha);

} // namespace framora
