#include "desktop/feedback/NotificationServerDouble.h"
#include "desktop/feedback/TimerQueue.h"
#include "desktop/support/VirtualDesktop.h"
#include "feedback/ToastManager.h"
#include "platform/Localized.h"
#include "platform/desktop/NotificationToastPanels.h"
#include "support/FixedAppearance.h"
#include "support/FixedScreens.h"

#include <QElapsedTimer>
#include <QUuid>
#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

/// Toasts as notifications, on a private bus.
class NotificationToastTest : public testing::Test {
protected:
    ~NotificationToastTest() override {
        manager.reset();
        panels.reset();
        QDBusConnection::disconnectFromBus(busName);
    }
    void start(bool takesActions = true) {
        server = std::make_unique<NotificationServerDouble>(desktop.busAddress(), takesActions);
        startToasts();
    }
    void startToasts() {
        panels.emplace(
            queue, [this](const QString& token) { tokens.push_back(token); },
            QDBusConnection::connectToBus(desktop.busAddress(), busName));
        manager.emplace(ToastServices{queue, *panels, screens, appearance,
                                      [this](const QImage& image) { edited.push_back(image.size()); }});
    }
    void showPlain(bool success = true) {
        manager->show(QStringLiteral("Copied & <done>"), QStringLiteral("doc.on.clipboard.fill"), success);
    }
    void showInteractive(const QColor& colour = QColor(220, 90, 60)) {
        QImage picture(800, 500, QImage::Format_RGB32);
        picture.fill(colour);
        manager->showInteractive(QStringLiteral("Captured"), QStringLiteral("macwindow"), picture);
    }
    static bool waitFor(const std::function<bool()>& condition, int milliseconds = 5000) {
        return DesktopSession::waitFor(condition, milliseconds);
    }
    bool waitForShown(std::size_t calls) {
        return waitFor([&] { return server->all.size() == calls; });
    }
    /// Lets everything arrive that is on its way.
    void settle() {
        waitFor([] { return false; }, 200);
    }

    VirtualDesktop desktop;
    TimerQueue queue;
    FixedScreens screens;
    FixedAppearance appearance;
    QString busName = QUuid::createUuid().toString();
    std::unique_ptr<NotificationServerDouble> server;
    std::optional<NotificationToastPanels> panels;
    std::optional<ToastManager> manager;
    std::vector<QString> tokens;
    std::vector<QSize> edited;
};

TEST_F(NotificationToastTest, aPlainToastIsItsMessageWithoutSoundOrActions) {
    start();
    showPlain();
    ASSERT_TRUE(waitForShown(1));
    const auto& toast = server->all[0];
    EXPECT_EQ(toast.application, "Framora");
    EXPECT_EQ(toast.summary, "Copied & <done>") << "a summary is no markup";
    EXPECT_TRUE(toast.body.isEmpty());
    EXPECT_TRUE(toast.actions.isEmpty());
    EXPECT_EQ(toast.icon, "org.framora.Framora");
    EXPECT_EQ(toast.timeout, 1800);
    EXPECT_EQ(toast.replaces, 0U);
    EXPECT_EQ(toast.hints["desktop-entry"].toString(), "org.framora.Framora");
    EXPECT_TRUE(toast.hints["transient"].toBool());
    EXPECT_TRUE(toast.hints["suppress-sound"].toBool());
    EXPECT_FALSE(toast.hints.contains("image-data"));
}

TEST_F(NotificationToastTest, aFailureLooksLikeOne) {
    start();
    showPlain(false);
    ASSERT_TRUE(waitForShown(1));
    EXPECT_EQ(server->all[0].icon, "dialog-error");
}

