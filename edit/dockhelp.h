#pragma once

#include <QString>

class QDockWidget;
class QEvent;
class QObject;
class QWidget;

namespace kesu::toolvok::DockHelp {

// Gives the dock its name for the layout store and its contents, whose
// layout keeps them from being squeezed below what their widgets need.
void setUp(QDockWidget* dock, const QString& objectName, QWidget* contents);

// Installs `filter` on `root` and every widget inside it, so that F1 on any
// of them reaches the dock's help.
void watch(QObject* filter, QWidget* root);

// On a key release: opens the view help page `topic` for F1 and swallows the
// release. Returns whether the event was a key release.
bool helpOnKeyRelease(QEvent* event, const QString& topic);

} // namespace kesu::toolvok::DockHelp
