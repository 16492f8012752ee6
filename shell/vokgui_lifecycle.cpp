// New, open, save, save as, close, auto-save and reload of the document.
#include "vokgui.h"

#include "documentfile.h"
#include "patterndlg.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QScrollBar>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>

namespace kesu::toolvok {

namespace {
const char* const cannotOpen = "Cannot open waveform file ";
const char* const saveChanges = "Do you want to save your changes?";

QString askFileName(QWidget* parent, bool save, const QString& title, const QString& start, const QString& filter)
{
    // Qt's own dialog: the same on every desktop, and one that tests can answer.
    const QFileDialog::Options options = QFileDialog::DontUseNativeDialog;
    return save ? QFileDialog::getSaveFileName(parent, title, start, filter, nullptr, options)
                : QFileDialog::getOpenFileName(parent, title, start, filter, nullptr, options);
}
} // namespace

void VokGUI::restartAutoSave()
{
    static const int intervals[] = {60000, 300000, 600000};
    if (m_autoSave >= 0 && m_autoSave <= 2)
        m_autoSaveTimer->start(intervals[m_autoSave]);
    else
        m_autoSaveTimer->stop();
}

QString VokGUI::dialogFolder() const
{
    const QFileInfo last(m_lastFile);
    return !m_lastFile.isEmpty() && last.exists() ? last.absolutePath() : QStringLiteral(".");
}

void VokGUI::ClearAll()
{
    // Nothing may keep pointing into the waves about to go, and no step of
    // the old document may be undone into the next one.
    m_waveView->cancelEdgeDrag();
    setActiveWave(nullptr);
    forgetSegments([](const Pattern*) { return true; });
    dropClipboard();
    m_undoStack->clear();
    m_data->ClearAll();
    m_waveList->clearWaves();
    setActiveWave(nullptr);
    hideMarker();
    m_waveView->update();
}

void VokGUI::NewFile()
{
    ClearAll();
    m_sel.segments.clear();
    m_modified = false;
    setActiveWave(nullptr);
    hideMarker();
    m_autoSaveTimer->stop();
    changeReadonlyMode(false);
    m_patternDlg->LoadData();
    m_waveHBar->setMaximum(100);
}

bool VokGUI::LoadFile()
{
    ClearAll();
    m_sel.segments.clear();
    QFile file(m_fullFileName);
    if (!file.open(QIODevice::ReadOnly)) {
        showerrormsg(tr(cannotOpen) + m_fullFileName, this);
        return false;
    }
    m_lastFile = m_fullFileName;
    noteRecentFile(m_fullFileName);
    loadData(file);
    file.close();

    setActiveWave(nullptr);
    hideMarker();
    ResetDirtyBit();
    m_undoStack->clear();
    m_lastModified = QFileInfo(m_fullFileName).lastModified();
    watchDocumentFile();
    restartAutoSave();
    changeReadonlyMode(!QFileInfo(m_fullFileName).isWritable() || keepsUnreadFile());
    m_patternDlg->LoadData();
    return true;
}

bool VokGUI::SaveFile()
{
    QString path = m_fullFileName;
    if (path.isEmpty()) {
        const QString name = askFileName(this, true, tr("Save Waveform File"), dialogFolder(),
                                         tr("Waveform File (*.wdl);;All Files (*)"));
        if (name.isEmpty())
            return false;
        path = QFileInfo(name).absoluteFilePath();
    }
    if (!mayOverwrite(path) || !overwriteAllowed(path))
        return false;
    // A failed save leaves the previous version intact, and the document
    // modified.
    if (!saveWaveformFile(*m_data, path)) {
        showerrormsg(tr(cannotOpen) + path, this);
        return false;
    }
    // An untitled document takes its name only once it is on disk.
    m_fullFileName = path;
    ResetDirtyBit();
    restartAutoSave();
    m_lastModified = QFileInfo(m_fullFileName).lastModified();
    watchDocumentFile();
    Q_EMIT sigFileSaved(m_fullFileName);
    return true;
}

bool VokGUI::fileSaveAs()
{
    QString start = m_fullFileName;
    if (start.isEmpty())
        start = dialogFolder();
    // "WAveform": the filter has always been spelled so.
    const QString name = askFileName(this, true, tr("Save Waveform File"), start,
                                     tr("WAveform File (*.wdl);;All Files (*)"));
    if (name.isEmpty())
        return false;
    const QString oldFileName = m_fullFileName;
    const QString oldTitle = m_title;
    const QString oldFullTitle = m_fullTitle;
    m_fullFileName = QFileInfo(name).absoluteFilePath();
    m_title = QFileInfo(m_fullFileName).fileName();
    m_fullTitle = m_toolTitle + QStringLiteral(" - ") + m_fullFileName;
    setWindowTitle(m_fullTitle);
    Q_EMIT sigTitleChange(this);
    if (SaveFile())
        return true;
    // Nothing was written under the new name: keep naming the file that
    // exists, or the next activation would report it deleted.
    m_fullFileName = oldFileName;
    m_title = oldTitle;
    m_fullTitle = oldFullTitle;
    titleChange();
    return false;
}

bool VokGUI::onSave()
{
    return m_fullFileName.isEmpty() ? fileSaveAs() : SaveFile();
}

bool VokGUI::maybeSave()
{
    if (!m_fullFileName.isEmpty() && !m_modified)
        return true;
    const QMessageBox::StandardButton answer = showconfirmmsg(tr(saveChanges), this);
    if (answer == QMessageBox::Cancel)
        return false;
    if (answer == QMessageBox::Yes && !onSave())
        return false;
    m_modified = false;
    return true;
}

bool VokGUI::askToSave()
{
    if (!m_fullFileName.isEmpty() && !m_modified)
        return true;
    if (showconfirmmsg(tr(saveChanges), this) == QMessageBox::Yes)
        return onSave();
    return false;
}

void VokGUI::fileNew()
{
    if (!isStandalone()) {
        Q_EMIT sigToProbe(toolName(), this, QStringList(), -1);
        return;
    }
    // Whatever the answer, Cancel too, the document is closed.
    askToSave();
    CloseFile();
    m_title = QStringLiteral("Untitled %1").arg(m_untitleNum);
    m_fullTitle = m_toolTitle + QStringLiteral(" - ") + m_title;
    m_fullFileName.clear();
    ++m_untitleNum;
    NewFile();
    setWindowTitle(m_fullTitle);
}

void VokGUI::fileOpen()
{
    const QString name = askFileName(this, false, tr("Open Existing Waveform File"), dialogFolder(),
                                     tr("Waveform File (*.wdl);;All Files (*)"));
    if (name.isEmpty())
        return;
    openFile(name);
}

void VokGUI::openFile(const QString& name)
{
    if (!isStandalone()) {
        Q_EMIT sigToProbe(toolName(), this, QStringList{name}, -1);
        return;
    }
    askToSave();
    // Read before closing: a load cancelled from its progress dialog leaves
    // the open document as it was.
    if (!preload(QFileInfo(name).absoluteFilePath()))
        return;
    CloseFile();
    m_fullFileName = QFileInfo(name).absoluteFilePath();
    // Here the short name is the whole path.
    m_title = m_fullFileName;
    m_fullTitle = m_toolTitle + QStringLiteral(" - ") + m_fullFileName;
    LoadFile();
    m_preloaded.reset();
    setWindowTitle(m_fullTitle);
    onActivated();
}

void VokGUI::fileClose()
{
    if (m_modified) {
        const QMessageBox::StandardButton answer = showconfirmmsg(tr(saveChanges), this);
        if (answer == QMessageBox::Yes) {
            onSave();   // saved, and deliberately left open
            return;
        }
        if (answer == QMessageBox::Cancel)
            return;
    }
    CloseFile();
}

void VokGUI::CloseFile()
{
    m_fullFileName.clear();
    m_autoSaveTimer->stop();   // an untitled document has nowhere to be saved to
    watchDocumentFile();
    ClearAll();
    ResetDirtyBit();           // the mark and the save command go with the changes
}

void VokGUI::Reload()
{
    ClearAll();
    m_modified = false;
    LoadFile();
}

void VokGUI::onAutoSave()
{
    // Read-only, the user cannot save either; a failing save every interval
    // would only stack up error boxes.
    // Nor does it replace a file another program changed: that takes the
    // user's answer, at the next save.
    if (m_readOnly || changedOnDisk(m_fullFileName))
        return;
    statusBar()->showMessage(tr("Auto saving..."), 5000);
    SaveFile();
}

void VokGUI::SetDirtyBit()
{
    m_modified = true;
    m_recovery->changed();
    titleChange();
    Q_EMIT fileChanged(m_modified && !m_readOnly);
}

void VokGUI::ResetDirtyBit()
{
    m_modified = false;
    m_recovery->discard();
    titleChange();
    Q_EMIT fileChanged(false);
}

bool VokGUI::CompareData() const
{
    return !m_modified;
}

void VokGUI::titleChange()
{
    const QLatin1Char mark('*');
    if (m_modified) {
        if (!m_title.endsWith(mark))
            m_title.append(mark);
        if (!m_fullTitle.endsWith(mark))
            m_fullTitle.append(mark);
    } else {
        if (m_title.endsWith(mark))
            m_title.chop(1);
        if (m_fullTitle.endsWith(mark))
            m_fullTitle.chop(1);
    }
    setWindowTitle(m_fullTitle);
    Q_EMIT sigTitleChange(this);
}

void VokGUI::askKeepDeletedFile(const QString& path)
{
    if (m_askingDeleted)
        return;
    m_askingDeleted = true;   // asked once in the life of the tool
    QMessageBox box(QMessageBox::Question, tr("Close non-existing file"),
                    tr("The file \"%1\" doesn't exist any more. Close it?").arg(path),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setDefaultButton(QMessageBox::No);
    if (box.exec() == QMessageBox::Yes)
        onClose(true);
}

void VokGUI::onActivated()
{
    if (!m_fullFileName.isEmpty() && !m_checkingChange) {
        const QFileInfo info(m_fullFileName);
        if (!info.exists()) {
            askKeepDeletedFile(m_fullFileName);
            return;
        }
        m_checkingChange = true;
        const QDateTime now = info.lastModified();
        if (now.isValid() && m_lastModified.isValid() && now != m_lastModified) {
            m_lastModified = now;
            if (showconfirmmsg(tr("The file was modified by another program. Do you want to reload it?"), this)
                == QMessageBox::Yes)
                Reload();
            else
                SetDirtyBit();
        }
        m_lastModified = now;
        m_checkingChange = false;
        m_readOnly = !info.isWritable() || keepsUnreadFile();
    }
    changeReadonlyMode(m_readOnly);
    Refresh();
}

} // namespace kesu::toolvok
