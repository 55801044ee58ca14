#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

namespace framora {

/// Lets the program quit in order when it is told to end from outside, so that the clipboard is handed over.
class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    TerminationSignals();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace framora
