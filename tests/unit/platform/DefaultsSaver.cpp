#include "platform/desktop/JsonFileDefaults.h"

#include <string>

/// Saves without end: records "1", "2", ... under "Settings" of the file that is named, each with a text of
/// some pages, so that a kill finds it in every state.
int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    framora::JsonFileDefaults defaults(QString::fromLocal8Bit(argv[1]));
    for (unsigned number = 1;; ++number) {
        const std::string text(20'000, static_cast<char>('a' + number % 26));
        if (!defaults.setData("Settings",
                              "{\"number\": " + std::to_string(number) + ", \"text\": \"" + text + "\"}"))
            return 1;
    }
}
