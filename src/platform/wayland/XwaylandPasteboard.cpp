#include "platform/wayland/XwaylandPasteboard.h"

namespace framora {

XwaylandPasteboard::XwaylandPasteboard(X11Pasteboard::DecodePicture decodePicture)
    : m_decodePicture(std::move(decodePicture)) {}

XwaylandPasteboard::~XwaylandPasteboard() = default;

std::int64_t XwaylandPasteboard::changeCount() {
    Pasteboard& pasteboard = current();
    m_lastCount = m_earlierChanges + pasteboard.changeCount();
    return m_lastCount;
}

Pasteboard& XwaylandPasteboard::current() {
    if (m_pasteboard && m_connection->isValid())
        return *m_pasteboard;
    // The next one counts from nothing; nobody is to see the count go back.
    if (m_pasteboard)
        m_earlierChanges = m_lastCount;
    m_pasteboard.reset();
    m_connection = std::make_unique<X11Connection>();
    if (m_connection->isValid()) {
        if (m_standIn)
            m_earlierChanges += m_standIn->changeCount();
        m_standIn.reset();
        m_pasteboard = std::make_unique<X11Pasteboard>(*m_connection, m_decodePicture);
        return *m_pasteboard;
    }
    if (!m_standIn)
        m_standIn = std::make_unique<AdoptingPasteboard>(m_decodePicture);
    return *m_standIn;
}

} // namespace framora
