#pragma once

#include <QDBusConnection>
#include <QRect>
#include <QString>

#include <optional>
#include <vector>

namespace framora {

/// One control as the desktop's accessibility bus tells of it.
struct AccessibleNode {
    QString service;
    QString path;
    QString name;
    QString role; ///< "push button", "radio button", "slider", ...
    QRect area;   ///< Pixels of the root window.
    bool showing = false;
    bool checked = false;
    bool enabled = false;
    bool focusable = false;
    bool focused = false;
};

/// The programs of a desktop as a screen reader finds them: controls by name, with the place they are in.
/// The desktop must have been started with DesktopOptions::accessibility.
class AccessibleTree {
public:
    /// `address` of the desktop's session bus. Throws std::runtime_error without an accessibility bus there.
    explicit AccessibleTree(const QString& address);
    ~AccessibleTree();
    AccessibleTree(const AccessibleTree&) = delete;
    AccessibleTree& operator=(const AccessibleTree&) = delete;

    /// Every node of the programs whose name contains `application`, parents first.
    std::vector<AccessibleNode> nodes(const QString& application);
    /// The first node that shows, with that exact name and, unless empty, that role.
    std::optional<AccessibleNode> find(const QString& application, const QString& name,
                                       const QString& role = {});
    /// The present value of a slider.
    std::optional<double> value(const AccessibleNode& node);
    void setValue(const AccessibleNode& node, double value);
    /// The range of a slider.
    std::optional<std::pair<double, double>> range(const AccessibleNode& node);
    /// Does what the node is there for, as a screen reader's user asks: presses a button, chooses a choice.
    /// False when it has no such action.
    bool press(const AccessibleNode& node);

private:
    void collect(const QString& service, const QString& path, int depth, std::vector<AccessibleNode>& result);
    QVariantList call(const QString& service, const QString& path, const QString& interface,
                      const QString& method, const QVariantList& arguments = {});
    QVariant property(const QString& service, const QString& path, const QString& interface,
                      const QString& name);
    std::vector<std::pair<QString, QString>> children(const QString& service, const QString& path);

    QString m_connectionName;
    QDBusConnection m_bus;
};

} // namespace framora
