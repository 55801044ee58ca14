#pragma once

#include "platform/ComponentVersions.h"

#include <QObject>

namespace framora {

/// Asks the two decoders, which are programs of their own, with which libraries they run.
class DecoderVersions final : public QObject, public ComponentVersions {
    Q_OBJECT

public:
    void ask(Answer answer) override;
};

} // namespace framora
