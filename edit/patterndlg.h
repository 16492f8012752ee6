#pragma once

#include <QDockWidget>
#include <QListView>

class QItemSelection;
class QPushButton;
class QStandardItemModel;

namespace kesu::toolvok {

class VokGUI;
class WaveData;

// The pattern list; starts narrow like the other docks.
class ListView : public QListView
{
    Q_OBJECT
public:
    using QListView::QListView;
    QSize sizeHint() const override;
};

// The "Pattern View" dock: the document's named patterns, inserted in front
// of the first selected pulse of the active wave.
class PatternDlg : public QDockWidget
{
    Q_OBJECT
public:
    PatternDlg(VokGUI* owner, QWidget* parent);

    void LoadData();
    void updateButton();
    void setReadOnly();
    ListView* list() const { return list_; }
    QPushButton* insertButton() const { return insert_; }

public Q_SLOTS:
    void onInsert();
    void onChangeSelection(const QItemSelection& selected, const QItemSelection& deselected);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The named patterns picked in the list, in the order they were picked.
    QList<WaveData*> chosenPatterns() const;

    VokGUI* owner_;
    ListView* list_;
    QStandardItemModel* model_;
    QPushButton* insert_;
};

} // namespace kesu::toolvok
