#pragma once

#include <QDialog>
#include <QIcon>

namespace kesu::toolvok {

// The about box of a tool: its icon, name, version and a short description.
class AboutDialog : public QDialog
{
    Q_OBJECT
public:
    AboutDialog(const QString& name, const QString& title, const QIcon& icon, QWidget* parent = nullptr);
};

} // namespace kesu::toolvok
