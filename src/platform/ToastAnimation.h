#pragma once

#include "platform/MainQueue.h"
#include "platform/ToastPanel.h"

#include <QEasingCurve>
#include <chrono>
#include <functional>
#include <memory>

namespace framora {

/// How a toast comes or goes: its alpha by the time that has passed since this was made.
class ToastAnimation {
public:
    /// `seconds` is more than 0; the alphas are from 0 to 1. `done` is for whoever finds it over.
    ToastAnimation(double from, double to, double seconds, ToastPanel::Easing easing,
                   std::function<void()> done);

    double target() const { return m_to; }
    double alpha() const;
    bool isOver() const { return progress() >= 1; }

    const std::function<void()> done;
    std::unique_ptr<WorkItem> timer; ///< What moves it on; it ends with this.

private:
    double progress() const;

    double m_from;
    double m_to;
    double m_seconds;
    QEasingCurve m_curve;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace framora
