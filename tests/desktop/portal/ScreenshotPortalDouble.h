#pragma once

#include <QColor>
#include <QDBusConnection>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace framora {

/// A desktop portal with the Screenshot interface, as GNOME's and newer ones answer, on a bus of the test's
/// own. It answers while the test serves its events.
class ScreenshotPortalDouble {
public:
    /// How a request ends, in the portal's numbers.
    enum class Code : unsigned { done = 0, cancelled = 1, other = 2 };
    struct Response {
        Code code = Code::done;
        QString uri;                      ///< no entry when empty
        std::optional<QColor> color = {}; ///< no entry when not set
    };
    /// One call of Screenshot or PickColor.
    struct Call {
        QString method;
        QString parentWindow;
        QVariantMap options;
        QString sender;
        QString handle;
        bool closed = false; ///< by its caller
    };

    /// Takes the portal's name on the bus.
    explicit ScreenshotPortalDouble(const QString& busAddress);
    ~ScreenshotPortalDouble();

    unsigned version = 2;
    std::optional<unsigned> availableTargets; ///< no such property when not set, as before version 3
    bool hasScreenshots = true;               ///< whether there is a Screenshot interface at all
    bool repliesToCalls = true;               ///< otherwise it takes calls and is silent
    bool refusesTarget = false;               ///< an error for every call with a "target"
    bool predictableHandles = true;           ///< otherwise requests stand where the portal likes
    std::optional<Response> immediate;        ///< what it answers right behind the reply

    std::vector<Call> calls;

    /// Answers the last call.
    void respond(const Response& response);
    /// Leaves the bus as a portal that crashed.
    void vanish();

private:
    class Object;

    QString m_name;
    QDBusConnection m_bus;
    std::unique_ptr<Object> m_object;
};

} // namespace framora
