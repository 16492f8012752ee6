// The editing state: active wave, modes, read-only mode, undo and redo, and
// the availability signals that enable the actions.
#include "vokgui.h"

#include "editdlg.h"
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
    m_activeWave = wave;
    Q_EMIT activeWaveChanged(wave != nullptr);
    Q_EMIT busWaveSelected(wave && wave->isBus);
}

void VokGUI::setModeCursor()
{
    if (m_mode < 0 || m_mode > 4)
        return;
    if (m_mode == ModeEdit && !isZooming()) {
        m_waveView->setCursor(Qt::IBeamCursor);
        m_ruler->setCursor(Qt::IBeamCursor);
    } else if (m_mode == ModeQuery) {
        m_waveView->unsetCursor();
        m_ruler->unsetCursor();
    }
}

void VokGUI::onChangeMode(bool edit)
{
    m_mode = edit ? ModeEdit : ModeQuery;
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
    m_selection.clear();
    m_editDlg->LoadData(nullptr, m_selection);
    if (m_mode == ModeQuery)
        Refresh();
    setModeCursor();
}

void VokGUI::LoadEditData()
{
    if (m_mode == ModeEdit)
        m_editDlg->LoadData(m_activeWave, m_selection);
    if (m_patternDlg)
        m_patternDlg->updateButton();
}

void VokGUI::DisplayData()
{
    m_waveDataDlg->LoadData(m_activeWave);
    if (m_patternViewShown)
        m_patternDlg->updateButton();
}

void VokGUI::selectWave(int y)
{
    const int row = y / WaveView::RowHeight + m_waveView->firstVisibleRow;
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
    Q_EMIT editdataChanged(!m_selection.isEmpty());
    const bool paste = !m_clipboard.isEmpty() && !m_selection.isEmpty() && m_selection.first()->wave
        && m_clipboard.first()->wave && m_selection.first()->wave->busWidth == m_clipboard.first()->wave->busWidth;
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
    } else if (m_mode == ModeEdit) {
        onEditDataChanged();
    } else {
        Q_EMIT editdataChanged(false);
        Q_EMIT pastedataChanged(false);
    }
    Q_EMIT alwaysAvailable(true);
    Q_EMIT sigZoomAreaChecked(isZooming());
    setWindowTitle(m_fullTitle);
    m_waveDataDlg->LoadData(m_activeWave);
    m_editDlg->LoadData(m_activeWave, m_selection);
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
    m_selection.clear();
    if (m_activeWave)
        m_activeWave->selected = false;
    m_waveView->pendingPatterns.clear();
    changeRange(-1, -1);
    m_editDlg->LoadData(nullptr, m_selection);
    onEditDataChanged();
}

void VokGUI::redo()
{
    finishMouseEdit();
    m_undoStack->redo();
    m_selection.clear();
    if (m_activeWave)
        m_activeWave->selected = false;
    m_waveView->pendingPatterns.clear();
    m_editDlg->LoadData(nullptr, m_selection);
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

// The dialogs that these open arrive with their own features.
void VokGUI::newWave() {}
void VokGUI::importWave() {}
void VokGUI::showWave() {}
void VokGUI::removeWave() {}
void VokGUI::editTimeUnit() {}
void VokGUI::filePageSetup() {}
void VokGUI::filePrintPreview() {}
void VokGUI::filePrint() {}

} // namespace kesu::toolvok
