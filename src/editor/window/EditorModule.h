#pragma once

class QImage;

namespace framora {

struct EditorServices;

/// The editor as the program sees it before, while and after its module is loaded.
class Editor {
public:
    virtual ~Editor() = default;
    virtual bool isOpen() const = 0;
    /// Opens the editor for the picture; one that is open is closed first.
    virtual void edit(const QImage& image) = 0;
    /// Brings the open window forward.
    virtual void raise() = 0;
};

/// What the windows' module exports: the editor over these services; the caller owns the result.
using MakeEditor = Editor*(const EditorServices&);
inline constexpr char makeEditorName[] = "framora_makeEditor";

} // namespace framora
