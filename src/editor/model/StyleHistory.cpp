#include "editor/model/StyleHistory.h"

#include <utility>

namespace framora {

bool StyleHistory::looksEqual(const State& a, const State& b) {
    if (a.selectedWallpaperURL != b.selectedWallpaperURL)
        return false;
    if (a.config.zoom == b.config.zoom)
        return a.config == b.config;
    ScreenshotStyleConfig sameZoom = a.config;
    sameZoom.zoom = b.config.zoom;
    return sameZoom == b.config;
}

bool StyleHistory::joinsLastStep(const QString& field, double now) const {
    if (m_undo.empty() || m_openField.isEmpty() || m_openField != field)
        return false;
    // A clock that was set back joins nothing.
    return m_gesture || (now >= m_lastWrite && now - m_lastWrite <= quietTime);
}

void StyleHistory::record(const State& before, const State& after, const QString& field, double now) {
    if (looksEqual(before, after))
        return;
    if (m_gesture && *m_gesture != field)
        endEdit();
    if (!joinsLastStep(field, now)) {
        m_redoBefore = std::exchange(m_redo, {});
        m_undo.push_back(before);
        if (m_undo.size() > capacity)
            m_undo.pop_front();
    } else if (looksEqual(m_undo.back(), after)) {
        // Back where the step began: nothing is left to undo of it, and what could be redone before still
        // can.
        m_undo.pop_back();
        m_redo = std::exchange(m_redoBefore, {});
        m_openField.clear();
        return;
    }
    m_openField = field;
    m_lastWrite = now;
}

void StyleHistory::beginEdit(const QString& field) {
    closeStep();
    m_gesture = field;
}

void StyleHistory::endEdit() {
    if (m_gesture)
        closeStep();
}

void StyleHistory::closeStep() {
    m_gesture.reset();
    m_openField.clear();
    m_redoBefore.clear();
}

std::optional<StyleHistory::State> StyleHistory::undo(const State& current) {
    closeStep();
    if (m_undo.empty())
        return {};
    m_redo.push_back(current);
    State state = std::move(m_undo.back());
    m_undo.pop_back();
    return state;
}

std::optional<StyleHistory::State> StyleHistory::redo(const State& current) {
    closeStep();
    if (m_redo.empty())
        return {};
    m_undo.push_back(current);
    State state = std::move(m_redo.back());
    m_redo.pop_back();
    return state;
}

} // namespace framora
