#pragma once

#include "feedback/InteractiveToastView.h"
#include "feedback/ToastView.h"
#include "platform/Application.h"
#include "platform/CaptureTool.h"
#include "platform/KeyMonitors.h"
#include "platform/Pasteboard.h"
#include "platform/Permissions.h"
#include "platform/SoundOutput.h"
#include "platform/StatusBar.h"
#include "platform/ToastPanel.h"
#include "support/ManualKeyMonitors.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace framora {

/// What was asked of the platform's parts, all in one list, in the order of the calls.
using PlatformLog = std::vector<std::string>;

class RecordingPasteboard final : public Pasteboard {
public:
    explicit RecordingPasteboard(PlatformLog& log) : m_log(log) {}
    std::int64_t changeCount() override {
        m_log.push_back("change count");
        return count;
    }
    QImage readImage() override {
        m_log.push_back("read image");
        return image;
    }
    void writePng(const QByteArray&) override {
        m_log.push_back("write");
        ++count;
    }
    void adoptPicture(const QByteArray&) override {
        m_log.push_back("adopt");
        ++count;
    }

    std::int64_t count = 41;
    QImage image;

private:
    PlatformLog& m_log;
};

class RecordingCaptureTool final : public CaptureTool {
public:
    explicit RecordingCaptureTool(PlatformLog& log) : m_log(log) {}
    bool launch(const QStringList& arguments) override {
        m_log.push_back("launch " + arguments.join(QLatin1Char(' ')).toStdString());
        return canLaunch;
    }
    void waitUntilExit() override {
        m_log.push_back("wait");
        if (whileOpen)
            whileOpen();
    }

    bool canLaunch = true;
    /// What the user and others do while the tool has the screen.
    std::function<void()> whileOpen;

private:
    PlatformLog& m_log;
};

class RecordingStatusBar final : public StatusBar {
public:
    explicit RecordingStatusBar(PlatformLog& log) : m_log(log) {}
    std::unique_ptr<StatusItem> makeStatusItem() override {
        m_log.push_back("status item");
        return hasItems ? std::make_unique<Item>(*this) : nullptr;
    }
    bool hasHost() const override { return isShown; }

    bool hasItems = true;
    bool isShown = true;
    bool hasSymbol = true;
    std::vector<StatusItem::MenuEntry> menu;

private:
    class Item final : public StatusItem {
    public:
        explicit Item(RecordingStatusBar& bar) : m_bar(bar) {}
        bool setSymbol(const QString& symbol, const QString& description, double pointSize) override {
            m_bar.m_log.push_back("symbol " + symbol.toStdString() + " '" + description.toStdString() + "' " +
                                  QString::number(pointSize).toStdString());
            return m_bar.hasSymbol;
        }
        void setMenu(std::vector<MenuEntry> entries) override {
            m_bar.m_log.push_back("menu");
            m_bar.menu = std::move(entries);
        }

    private:
        RecordingStatusBar& m_bar;
    };
    PlatformLog& m_log;
};

class RecordingPermissions final : public Permissions {
public:
    explicit RecordingPermissions(PlatformLog& log) : m_log(log) {}
    bool isAccessibilityTrusted() override {
        m_log.push_back("accessibility?");
        return trusted;
    }
    bool requestAccessibility() override {
        m_log.push_back("request accessibility");
        return trusted;
    }
    bool canCaptureScreen() override {
        m_log.push_back("screen recording?");
        return recording;
    }

    bool trusted = false;
    bool recording = false;

private:
    PlatformLog& m_log;
};

class RecordingApplication final : public Application {
public:
    explicit RecordingApplication(PlatformLog& log) : m_log(log) {}
    void setActivationPolicy(ActivationPolicy policy) override {
        m_log.push_back(policy == ActivationPolicy::regular ? "regular" : "accessory");
    }
    void activate() override { m_log.push_back("activate"); }
    void setFrontWindow(QWindow&) override { m_log.push_back("front window"); }
    void useActivationToken(const QString& token) override {
        m_log.push_back("token " + token.toStdString());
    }
    void terminate() override { m_log.push_back("terminate"); }

private:
    PlatformLog& m_log;
};

/// Only adding and removing is recorded; keys are pressed through `keys`.
class RecordingKeyMonitors final : public KeyMonitors {
public:
    explicit RecordingKeyMonitors(PlatformLog& log) : m_log(log) {}
    Token addGlobalMonitor(GlobalHandler handler) override {
        m_log.push_back("add global");
        return keys.addGlobalMonitor(std::move(handler));
    }
    Token addLocalMonitor(LocalHandler handler) override {
        m_log.push_back("add local");
        return keys.addLocalMonitor(std::move(handler));
    }
    Token addRecordingMonitor(LocalHandler handler) override {
        m_log.push_back("add recording");
        return keys.addRecordingMonitor(std::move(handler));
    }
    void removeMonitor(Token token) override {
        m_log.push_back("remove monitor");
        keys.removeMonitor(token);
    }

    ManualKeyMonitors keys;

private:
    PlatformLog& m_log;
};

/// Every sound file exists; what is played is recorded with its volume.
class LoggedSoundOutput final : public SoundOutput {
public:
    explicit LoggedSoundOutput(PlatformLog& log) : m_log(log) {}
    bool fileExists(const QString&) const override { return true; }
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override {
        return std::make_unique<Player>(m_log, url.fileName().toStdString());
    }
    std::unique_ptr<AudioPlayer> systemSound(const QString&) override { return nullptr; }

private:
    class Player final : public AudioPlayer {
    public:
        Player(PlatformLog& log, std::string name) : m_log(log), m_name(std::move(name)) {}
        void setVolume(float volume) override { m_volume = volume; }
        void play() override {
            m_log.push_back("play " + m_name + " " + QString::number(double(m_volume)).toStdString());
        }

    private:
        PlatformLog& m_log;
        std::string m_name;
        float m_volume = -1;
    };
    PlatformLog& m_log;
};

/// Records what each toast says. The latest one's content can be clicked while it is open.
class LoggedToastPanels final : public ToastPanels {
public:
    explicit LoggedToastPanels(PlatformLog& log) : m_log(log) {}
    std::unique_ptr<ToastPanel> makePanel(const Screen&, bool,
                                          std::unique_ptr<ToastContent> content) override {
        if (const auto* plain = dynamic_cast<ToastView*>(content.get()))
            m_log.push_back("toast '" + plain->message.toStdString() + "' " + plain->icon.toStdString() +
                            (plain->success ? " success" : " failure"));
        else if (const auto* picture = dynamic_cast<InteractiveToastView*>(content.get()))
            m_log.push_back("picture toast '" + picture->message.toStdString() + "' " +
                            picture->icon.toStdString());
        auto panel = std::make_unique<Panel>(std::move(content));
        front = panel->content.get();
        return panel;
    }

    void withdraw() override { m_log.push_back("withdraw"); }
    void restore() override { m_log.push_back("restore"); }

    ToastContent* front = nullptr;

private:
    struct Panel final : ToastPanel {
        explicit Panel(std::unique_ptr<ToastContent> shown) : content(std::move(shown)) {}
        void setAlpha(double) override {}
        void orderFront() override {}
        void animateAlpha(double, double, Easing, std::function<void()>) override {}
        std::unique_ptr<ToastContent> content;
    };
    PlatformLog& m_log;
};

} // namespace framora
