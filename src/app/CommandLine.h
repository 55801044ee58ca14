#pragma once

#include "platform/ProgramCommand.h"

#include <QByteArray>
#include <QString>

namespace framora {

/// What the program's command line says.
struct CommandLine {
    enum class Kind {
        run, ///< Become the program, or have the one that runs do `command`.
        help,
        version,
        wrong ///< `complaint` says why.
    };

    Kind kind = Kind::run;
    ProgramCommand command = ProgramCommand::activate;
    bool startedByBus = false; ///< The bus started it, and is about to say what for.
    QString complaint;

    static CommandLine of(int argc, const char* const* argv);
    static QByteArray helpText();
};

/// A command on its way from one process of the program to another, and the token by which windows may come
/// forward then.
struct CommandMessage {
    ProgramCommand command = ProgramCommand::activate;
    QString activationToken;

    QByteArray encoded() const;
    /// What says nothing, or nothing known, is a mere start.
    static CommandMessage decoded(const QByteArray& bytes);
    /// The token that whoever started this process left in its environment.
    static QString tokenOfEnvironment();
};

} // namespace framora