TEST_F(NotificationToastTest, aCapturesToastCarriesItsPictureSmallAndTheEditAction) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    const auto& toast = server->all[0];
    EXPECT_EQ(toast.timeout, 3000);
    EXPECT_EQ(toast.body, localized(QStringLiteral("toast.edit")));
    const QString edit = localized(QStringLiteral("toast.edit.action"));
    EXPECT_EQ(toast.actions, (QStringList{"default", edit, "edit", edit}));

    const auto data = toast.hints["image-data"].value<QDBusArgument>();
    int width = 0, height = 0, stride = 0, bits = 0, channels = 0;
    bool hasAlpha = true;
    QByteArray bytes;
    data.beginStructure();
    data >> width >> height >> stride >> hasAlpha >> bits >> channels >> bytes;
    data.endStructure();
    EXPECT_LE(width, 240);
    EXPECT_LE(height, 136);
    EXPECT_NEAR(double(width) / height, 1.6, 0.02);
    EXPECT_FALSE(hasAlpha);
    EXPECT_EQ(channels, 3);
    EXPECT_EQ(bits, 8);
    ASSERT_EQ(bytes.size(), (height - 1) * stride + width * 3) << "as much as the last line has";
    const qsizetype middle = qsizetype{height / 2} * stride + qsizetype{width / 2} * 3;
    EXPECT_EQ(uchar(bytes[middle]), 220);
    EXPECT_EQ(uchar(bytes[middle + 1]), 90);
    EXPECT_EQ(uchar(bytes[middle + 2]), 60);
}

TEST_F(NotificationToastTest, aServerWithoutButtonsIsGivenNone) {
    start(false);
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    EXPECT_TRUE(server->all[0].actions.isEmpty());
}

TEST_F(NotificationToastTest, theToastsTimeIsKeptByUsToo) {
    start();
    QElapsedTimer time;
    time.start();
    showPlain();
    ASSERT_TRUE(waitForShown(1));
    ASSERT_TRUE(waitFor([&] { return server->shown.empty(); }));
    EXPECT_GE(time.elapsed(), 1790);
    EXPECT_TRUE(waitFor([&] { return !manager->isShowing(); }))
        << "after the fade that the server does as it likes";
    EXPECT_EQ(server->closed.size(), 1U);
}

TEST_F(NotificationToastTest, choosingItEditsOnceAndPassesTheTokenOnFirst) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    settle();
    server->choose(server->shown.at(0), QStringLiteral("default"), QStringLiteral("token"));
    ASSERT_TRUE(waitFor([&] { return !edited.empty(); }));
    EXPECT_EQ(edited, std::vector<QSize>{QSize(800, 500)});
    EXPECT_EQ(tokens, std::vector<QString>{"token"});
    settle();
    EXPECT_EQ(edited.size(), 1U);
    EXPECT_TRUE(waitFor([&] { return !manager->isShowing(); }));
}

TEST_F(NotificationToastTest, itsButtonDoesTheSame) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    settle();
    server->choose(server->shown.at(0), QStringLiteral("edit"));
    EXPECT_TRUE(waitFor([&] { return edited.size() == 1; }));
    EXPECT_TRUE(tokens.empty());
}

TEST_F(NotificationToastTest, anotherProgramsNotificationIsNotOurs) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    settle();
    server->choose(4711, QStringLiteral("default"), QStringLiteral("token"));
    settle();
    EXPECT_TRUE(edited.empty());
    EXPECT_TRUE(tokens.empty());
}

TEST_F(NotificationToastTest, theNextToastTakesThePlaceOfTheOneThatIsThere) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    settle();
    showPlain();
    ASSERT_TRUE(waitForShown(2));
    settle();
    EXPECT_EQ(server->all[1].replaces, server->all[0].id);
    EXPECT_EQ(server->shown, std::vector<uint>{server->all[0].id});
    EXPECT_TRUE(server->closed.empty()) << "nothing flickers";
}

TEST_F(NotificationToastTest, twoInOneTurnLeaveOne) {
    start();
    showInteractive();
    showPlain();
    ASSERT_TRUE(waitFor([&] { return !server->all.empty(); }));
    settle();
    ASSERT_EQ(server->shown.size(), 1U);
    EXPECT_EQ(server->all.back().summary, "Copied & <done>");
    EXPECT_EQ(server->shown[0], server->all.back().id);
}

