#include "platform/desktop/JsonFileDefaults.h"

#include <QCoreApplication>
#include <QTimer>
#include <string>

namespace {

/// Saves "1", "2", ... under "Settings", each with a text of some pages, so that a kill finds it in every
/// state.
class EndlessSaver {
public:
    explicit EndlessSaver(framora::JsonFileDefaults& defaults) : m_defaults(defaults) {}

    bool save() {
        ++m_number;
        const std::string text(20'000, static_cast<char>('a' + m_number % 26));
        return m_defaults.setData("Settings", "{\"number\": " + std::to_string(m_number) + ", \"text\": \"" +
                                                  text + "\"}");
    }

private:
    framora::JsonFileDefaults& m_defaults;
    unsigned m_number = 0;
};

} // namespace

/// Saves without end into the file that is named first; with a second argument in an event loop, as a drag
/// does. Ends by itself only where that goes wrong.
int main(int argc, char** argv) {
    if (argc < 2)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    if (argc == 2) {
        framora::JsonFileDefaults defaults(path);
        EndlessSaver saver(defaults);
        while (saver.save()) {
        }
        return 1;
    }
    QCoreApplication application(argc, argv);
    // Much is in the making of a file, little in the pauses between.
    framora::JsonFileDefaults defaults(path, std::chrono::milliseconds(3));
    EndlessSaver saver(defaults);
    constexpr int mostAtOnce = 100;
    int atOnce = 0; // saves in a row that were no step
    QTimer step;
    step.callOnTimeout([&] {
        const bool isSaved = saver.save();
        atOnce = defaults.isSavePending() ? 0 : atOnce + 1;
        if (!isSaved || atOnce == mostAtOnce)
            QCoreApplication::exit(1);
    });
    step.start(0);
    return QCoreApplication::exec();
}
