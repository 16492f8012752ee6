// The editing state: active wave, modes, read-only mode, undo and redo, and
// the availability signals that enable the actions.
#include "vokgui.h"

#include "editdlg.h"
#include "importdlg.h"
#include "newwavedlg.h"
#include "settimedlg.h"
#include "wavelistdlg.h"
#include "patterndlg.h"
#include "rulerview.h"
#include "wavedata.h"
#include "wavedatadlg.h"
#include "waveview.h"
#include "basehelp.h"
#include "wavelstview.h"

#include <QAction>
#include <QKeyEvent>
#include <QUndoStack>

namespace kesu::toolvok {

void VokGUI::setActiveWave(WaveData* wave)
{
    m_sel.activeWave = wave;
    Q_EMIT activeWaveChanged(wave != nullptr);
    Q_EMIT busWaveSelected(wave && wave->isBus);
}

void VokGUI::setModeCursor()
{
    if (m_sel.mode == ModeEdit && !isZooming()) {
        m_waveView->setCursor(Qt::IBeamCursor);
        m_ruler->setCursor(Qt::IBeamCursor);
    } else if (m_sel.mode == ModeQuery) {
        m_waveView->unsetCursor();
        m_ruler->unsetCursor();
    }
}

void VokGUI::onChangeMode(bool edit)
{
    m_sel.mode = edit ? ModeEdit : ModeQuery;
    ChangeMode();
    if (edit) {
        Q_EMIT viewmodeChanged(true);
        onEditDataChanged();
    } else {
        Q_EMIT editdataChanged(false);
        Q_EMIT pastedataChanged(false);
        Q_EMIT viewmodeChanged(false);
    }
}

void VokGUI::ChangeMode()
{
    // Entering or leaving edit mode drops the selection.
    m_sel.segments.clear();
    m_editDlg->LoadData(nullptr, m_sel.segments);
    if (m_sel.mode == ModeQuery)
        Refresh();
    setModeCursor();
}

void VokGUI::LoadEditData()
{
    if (m_sel.mode == ModeEdit)
        m_editDlg->LoadData(m_sel.activeWave, m_sel.segments);
    if (m_patternDlg)
        m_patternDlg->updateButton();
}

void VokGUI::DisplayData()
{
    m_waveDataDlg->LoadData(m_sel.activeWave);
    if (m_patternViewShown)
        m_patternDlg->updateButton();
}

void VokGUI::selectWave(int y)
{
    const int row = m_viewport.rowAt(y);
    const QModelIndex index = m_waveList->itemModel()->index(row, 0);
    if (index.isValid() && !m_waveList->selectionModel()->isSelected(index))
        m_waveList->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
}

void VokGUI::onEditDataChanged()
{
    if (m_readOnly) {
        Q_EMIT editdataChanged(false);
        Q_EMIT pastedataChanged(false);
        return;
    }
    const QList<Pattern*>& selected = m_sel.segments;
    const QList<Pattern*>& clipboard = m_sel.clipboard;
    Q_EMIT editdataChanged(!selected.isEmpty());
    const bool paste = !clipboard.isEmpty() && !selected.isEmpty() && selected.first()->wave
        && clipboard.first()->wave && selected.first()->wave->busWidth == clipboard.first()->wave->busWidth;
    Q_EMIT pastedataChanged(paste);
}

void VokGUI::changeReadonlyMode(bool readOnly)
{
    m_readOnly = readOnly;
    Q_EMIT undoAvailable(!readOnly && m_undoStack->canUndo());
    Q_EMIT redoAvailable(!readOnly && m_undoStack->canRedo());
    Q_EMIT fileChanged(!readOnly && m_modified);
    Q_EMIT viewmodeChanged(!readOnly);
    Q_EMIT editAvailable(!readOnly);
    if (readOnly) {
        action(ActEditMode)->setChecked(false);
    } else if (m_sel.mode == ModeEdit) {
        onEditDataChanged();
    } else {
        Q_EMIT editdataChanged(false);
        Q_EMIT pastedataChanged(false);
    }
    Q_EMIT alwaysAvailable(true);
    Q_EMIT sigZoomAreaChecked(isZooming());
    setWindowTitle(m_fullTitle);
    m_waveDataDlg->LoadData(m_sel.activeWave);
    m_editDlg->LoadData(m_sel.activeWave, m_sel.segments);
    m_patternDlg->updateButton();
}

void VokGUI::onUndoChanged(bool can)
{
    Q_EMIT undoAvailable(can && !m_readOnly);
}

void VokGUI::onRedoChanged(bool can)
{
    Q_EMIT redoAvailable(can && !m_readOnly);
}

void VokGUI::undo()
{
    finishMouseEdit();
    m_undoStack->undo();
    // Undo rewrites segments in place: a kept selection would name pulses
    // that are no longer the ones the user picked.
    m_sel.segments.clear();
    if (m_sel.activeWave)
        m_sel.activeWave->selected = false;
    changeRange(-1, -1);
    m_editDlg->LoadData(nullptr, m_sel.segments);
    onEditDataChanged();
}

void VokGUI::redo()
{
    finishMouseEdit();
    m_undoStack->redo();
    m_sel.segments.clear();
    if (m_sel.activeWave)
        m_sel.activeWave->selected = false;
    m_editDlg->LoadData(nullptr, m_sel.segments);
    m_waveView->update();
    onEditDataChanged();
}

bool VokGUI::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyRelease: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete) {
            clearData();
            return true;
        }
        if (key == Qt::Key_F1) {
            if (watched == m_waveView || watched == m_ruler || watched == m_waveList)
                BaseHelp::openViewHelpUrl(QStringLiteral("wave_display"));
            else if (watched == this)
                BaseHelp::openHelpUrl(toolName());
            return true;
        }
        break;
    }
    case QEvent::Resize:
        onChangeSplitter();
        break;
    default:
        break;
    }
    return BasGUITool::eventFilter(watched, event);
}

void VokGUI::newWave()
{
    NewWaveDlg(this).exec();
}

void VokGUI::importWave()
{
    // The file dialog starts at the last node list read, else at the document.
    ImportDlg dialog(m_lastImportFile.isEmpty() ? fullFileName() : m_lastImportFile, this);
    dialog.exec();
    if (dialog.startPath() != fullFileName())
        m_lastImportFile = dialog.startPath();
}

void VokGUI::showWave()
{
    WaveListDlg(true, this).exec();
}

void VokGUI::removeWave()
{
    WaveListDlg(false, this).exec();
}

void VokGUI::editTimeUnit()
{
    setTimeDlg(this).exec();
}

} // namespace kesu::toolvok
