#pragma once

#include "screencapture/wayland/LocalQuestion.h"
#include "screencapture/wayland/WindowSource.h"

namespace framora {

/// Windows by sway's own account, over the socket that SWAYSOCK names.
class SwayWindows : public WindowSource {
public:
    SwayWindows();

    bool available() const override { return m_question.asked(); }
    std::optional<WindowStack> windows() override;

private:
    std::string answer() const;

    LocalQuestion m_question;
    bool m_read = false;
    std::optional<WindowStack> m_windows;
};

} // namespace framora
