#pragma once

#include <QDockWidget>

namespace kesu::toolvok {

class VokGUI;

// The "Pattern View" dock: the document's named patterns, for insertion.
class PatternDlg : public QDockWidget
{
    Q_OBJECT
public:
    PatternDlg(VokGUI* owner, QWidget* parent);

    void LoadData();
    void updateButton();

private:
    VokGUI* owner_;
};

} // namespace kesu::toolvok
