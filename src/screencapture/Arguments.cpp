#include "screencapture/Arguments.h"

namespace framora {

namespace {

/// As portals name windows, and no more than they would.
bool namesWindow(std::string_view text) {
    constexpr std::size_t kLongest = 512;
    return text.size() <= kLongest && (text.starts_with("wayland:") || text.starts_with("x11:"));
}

} // namespace

std::optional<Arguments> Arguments::parse(std::span<const char* const> arguments) {
    bool area = false;
    bool window = false;
    bool ask = false;
    bool check = false;
    Arguments result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--parent") {
            if (++i == arguments.size() || !namesWindow(arguments[i]))
                return std::nullopt;
            result.parentWindow = arguments[i];
            continue;
        }
        if (argument == "--ask-permission" || argument == "--check-route") {
            (argument == "--check-route" ? check : ask) = true;
            continue;
        }
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
    if (area + window + ask + check != 1)
        return std::nullopt;
    result.task = ask ? Task::AskPermission : check ? Task::CheckRoute : Task::Capture;
    result.mode = window ? CaptureMode::Window : CaptureMode::Area;
    return result;
}

std::string_view Arguments::usage() {
    return "usage: framora-screencapture -i|-w [-c] [-x] [--parent WINDOW]\n"
           "       framora-screencapture --ask-permission [--parent WINDOW]\n"
           "       framora-screencapture --check-route\n"
           "  -i  select an area with the pointer\n"
           "  -w  select a window\n"
           "  -c  put the picture on the clipboard (always so)\n"
           "  -x  make no sound (always so)\n"
           "  --parent WINDOW   what a dialog of the desktop belongs to: wayland:HANDLE or x11:ID\n"
           "  --ask-permission  have the desktop ask whether pictures may be taken; takes none\n"
           "  --check-route     succeed where pictures are taken without asking; shows nothing\n";
}

} // namespace framora
