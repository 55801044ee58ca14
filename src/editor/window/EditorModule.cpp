#include "editor/window/EditorModule.h"

#include "editor/window/ScreenshotEditorWindow.h"

#include <QQuickWindow>

namespace framora {

namespace {

class WindowEditor final : public Editor {
public:
    explicit WindowEditor(const EditorServices& services) {
        // Our own compositor paints the picture; the rest of the window needs no graphics driver, whose start
        // would be most of the window's. Qt complains when it is told again.
        if (QQuickWindow::sceneGraphBackend().isEmpty())
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        ScreenshotEditorWindow::provide([services] { return services; });
    }

    bool isOpen() const override { return ScreenshotEditorWindow::shared().editorWindow() != nullptr; }

    void edit(const QImage& image) override {
        auto& editor = ScreenshotEditorWindow::shared();
        if (editor.editorWindow())
            editor.close();
        editor.setClosing(false);
        editor.open(image);
    }

    void raise() override { ScreenshotEditorWindow::shared().raise(); }
};

} // namespace

} // namespace framora

extern "C" Q_DECL_EXPORT framora::Editor* framora_makeEditor(const framora::EditorServices& services) {
    return std::make_unique<framora::WindowEditor>(services).release();
}
