// What the tool's dialogs share about their help.
#pragma once

#include <QEvent>
#include <QKeyEvent>

namespace kesu::toolvok {

// For a dialog's event filter: key releases on the watched widgets go no
// further (so no other handler answers F1 with a page of its own), and F1
// among them opens the dialog's help.
template <typename OpenHelp>
bool takeHelpKey(QEvent* event, OpenHelp openHelp)
{
    if (event->type() != QEvent::KeyRelease)
        return false;
    if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1)
        openHelp();
    return true;
}

} // namespace kesu::toolvok
