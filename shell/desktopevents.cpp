#include "desktopevents.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QTimer>
#include <QWidget>

namespace kesu::toolvok {

DesktopEvents::DesktopEvents(QWidget* window, std::function<void(const QString&)> open,
                             std::function<void()> paletteChanged)
    : QObject(window), window_(window), open_(std::move(open)), paletteChanged_(std::move(paletteChanged))
{
    window->setAcceptDrops(true);
    window->installEventFilter(this);
    // The application hears of a new palette first, hidden windows or not.
    QCoreApplication::instance()->installEventFilter(this);
}

QString DesktopEvents::documentIn(const QMimeData* data)
{
    if (!data || !data->hasUrls())
        return QString();
    for (const QUrl& url : data->urls()) {
        const QFileInfo file(url.toLocalFile());
        if (url.isLocalFile() && file.isFile() && file.suffix().compare(QLatin1String("wdl"), Qt::CaseInsensitive) == 0)
            return file.absoluteFilePath();
    }
    return QString();
}

bool DesktopEvents::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == QCoreApplication::instance()) {
        if (event->type() == QEvent::ApplicationPaletteChange)
            paletteChanged_();
        return false;
    }
    if (watched != window_)
        return false;
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto* drag = static_cast<QDropEvent*>(event);
        if (documentIn(drag->mimeData()).isEmpty())
            return false;
        drag->setDropAction(Qt::CopyAction);
        drag->accept();
        return true;
    }
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        const QString path = documentIn(drop->mimeData());
        if (path.isEmpty())
            return false;
        drop->setDropAction(Qt::CopyAction);
        drop->accept();
        // The drag source waits for the drop to finish: the question about
        // unsaved changes comes once it has.
        QTimer::singleShot(0, window_, [open = open_, path] { open(path); });
        return true;
    }
    default:
        return false;
    }
}

} // namespace kesu::toolvok
