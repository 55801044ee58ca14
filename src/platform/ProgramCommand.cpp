#include "platform/ProgramCommand.h"

#include <array>

namespace framora {
namespace {

struct Named {
    ProgramCommand command;
    const char* name;
};

constexpr std::array all{
    Named{ProgramCommand::activate, "activate"},
    Named{ProgramCommand::captureArea, "capture-area"},
    Named{ProgramCommand::captureWindow, "capture-window"},
    Named{ProgramCommand::settings, "settings"},
    Named{ProgramCommand::quit, "quit"},
};

} // namespace

const char* commandName(ProgramCommand command) {
    return all[static_cast<std::size_t>(command)].name;
}

std::optional<ProgramCommand> commandOfName(const QString& name) {
    for (const Named& named : all) {
        if (name == QLatin1String(named.name))
            return named.command;
    }
    return std::nullopt;
}

} // namespace framora
