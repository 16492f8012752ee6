// What protects the user's work from the world outside the program: the
// recovery copy and its offer after a crash, the watch on the document's file,
// and the question before a save replaces a file another program changed.
#include "vokgui.h"

#include "documentfilewatch.h"
#include "patterndlg.h"
#include "recoverycopy.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QApplication>
#include <QFileInfo>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryFile>
#include <QUndoStack>

namespace kesu::toolvok {

void VokGUI::setUpRecovery()
{
    m_recovery = new RecoveryCopy(
        [this] {
            QString title = m_title;
            if (title.endsWith(QLatin1Char('*')))   // the modified mark
                title.chop(1);
            return RecoveryCopy::Document{m_fullFileName, title, m_diskTime, formatWaveform(*m_data)};
        },
        this);
    m_fileWatch = new DocumentFileWatch(this);
    // An inactive window checks when it is activated next.
    connect(m_fileWatch, &DocumentFileWatch::changed, this, [this] {
        if (isActiveWindow() && !m_checkingChange && !QApplication::activeModalWidget())
            onActivated();
    });
}

void VokGUI::watchDocumentFile()
{
    m_diskTime = m_fullFileName.isEmpty() ? QDateTime() : QFileInfo(m_fullFileName).lastModified();
    m_fileWatch->watch(m_fullFileName);
}

bool VokGUI::changedOnDisk(const QString& path) const
{
    const QFileInfo info(path);
    // A time that cannot be read (a folder we may not look into) tells nothing.
    const QDateTime now = info.lastModified();
    return path == m_fullFileName && m_diskTime.isValid() && now.isValid() && now != m_diskTime;
}

bool VokGUI::overwriteAllowed(const QString& path)
{
    if (!changedOnDisk(path))
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Waveform Editor"),
                    tr("The file \"%1\" was changed by another program since it was opened here. "
                       "Replace it with this document?").arg(path),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

void VokGUI::offerRecovery()
{
    const QList<RecoveryCopy::Copy> copies = RecoveryCopy::leftovers();
    if (copies.isEmpty())
        return;
    // The newest first; any others are offered at the next starts.
    const RecoveryCopy::Copy& copy = copies.first();
    QMessageBox box(QMessageBox::Question, tr("Waveform Editor"),
                    tr("The document \"%1\" had changes that were not saved when the program ended. "
                       "A recovery copy of it was kept at %2.")
                        .arg(copy.document.path.isEmpty() ? copy.document.title : copy.document.path,
                             copy.written.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.button(QMessageBox::Yes)->setText(tr("Restore"));
    box.button(QMessageBox::No)->setText(tr("Discard"));
    box.setDefaultButton(QMessageBox::Yes);
    const bool restore = box.exec() == QMessageBox::Yes;
    if (restore && !restoreRecovered(copy.document))
        return;   // kept for another try
    RecoveryCopy::remove(copy);
}

bool VokGUI::restoreRecovered(const RecoveryCopy::Document& document)
{
    QTemporaryFile file;
    if (!file.open() || file.write(document.text) != document.text.size() || !file.seek(0))
        return false;
    ClearAll();
    m_sel.segments.clear();
    loadData(file);
    setActiveWave(nullptr);
    hideMarker();
    m_undoStack->clear();
    m_fullFileName = document.path;
    if (!m_fullFileName.isEmpty()) {
        m_title = QFileInfo(m_fullFileName).fileName();
        m_fullTitle = m_toolTitle + QStringLiteral(" - ") + m_fullFileName;
        m_lastFile = m_fullFileName;
        watchDocumentFile();
        m_lastModified = m_diskTime;
        // A file changed since the copy's document was read is not replaced unasked.
        m_diskTime = document.fileTime;
        restartAutoSave();
    }
    changeReadonlyMode(false);
    m_patternDlg->LoadData();
    SetDirtyBit();
    m_recovery->writeNow();
    return true;
}

} // namespace kesu::toolvok
