#include "screencapture/Arguments.h"

namespace framora {

std::optional<Arguments> Arguments::parse(std::span<const char* const> arguments) {
    bool area = false;
    bool window = false;
    for (const std::string_view argument : arguments) {
        if (argument.size() < 2 || argument[0] != '-')
            return std::nullopt;
        for (const char letter : argument.substr(1)) {
            switch (letter) {
            case 'i':
                area = true;
                break;
            case 'w':
                window = true;
                break;
            case 'c': // the clipboard is where every picture goes
            case 'x': // no sound is ever made
                break;
            default:
                return std::nullopt;
            }
        }
    }
    if (area == window)
        return std::nullopt;
    return Arguments{area ? CaptureMode::Area : CaptureMode::Window};
}

std::string_view Arguments::usage() {
    return "usage: framora-screencapture -i|-w [-c] [-x]\n"
           "  -i  select an area with the pointer\n"
           "  -w  select a window\n"
           "  -c  put the picture on the clipboard (always so)\n"
           "  -x  make no sound (always so)\n";
}

} // namespace framora
