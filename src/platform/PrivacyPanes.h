#pragma once

namespace framora {

enum class PrivacyPane {
    accessibility, ///< Who may watch the keyboard.
    screenCapture  ///< Who may take pictures of the screen.
};

/// The desktop's own settings program. Each call starts it and does not wait; false when there is no such
/// route on this desktop.
class PrivacyPanes {
public:
    virtual ~PrivacyPanes() = default;
    /// Whether openPage() would find one.
    virtual bool hasPage(PrivacyPane pane) const = 0;
    /// At the page itself.
    virtual bool openPage(PrivacyPane pane) = 0;
    /// At the page about privacy and security as a whole.
    virtual bool openPrivacyOverview() = 0;
    /// At its first page.
    virtual bool openSettingsProgram() = 0;
};

} // namespace framora
