// The document's file text and the text of times and bus values; the work is
// done by the model's widget-free functions, which the command line shares.
#include "vokgui.h"

#include "rulerview.h"
#include "timetext.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"
#include "wavewriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kesu::toolvok {

bool VokGUI::loadData(QFile& file)
{
    if (m_preloaded && m_preloadedPath == file.fileName()) {
        // The document was read already (Open, with progress): it moves in.
        m_data->takeFrom(std::move(*m_preloaded));
        m_preloaded.reset();
    } else {
        m_data->loadData(file);
    }
    showDocument();
    const LoadError& problem = m_data->loadError;
    m_unreadFile = problem.isSet() ? QFileInfo(file).absoluteFilePath() : QString();
    if (problem.isSet())
        showerrormsg(tr("The file %1 could not be read completely (line %2: %3).\n\n"
                        "It is open read-only and will not be saved over; use Save As to keep what was read.")
                         .arg(QDir::toNativeSeparators(m_unreadFile))
                         .arg(problem.line)
                         .arg(problem.reason),
                     this);
    return file.error() == QFileDevice::NoError && !problem.isSet();
}

bool VokGUI::mayOverwrite(const QString& path)
{
    if (m_unreadFile.isEmpty() || QFileInfo(path).absoluteFilePath() != m_unreadFile)
        return true;
    showerrormsg(tr("The file %1 was not read completely and is not saved over; choose another name.")
                     .arg(QDir::toNativeSeparators(path)),
                 this);
    return false;
}

void VokGUI::showDocument()
{
    // A document shown anew has no file it could not read in whole.
    m_unreadFile.clear();
    m_viewEndTime = m_data->endTime;
    // Either 1 or 2000, whatever it was before: the fit below sets the real step.
    m_viewport.step = 2000;
    for (WaveData* wave : std::as_const(m_data->waves))
        m_waveList->addWave(wave);
    m_print.printStart = 0;
    m_print.printEnd = getMaxEnd();
    setBar();
    m_ruler->update();
    m_waveView->update();
    viewZoomfit();
}

bool VokGUI::saveData(QIODevice& file)
{
    return writeWaveform(*m_data, file);
}

QString VokGUI::getTimeString(quint64 t, bool withUnit) const
{
    return TimeText::timeString(t, withUnit, m_data->smallestUnit, m_data->decimals);
}

quint64 VokGUI::convertTime(bool& ok, const QString& text) const
{
    return TimeText::parseTime(ok, text, m_data->smallestUnit, m_data->decimals);
}

QString VokGUI::getBusValueString(const std::string& value, int width) const
{
    return TimeText::busValueString(value, width, m_busRadix);
}

RowStyle VokGUI::rowStyle(const QFont& base) const
{
    RowStyle style;
    style.signal = color_signal;
    style.bus = color_bus;
    style.dontCare = color_x;
    style.busRadix = m_busRadix;
    style.font = RowStyle::waveFont(base);
    return style;
}

quint64 VokGUI::getMaxEnd() const
{
    return TimeText::maxEnd(*m_data);
}

quint64 VokGUI::getEndTime() const
{
    return m_viewport.endTime(m_waveView->width());
}

} // namespace kesu::toolvok
