#include "platform/ToastAnimation.h"

#include <algorithm>
#include <utility>

namespace framora {

namespace {

/// The usual easing curves of user interfaces, as cubic Bezier curves.
QEasingCurve curveOf(ToastPanel::Easing easing) {
    QEasingCurve curve(QEasingCurve::BezierSpline);
    if (easing == ToastPanel::Easing::easeOut)
        curve.addCubicBezierSegment({0, 0}, {0.58, 1}, {1, 1});
    else
        curve.addCubicBezierSegment({0.42, 0}, {1, 1}, {1, 1});
    return curve;
}

} // namespace

ToastAnimation::ToastAnimation(double from, double to, double seconds, ToastPanel::Easing easing,
                               std::function<void()> finished)
    : done(std::move(finished)), m_from(from), m_to(std::clamp(to, 0.0, 1.0)), m_seconds(seconds),
      m_curve(curveOf(easing)) {}

double ToastAnimation::progress() const {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - m_start;
    return std::min(1.0, passed.count() / m_seconds);
}

double ToastAnimation::alpha() const {
    return m_from + (m_to - m_from) * m_curve.valueForProgress(progress());
}

} // namespace framora
