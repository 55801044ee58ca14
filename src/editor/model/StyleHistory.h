#pragma once

#include "editor/model/ScreenshotStyleConfig.h"

#include <QSizeF>
#include <QString>
#include <QUrl>
#include <deque>
#include <optional>

namespace framora {

/// What undo and redo go back and forth between. It records states as they were before each change and holds
/// a bounded number of them; the state in force stays with its owner.
///
/// One step is one thing the user did: everything that an open gesture writes into its field, or a burst of
/// changes of one field that follow each other quickly.
class StyleHistory {
public:
    struct State {
        ScreenshotStyleConfig config;
        QUrl selectedWallpaperURL;
        QSizeF lastOffset{0, 0}; ///< Where the last drag in the preview ended; it goes along.
    };

    /// How many steps back there are at most.
    static constexpr std::size_t capacity = 200;
    /// Changes of one field belong together while no more than this lies between them, in seconds.
    static constexpr double quietTime = 0.8;

    /// True when undo has nothing to tell the two apart by: zoom is a matter of the view.
    static bool looksEqual(const State& a, const State& b);

    /// Says that the style went from `before` to `after` at `now`, in seconds. `field` names what was written
    /// where further writes of it may join the step; empty where each is a step of its own.
    void record(const State& before, const State& after, const QString& field, double now);

    /// While a gesture is open, every write of `field` is one step. A new one ends the one before, and so
    /// does a write of any other field.
    void beginEdit(const QString& field);
    void endEdit();
    bool isEditing(const QString& field) const { return m_gesture == field; }

    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    /// The state before the last step; nothing when there is none. `current` is kept for redo.
    std::optional<State> undo(const State& current);
    std::optional<State> redo(const State& current);

private:
    bool joinsLastStep(const QString& field, double now) const;
    void closeStep();

    std::deque<State> m_undo;
    std::deque<State> m_redo;
    std::deque<State> m_redoBefore;   ///< What the last step ended of it, while more may join that step.
    std::optional<QString> m_gesture; ///< The open gesture's field.
    /// The field that the last step may still take writes of; empty when it is closed.
    QString m_openField;
    double m_lastWrite = 0;
};

} // namespace framora
