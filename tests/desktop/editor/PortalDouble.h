#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <memory>
#include <optional>
#include <vector>

namespace framora {

/// A desktop portal with the two interfaces that sharing uses, or with fewer, on a bus of the test's own.
class PortalDouble {
public:
    struct Interfaces {
        bool openUri = true;
        bool email = true;
    };
    /// One request, with its file as it was read through the descriptor.
    struct Call {
        QString method;
        QString parentWindow;
        QVariantMap options; ///< Without what makes them a request.
        QString path;        ///< What the descriptor leads to.
        QByteArray bytes;
        unsigned folderMode = 0; ///< Permissions of the folder that the file lies in.
    };

    PortalDouble(const QString& busAddress, Interfaces interfaces);
    ~PortalDouble();

    std::vector<Call> calls;
    bool refuses = false;
    /// What its user answers: 0 goes on, 1 cancels, 2 is some mishap; nothing as long as it is not known.
    std::optional<unsigned> response = 0;

private:
    QString m_name;
    QDBusConnection m_bus;
    std::unique_ptr<QObject> m_object;
};

} // namespace framora
