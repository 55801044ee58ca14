#pragma once

#include "platform/wayland/WaylandConnection.h"
#include "wayland/OutputLayout.h"

#include <QPoint>
#include <QSize>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

struct zxdg_output_manager_v1;
struct zxdg_output_v1;
struct zxdg_output_v1_listener;

namespace framora {

/// One monitor as the compositor tells of it.
class WaylandOutput {
public:
    /// Called each time that the compositor has told all that there is to tell.
    using Told = std::function<void(const WaylandOutput&)>;

    WaylandOutput(WaylandConnection& connection, const WaylandConnection::Global& global, Told told);
    ~WaylandOutput();
    WaylandOutput(const WaylandOutput&) = delete;
    WaylandOutput& operator=(const WaylandOutput&) = delete;

    operator wl_output*() const { return m_output; }
    std::uint32_t globalName() const { return m_globalName; }
    QString name() const { return m_name; }
    /// In the compositor's space, where scaled outputs are as large as they seem.
    QPoint logicalPosition() const { return {layout().x, layout().y}; }
    QSize logicalSize() const { return {layout().width, layout().height}; }
    /// As it is looked at, after rotation.
    QSize pixelSize() const;
    /// Device pixels a logical one. Exact also where that is no whole number.
    double pixelRatio() const { return layout().ratio; }
    /// Whether the compositor has told all of it.
    bool isKnown() const { return !m_mode.isEmpty(); }

    /// Where the compositor tells how large outputs seem.
    void describeBy(zxdg_output_manager_v1& manager);

private:
    OutputLayout layout() const;

    static const wl_output_listener listener;
    static const zxdg_output_v1_listener logicalListener;

    const std::uint32_t m_globalName;
    const Told m_told;
    wl_output* m_output;
    zxdg_output_v1* m_logical = nullptr;
    QString m_name;
    QPoint m_position;
    QPoint m_logicalPosition;
    QSize m_mode; ///< Pixels, before rotation.
    QSize m_logicalSize;
    std::int32_t m_transform = 0;
    std::int32_t m_scale = 1; ///< Rounded up where it is no whole number.
};

/// The monitors that there are now, in the order in which the compositor named them.
class WaylandOutputs {
public:
    explicit WaylandOutputs(WaylandConnection& connection);
    ~WaylandOutputs();
    WaylandOutputs(const WaylandOutputs&) = delete;
    WaylandOutputs& operator=(const WaylandOutputs&) = delete;

    const std::vector<std::unique_ptr<WaylandOutput>>& all() const { return m_outputs; }
    /// Null when there is none of that name, or none any more.
    const WaylandOutput* named(const QString& name) const;
    const WaylandOutput* of(const wl_output* output) const;
    /// Hears of every output that is new or has changed.
    void onTold(WaylandOutput::Told told) { m_told = std::move(told); }

private:
    void add(const WaylandConnection::Global& global);
    void remove(const WaylandConnection::Global& global);

    WaylandConnection& m_connection;
    zxdg_output_manager_v1* m_manager;
    WaylandOutput::Told m_told;
    std::vector<std::unique_ptr<WaylandOutput>> m_outputs;
};

} // namespace framora
