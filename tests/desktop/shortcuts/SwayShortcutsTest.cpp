#include "desktop/support/SwayDesktop.h"
#include "platform/KeyMonitors.h"
#include "platform/KeyboardLayout.h"
#include "settings/BindingGuide.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// Sway's keyboard, a US one.
class UsLayout final : public KeyboardLayout {
public:
    QString textOfKey(std::uint16_t virtualKey) const override {
        return virtualKey == 21 ? QStringLiteral("4") : virtualKey == 17 ? QStringLiteral("t") : QString();
    }
};

/// The lines that the settings window tells the user to add, before the compositor that they are for.
class SwayShortcutsTest : public testing::Test {
protected:
    SwayShortcutsTest() {
        // Sway may run as another user than the test.
        QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
        QFile script(program());
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\necho \"$@\" >> '" + QFile::encodeName(told()) + "'\n");
        script.setPermissions(QFile::Permissions(0x7755));
    }
    /// Stands in for Framora: it writes down its arguments.
    QString program() const { return folder.filePath(QStringLiteral("framora")); }
    QString told() const { return folder.filePath(QStringLiteral("told")); }
    QByteArray arguments() const {
        QFile file(told());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void bind(const char* command, const HotkeyConfiguration& shortcut) {
        const BindingGuide guide = bindingGuide({HandBinding::Kind::sway, program()}, {},
                                                QString::fromLatin1(command), shortcut, layout);
        ASSERT_EQ(guide.lines.size(), 1U);
        desktop.command(guide.lines[0].text);
    }

    SwayDesktop desktop;
    QTemporaryDir folder;
    UsLayout layout;
};

TEST_F(SwayShortcutsTest, theLinesPutTheCommandsOnTheStoredKeys) {
    bind("capture-area", {21, KeyModifier::shift | KeyModifier::option});
    bind("capture-window", {17, KeyModifier::shift | KeyModifier::option});
    bind("settings", {0x1000 + 99, KeyModifier::command | KeyModifier::control});
    desktop.input().key({"Alt_L", "Shift_L", "4"});
    ASSERT_TRUE(DesktopSession::waitFor([this] { return arguments() == "--capture-area\n"; }));
    desktop.input().key({"Alt_L", "Shift_L", "t"});
    ASSERT_TRUE(
        DesktopSession::waitFor([this] { return arguments() == "--capture-area\n--capture-window\n"; }));
    desktop.input().key({"Super_L", "Control_L", "Print"});
    ASSERT_TRUE(DesktopSession::waitFor([this] { return arguments().endsWith("--settings\n"); }));
    desktop.input().key({"Alt_L", "4"});
    EXPECT_FALSE(DesktopSession::waitFor([this] { return arguments().count('\n') != 3; }, 500));
}

} // namespace
} // namespace framora
