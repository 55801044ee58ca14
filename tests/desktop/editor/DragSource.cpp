// A window that a file can be dragged out of:  drag_source FILE

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

namespace {

class Source final : public QLabel {
public:
    explicit Source(QString file) : QLabel(QStringLiteral("Drag me")), m_file(std::move(file)) {
        setWindowTitle(QStringLiteral("Drag source"));
        setAlignment(Qt::AlignCenter);
        setWindowFlag(Qt::WindowStaysOnTopHint);
        setGeometry(0, 0, 120, 80);
    }

protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* mime = new QMimeData;
        mime->setUrls({QUrl::fromLocalFile(m_file)});
        auto* drag = new QDrag(this);
        drag->setMimeData(mime);
        drag->exec(Qt::CopyAction);
    }

private:
    QString m_file;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Source source(QApplication::arguments().value(1));
    source.show();
    return QApplication::exec();
}
