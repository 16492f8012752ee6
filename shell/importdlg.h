#pragma once

#include <QDialog>
#include <QList>

class QCheckBox;
class QDialogButtonBox;
class QListView;
class QPushButton;

namespace kesu::toolvok {

class VokGUI;
class WaveData;
class WaveListModel;

// "Import Wave": reads a design's node list, lets the user pick nodes by
// kind and adds them to the document as one undoable step.
class ImportDlg : public QDialog
{
    Q_OBJECT
public:
    ImportDlg(QString startPath, QWidget* parent);
    ~ImportDlg() override;

    // The last node list read, or the path the dialog was opened with.
    QString startPath() const { return m_startPath; }
    const QList<WaveData*>& importedWaves() const { return m_imported; }
    // Reads the node list at path in place of the current one; false, after
    // telling the user why, when it cannot be read.
    bool loadNodeList(const QString& path);

    QListView* importedList() const { return m_left; }
    QListView* selectedList() const { return m_right; }
    WaveListModel* importedModel() const { return m_leftModel; }
    WaveListModel* selectedModel() const { return m_rightModel; }
    QCheckBox* filterBox(int polarity) const { return m_filterBoxes.at(polarity); }
    QPushButton* addButton() const { return m_add; }
    QPushButton* addAllButton() const { return m_addAll; }
    QPushButton* delButton() const { return m_del; }
    QPushButton* delAllButton() const { return m_delAll; }
    QPushButton* browseButton() const { return m_browse; }
    QDialogButtonBox* buttonBox() const { return m_buttons; }

public Q_SLOTS:
    void onBrowse();
    void reloadWaves();
    void onChangeFilter();
    void onAdd();
    void onAddAll();
    void onDel();
    void onDelAll();
    void onChangeSelection();
    void onOK();
    void onCancel();
    void onHelp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QListView* makeList(WaveListModel* model);
    QWidget* makeFilterGroup();
    QWidget* makeArrowButtons();
    void choose(const QList<int>& leftRows);

    VokGUI* m_gui;
    QString m_startPath;
    QList<WaveData*> m_imported;
    QList<bool> m_filters;
    QList<QCheckBox*> m_filterBoxes;
    WaveListModel* m_leftModel;
    WaveListModel* m_rightModel;
    QListView* m_left;
    QListView* m_right;
    QPushButton* m_add;
    QPushButton* m_addAll;
    QPushButton* m_del;
    QPushButton* m_delAll;
    QPushButton* m_browse;
    QDialogButtonBox* m_buttons;
};

} // namespace kesu::toolvok
