#include "platform/wayland/XwaylandPasteboard.h"

#include "platform/x11/X11Connector.h"

#include <chrono>
#include <utility>

namespace framora {

namespace {

/// A server that has to be started first is there within a second or two.
constexpr std::chrono::seconds patience{3};
/// Longer than a capture asks.
constexpr double restSeconds = 10;

} // namespace

XwaylandPasteboard::XwaylandPasteboard(MainQueue& mainQueue, X11Pasteboard::DecodePicture decodePicture,
                                       Connect connect)
    : m_mainQueue(mainQueue), m_connect(std::move(connect)), m_decodePicture(std::move(decodePicture)) {}

XwaylandPasteboard::Connect XwaylandPasteboard::connectSoon() {
    return [connector = std::make_shared<X11Connector>()] { return connector->connect(patience); };
}

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
    m_connection.reset();
    if (connectAgain())
        return *m_pasteboard;
    if (!m_standIn)
        m_standIn = std::make_unique<AdoptingPasteboard>(m_mainQueue, m_decodePicture);
    return *m_standIn;
}

bool XwaylandPasteboard::connectAgain() {
    if (m_rest)
        return false;
    m_connection = m_connect();
    if (!m_connection) {
        m_rest = m_mainQueue.after(restSeconds, [this] { m_rest.reset(); });
        return false;
    }
    m_pasteboard = std::make_unique<X11Pasteboard>(*m_connection, m_decodePicture);
    if (const auto standIn = std::exchange(m_standIn, nullptr)) {
        m_earlierChanges += standIn->changeCount();
        if (const QByteArray png = standIn->takeWaiting(); !png.isEmpty())
            m_pasteboard->writePng(png);
    }
    return true;
}

} // namespace framora
