#pragma once

#include <QString>
#include <optional>

namespace framora {

/// What the desktop, a command line or a second start may ask of the program that runs.
enum class ProgramCommand {
    activate, ///< Only that it was started: its windows come forward.
    captureArea,
    captureWindow,
    settings,
    quit
};

/// The command's name on the bus and, behind two dashes, on the command line: "capture-area".
const char* commandName(ProgramCommand command);
std::optional<ProgramCommand> commandOfName(const QString& name);

} // namespace framora
