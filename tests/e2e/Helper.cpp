// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the end-to-end test needs of the screen besides a mouse and a keyboard:
//   e2e-helper drag FILE...  shows a window from which the files can be dragged; prints each answer of the place below
//   e2e-helper grab FILE     writes the whole screen into a PNG

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QUrl>
#include <QWidget>

#include <cstdio>

namespace {

class DragSource : public QWidget {
public:
    explicit DragSource(const QStringList& files)
    {
        for (const QString& file : files)
            m_urls.append(QUrl::fromLocalFile(file));
        setWindowTitle(QStringLiteral("e2e drag source"));
        setGeometry(0, 0, 80, 80);
    }

protected:
    void mouseMoveEvent(QMouseEvent*) override
    {
        auto* data = new QMimeData;
        data->setUrls(m_urls);
        auto* drag = new QDrag(this);
        drag->setMimeData(data);
        connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) { Print("offered", action); });
        Print("dropped", drag->exec(Qt::CopyAction)); // the other side fetches the data after that
    }

private:
    static void Print(const char* what, Qt::DropAction action)
    {
        std::printf("%s %s\n", what, action == Qt::CopyAction ? "copy" : "nothing");
        std::fflush(stdout);
    }

    QList<QUrl> m_urls;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    if (arguments[1] == "grab")
        return QApplication::primaryScreen()->grabWindow(0).save(arguments[2], "PNG") ? 0 : 1;
    DragSource source(arguments.mid(2));
    source.show();
    return QApplication::exec();
}
