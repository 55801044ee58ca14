#pragma once

#include "platform/LoginItem.h"

#include <QByteArray>
#include <QStringList>
#include <optional>

namespace framora {

/// The program's entry in the user's autostart folder, as every desktop reads it. What desktops' own settings
/// write there - hidden, switched off, a delay - is heeded and kept.
class AutostartEntry final : public LoginItem {
public:
    /// `file` is the user's entry; `systemFolders` may hold one of the same name that counts where the user
    /// has none. `program` is what an entry starts.
    AutostartEntry(QString file, QStringList systemFolders, QString program);
    /// The entry of this user and of the program that runs.
    static AutostartEntry ofUser();

    bool isEnabled() const override;
    /// Replaces the file at once, or takes it away.
    bool setEnabled(bool enabled) override;
    /// Points an entry at this program when the one it names is not there any more.
    void followProgram();

private:
    std::optional<QByteArray> entryInForce() const;

    QString m_file;
    QStringList m_systemFolders;
    QString m_program;
};

} // namespace framora