TEST_F(NotificationToastTest, whatTheUserPutAwayIsNotReplaced) {
    start();
    showPlain();
    ASSERT_TRUE(waitForShown(1));
    settle();
    server->dismiss(server->shown.at(0));
    settle();
    showPlain();
    ASSERT_TRUE(waitForShown(2));
    EXPECT_EQ(server->all[1].replaces, 0U);
}

TEST_F(NotificationToastTest, duringACaptureItIsNotThere) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    settle();
    panels->withdraw();
    ASSERT_TRUE(waitFor([&] { return server->shown.empty(); }));
    panels->restore();
    ASSERT_TRUE(waitForShown(2));
    EXPECT_EQ(server->all[1].summary, "Captured");
}

TEST_F(NotificationToastTest, aCaptureDoesNotBringBackWhatTheUserPutAway) {
    start();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    settle();
    server->dismiss(server->shown.at(0));
    settle();
    panels->withdraw();
    panels->restore();
    settle();
    EXPECT_EQ(server->all.size(), 1U);
}

TEST_F(NotificationToastTest, whatEndsWhileItIsWithdrawnStaysAway) {
    start();
    showPlain();
    ASSERT_TRUE(waitForShown(1));
    settle();
    panels->withdraw();
    manager.reset();
    panels->restore();
    settle();
    EXPECT_TRUE(server->shown.empty());
    EXPECT_EQ(server->all.size(), 1U);
}

TEST_F(NotificationToastTest, withItsManagerItGoes) {
    start();
    showPlain();
    manager.reset(); // Before the server has answered.
    ASSERT_TRUE(waitForShown(1));
    EXPECT_TRUE(waitFor([&] { return server->shown.empty(); }));
}

TEST_F(NotificationToastTest, withoutAServerNothingBreaksAndTheTimesAreKept) {
    startToasts();
    showInteractive();
    showPlain();
    EXPECT_TRUE(manager->isShowing());
    EXPECT_TRUE(waitFor([&] { return !manager->isShowing(); }));
}

TEST_F(NotificationToastTest, aServerThatIsStartedAnewKnowsNothingOfTheOldOnes) {
    start();
    showPlain();
    ASSERT_TRUE(waitForShown(1));
    settle();
    server.reset();
    settle();
    server = std::make_unique<NotificationServerDouble>(desktop.busAddress(), true);
    settle();
    showInteractive();
    ASSERT_TRUE(waitForShown(1));
    EXPECT_EQ(server->all[0].replaces, 0U);
    EXPECT_FALSE(server->all[0].actions.isEmpty());
}

/// The same before a real server.
TEST_F(NotificationToastTest, aRealServerShowsMessageAndPicture) {
    desktop.start(QStringLiteral("dunst"));
    ASSERT_TRUE(
        waitFor([&] { return desktop.serviceIsOnBus(QStringLiteral("org.freedesktop.Notifications")); }));
    startToasts();
    showInteractive();
    std::optional<DesktopWindow> shown;
    ASSERT_TRUE(waitFor([&] {
        shown = desktop.display().windowOfClass(QStringLiteral("dunst"));
        return shown.has_value();
    }));
    const auto hasPicture = [&] {
        const QImage screen = desktop.display().screenshot();
        int count = 0;
        for (int y = 0; y < screen.height(); ++y)
            for (int x = 0; x < screen.width(); ++x)
                count += screen.pixelColor(x, y) == QColor(220, 90, 60);
        return count > 500;
    };
    EXPECT_TRUE(waitFor(hasPicture, 2000));
    if (const auto folder = qEnvironmentVariable("FRAMORA_SCREENSHOTS"); !folder.isEmpty())
        desktop.display().screenshot().save(folder + QStringLiteral("/notification.png"));
    EXPECT_TRUE(waitFor([&] { return !hasPicture(); })) << "and takes it away in the end";
}

} // namespace
} // namespace framora
