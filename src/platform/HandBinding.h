#pragma once

#include <QString>

namespace framora {

/// How users put a program's command on a key of this desktop themselves.
struct HandBinding {
    enum class Kind {
        command, ///< In settings that we do not know.
        sway,    ///< By a line of the compositor's configuration.
        gnome    ///< As a custom shortcut in the desktop's keyboard settings.
    };
    Kind kind = Kind::command;
    QString program; ///< What starts this program, by its whole path.
};

} // namespace framora
