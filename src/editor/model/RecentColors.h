#pragma once

#include <QColor>
#include <QObject>
#include <QStringList>

namespace framora {

class UserDefaults;

/// The colours that were used lately, newest first and none twice, from one editor to the next and, where
/// there is a store, from one run to the next.
class RecentColors final : public QObject {
    Q_OBJECT

public:
    static constexpr int most = 8;
    static constexpr char key[] = "RecentColors";

    /// `defaults` may be null; otherwise it outlives this.
    explicit RecentColors(UserDefaults* defaults, QObject* parent = nullptr);

    /// "#rrggbb" each.
    const QStringList& names();
    /// Puts an opaque colour first. What has any transparency is no colour to choose again.
    void add(const QColor& color);

Q_SIGNALS:
    void changed();

private:
    UserDefaults* m_defaults;
    bool m_loaded = false;
    QStringList m_names;
};

} // namespace framora
