#pragma once

#include "platform/MainQueue.h"
#include "platform/ToastPanel.h"

#include <algorithm>
#include <string>
#include <vector>

namespace framora {

/// Toast panels that write down what is asked of them. Animations end on the main queue when their time is
/// over.
class RecordingToastPanels final : public ToastPanels {
public:
    explicit RecordingToastPanels(MainQueue& queue) : m_queue(queue) {}

    class Panel final : public ToastPanel {
    public:
        Panel(RecordingToastPanels& owner, int number, const Screen& screenOfPanel, bool ignores,
              std::unique_ptr<ToastContent> shown)
            : screen(screenOfPanel), ignoresMouse(ignores), content(std::move(shown)), m_owner(owner),
              m_number(number) {
            m_owner.m_open.push_back(this);
            note("make " + std::string(ignores ? "plain" : "interactive"));
        }
        ~Panel() override {
            note("close");
            std::erase(m_owner.m_open, this);
        }
        void setAlpha(double value) override {
            note("alpha " + text(value));
            alpha = value;
        }
        void orderFront() override { note("front"); }
        void animateAlpha(double value, double seconds, Easing easing, std::function<void()> done) override {
            note("animate " + text(value) + " in " + text(seconds) +
                 (easing == Easing::easeOut ? " ease-out" : " ease-in"));
            m_animation = m_owner.m_queue.after(seconds, [this, value, done = std::move(done)] {
                alpha = value;
                // The callback may close this panel.
                if (const auto finished = done)
                    finished();
            });
        }

        double alpha = -1;
        const Screen screen;
        const bool ignoresMouse;
        const std::unique_ptr<ToastContent> content;

    private:
        static std::string text(double value) { return QString::number(value).toStdString(); }
        void note(const std::string& what) { m_owner.log.push_back(std::to_string(m_number) + " " + what); }

        RecordingToastPanels& m_owner;
        int m_number;
        std::unique_ptr<WorkItem> m_animation;
    };

    std::unique_ptr<ToastPanel> makePanel(const Screen& screen, bool ignoresMouse,
                                          std::unique_ptr<ToastContent> content) override {
        return std::make_unique<Panel>(*this, ++m_made, screen, ignoresMouse, std::move(content));
    }

    void withdraw() override { log.push_back("withdraw"); }
    void restore() override { log.push_back("restore"); }

    /// The panels that are not closed yet.
    const std::vector<Panel*>& open() const { return m_open; }
    Panel* front() const { return m_open.empty() ? nullptr : m_open.back(); }

    /// Each line names the panel by its number, from 1.
    std::vector<std::string> log;

private:
    MainQueue& m_queue;
    std::vector<Panel*> m_open;
    int m_made = 0;
};

} // namespace framora
