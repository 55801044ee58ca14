#pragma once

#include "desktop/support/AccessibleTree.h"
#include "desktop/support/DesktopSession.h"

#include <memory>
#include <tuple>

namespace framora {

/// Uses the built Framora the way a person would. Every step waits for what it should bring about and throws
/// std::runtime_error naming it when that does not come.
class FramoraUser {
public:
    /// Where this build's programs are.
    static QString program(const QString& name);

    ChildProcess& framora() { return *m_framora; }
    /// The capture tools that Framora runs at the moment.
    std::vector<qint64> captureTools();
    void require(const QString& what, const std::function<bool()>& condition, int timeoutMs = 15000);

protected:
    FramoraUser() = default;
    ~FramoraUser() = default;

    /// A control by its accessible name, where the program says that it is, from the desktop's bus.
    AccessibleNode findControl(const QString& busAddress, const QString& name, const QString& role);
    /// Waits for the file dialog, types the path and returns when a picture is there, whole.
    template <class Keyboard>
    void answerSaveDialog(Keyboard& keyboard, const std::function<bool()>& isOpen,
                          const std::function<bool()>& isActive, const QString& path) {
        require(QStringLiteral("the file dialog"), isActive);
        // The list of completions opens when a folder has been read. Return may go to it, and an older one
        // than the text leads into another folder.
        const auto answer = [&] {
            keyboard.key({"Control_L", "a"});
            keyboard.type(path);
            keyboard.key({"Return"});
            return DesktopSession::waitFor([&] { return !isOpen(); }, 2000);
        };
        std::ignore = answer() || answer() || answer();
        require(QStringLiteral("the file dialog closing"), [&] { return !isOpen(); });
        require(QStringLiteral("the saved file"), [&] { return !QImage(path).isNull(); });
    }

    ChildProcess* m_framora = nullptr; ///< Once it has been launched.

private:
    std::unique_ptr<AccessibleTree> m_accessible;
};

} // namespace framora
