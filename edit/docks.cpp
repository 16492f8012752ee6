// What the three property docks share: their set-up and their F1 help.
#include "dockhelp.h"

#include "basehelp.h"

#include <QDockWidget>
#include <QKeyEvent>
#include <QWidget>

namespace kesu::toolvok::DockHelp {

void setUp(QDockWidget* dock, const QString& objectName, QWidget* contents)
{
    dock->setObjectName(objectName);
    dock->setAllowedAreas(Qt::AllDockWidgetAreas);
    dock->setWidget(contents);
}

void watch(QObject* filter, QWidget* root)
{
    root->installEventFilter(filter);
    for (QWidget* child : root->findChildren<QWidget*>())
        child->installEventFilter(filter);
}

bool helpOnKeyRelease(QEvent* event, const QString& topic)
{
    if (event->type() != QEvent::KeyRelease)
        return false;
    if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1)
        BaseHelp::openViewHelpUrl(topic);
    return true;
}

} // namespace kesu::toolvok::DockHelp
