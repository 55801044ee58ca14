#pragma once

#include "platform/MainQueue.h"
#include "platform/ScreenColorPicker.h"

#include <utility>

namespace framora {

/// A screen whose user points at what the test says, once it says so.
class RecordingColorPicker final : public ScreenColorPicker {
public:
    explicit RecordingColorPicker(MainQueue& queue) : m_queue(queue) {}

    void queryAvailable(std::function<void(bool)> answer) override {
        m_queue.async([this, answer = std::move(answer)] { answer(available); });
    }
    void pick(QWindow* parent, Picked picked, Failed failed) override {
        ++picks;
        parentWindow = parent;
        m_picked = std::move(picked);
        m_failed = std::move(failed);
    }
    void dismiss() override {
        if (m_picked)
            point(std::nullopt);
    }
    void cancel() override {
        if (std::exchange(m_picked, nullptr))
            ++cancellations;
    }
    bool isPicking() const { return bool(m_picked); }
    void point(std::optional<QColor> color) { std::exchange(m_picked, nullptr)(color); }
    void fail() {
        m_picked = nullptr;
        std::exchange(m_failed, nullptr)();
    }

    bool available = true;
    int picks = 0;
    int cancellations = 0;
    const QWindow* parentWindow = nullptr;

private:
    MainQueue& m_queue;
    Picked m_picked;
    Failed m_failed;
};

} // namespace framora
