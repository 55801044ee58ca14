#pragma once

#include <QString>
#include <functional>

class QWindow;

namespace framora {

/// The desktop's ways to hand a file to another program. Nothing here waits: answers come in a later turn of
/// the event loop, on the main thread, and not at all once the object is gone.
class Sharing {
public:
    struct Abilities {
        bool openWith = false;
        bool mail = false;
        bool operator==(const Abilities&) const = default;
    };
    enum class Outcome {
        taken,     ///< Another program has the file, whatever it does with it.
        cancelled, ///< The user wants none to have it.
        failed
    };
    /// Told once the user has answered what the desktop asks, if it asks anything.
    using Finished = std::function<void(Outcome)>;

    virtual ~Sharing() = default;
    virtual void queryAbilities(std::function<void(Abilities)> answer) = 0;
    /// Lets the user choose a program for the file, in front of `parent`, which may be null.
    virtual void openWith(const QString& path, QWindow* parent, Finished finished) = 0;
    /// Opens a mail composer with the file attached.
    virtual void composeMail(const QString& path, const QString& subject, QWindow* parent,
                             Finished finished) = 0;
};

} // namespace framora
