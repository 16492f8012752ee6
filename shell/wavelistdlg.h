#pragma once

#include <QDialog>
#include <QList>

class QCheckBox;
class QDialogButtonBox;
class QListView;
class QPushButton;

namespace kesu::toolvok {

class VokGUI;
class WaveListModel;

// "Show Waves" lists the hidden waves and shows the chosen ones again;
// "Remove Waves" lists every wave and removes the chosen ones. Each press of
// the action button is one undoable step; the dialog stays open until Cancel.
class WaveListDlg : public QDialog
{
    Q_OBJECT
public:
    WaveListDlg(bool showMode, QWidget* parent);

    QListView* waveList() const { return m_list; }
    WaveListModel* model() const { return m_model; }
    QPushButton* actionButton() const { return m_action; }
    QCheckBox* filterBox(int polarity) const { return m_filterBoxes.at(polarity); }
    QDialogButtonBox* buttonBox() const { return m_buttons; }

public Q_SLOTS:
    void reloadWaves();
    void onChangeFilter();
    void onChangeSelection();
    void onShowRemove();
    void onCancel();
    void onHelp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeFilterGroup();

    bool m_showMode;
    VokGUI* m_gui;
    WaveListModel* m_model;
    QListView* m_list;
    QPushButton* m_action;
    QDialogButtonBox* m_buttons;
    QList<QCheckBox*> m_filterBoxes;
    QList<bool> m_filters;
};

} // namespace kesu::toolvok
