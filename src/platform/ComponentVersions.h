#pragma once

#include <QStringList>
#include <functional>

namespace framora {

/// What the program's helpers are made of.
class ComponentVersions {
public:
    /// Names with versions, "libheif 1.15.1"; a helper that does not answer has none.
    using Answer = std::function<void(const QStringList& versions)>;

    virtual ~ComponentVersions() = default;
    /// Answers once, in a later turn of the event loop.
    virtual void ask(Answer answer) = 0;
};

} // namespace framora
