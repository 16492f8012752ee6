// Zoom, scroll, jumps and the marker: which part of the time axis and which
// rows the views show.
#include "vokgui.h"

#include "rulerview.h"
#include "voknavigator.h"
#include "wavedata.h"
#include "wavelstview.h"
#include "waveview.h"

#include <QInputDialog>
#include <QScrollBar>
#include <QSplitter>

namespace kesu::toolvok {

namespace {
QPalette backgroundPalette(const QColor& back)
{
    return QPalette(back);
}
} // namespace

void VokGUI::changeStep(quint64 s)
{
    m_viewport.setStep(s);
    m_ruler->update();
    m_waveView->update();
}

void VokGUI::zoomIn()
{
    if (m_viewport.step == 1)
        return;
    changeStep(Viewport::zoomedIn(m_viewport.step));
    Refresh();
}

void VokGUI::zoomOut()
{
    if (m_viewport.step == Viewport::MaxStep)
        return;
    changeStep(Viewport::zoomedOut(m_viewport.step));
    Refresh();
}

void VokGUI::viewZoomin()
{
    zoomIn();
}

void VokGUI::viewZoomout()
{
    zoomOut();
}

void VokGUI::zoomRange(quint64 a, quint64 b)
{
    const int viewWidth = qMax(1, m_waveView->width());
    if (a == b) {
        const quint64 next = Viewport::zoomedIn(m_viewport.step);
        // 32-bit arithmetic, like the other view computations; half the view
        // is width / 2 pixels, width / 40 steps.
        const qint64 offset = static_cast<qint32>(static_cast<quint32>(next) * static_cast<quint32>(viewWidth))
            / (2 * Viewport::PixelsPerStep);
        const qint64 start = static_cast<qint64>(m_waveView->cursorTime()) - offset;
        m_viewport.startTime = start < 0 ? 0 : static_cast<quint64>(start);
        changeStep(next);
        Refresh();
        return;
    }
    // Unsigned like the range itself: a range given backwards asks for the
    // widest step.
    m_viewport.startTime = a;
    m_viewport.setStep(Viewport::fittingStep(b - a, viewWidth));
    Refresh();
}

void VokGUI::viewZoomfit()
{
    zoomRange(0, getMaxEnd());
    m_sel.mode = action(ActEditMode)->isChecked() ? ModeEdit : ModeQuery;
    setModeCursor();
    Refresh();
}

void VokGUI::viewZoomto()
{
    m_sel.mode = ModeZoomArea;
    setModeCursor();
}

void VokGUI::onZooming(bool on)
{
    if (!on && m_sel.mode == ModeEdit) {
        m_waveView->setCursor(Qt::IBeamCursor);
        m_ruler->setCursor(Qt::IBeamCursor);
    } else {
        m_waveView->unsetCursor();
        m_ruler->unsetCursor();
    }
}

bool VokGUI::isZooming() const
{
    return m_navigator && m_navigator->isZooming();
}

void VokGUI::Refresh()
{
    m_waveView->setPalette(backgroundPalette(color_back));
    m_waveView->update();
    m_ruler->setPalette(backgroundPalette(color_back));
    m_ruler->update();
    QPalette names = m_waveList->palette();
    for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        names.setBrush(group, QPalette::Base, QBrush(color_back));
        names.setBrush(group, QPalette::Text, QBrush(color_names));
        names.setBrush(group, QPalette::Highlight, QBrush(color_h));
    }
    m_waveList->setPalette(names);
    m_waveList->viewport()->update();
    setBar();
}

void VokGUI::setBar()
{
    // The name list lays itself out while the tool window is still being built.
    if (!m_waveHBar)
        return;
    const QScrollBar* listH = m_waveList->horizontalScrollBar();
    {
        const QSignalBlocker block(m_listHBar);
        m_listHBar->setRange(listH->minimum(), listH->maximum());
        m_listHBar->setPageStep(listH->pageStep());
        m_listHBar->setValue(listH->value());
    }
    const QScrollBar* listV = m_waveList->verticalScrollBar();
    {
        const QSignalBlocker block(m_waveVBar);
        m_waveVBar->setRange(0, listV->maximum());
        m_waveVBar->setPageStep(listV->pageStep());
        m_waveVBar->setValue(listV->value());
    }
    const QSignalBlocker block(m_waveHBar);
    // The bar always reaches five steps beyond the latest end.
    m_waveHBar->setMaximum(static_cast<int>(static_cast<quint32>(getMaxEnd() / m_viewport.step)) + 5);
    m_waveHBar->setValue(static_cast<int>(m_viewport.startTime / m_viewport.step));
}

void VokGUI::onScrollWave_H()
{
    m_viewport.startTime = quint64(qMax(0, m_waveHBar->value())) * m_viewport.step;
    m_waveView->update();
    m_ruler->update();
}

void VokGUI::onScrollWave_V()
{
    const int v = m_waveVBar->value();
    m_waveList->verticalScrollBar()->setValue(v);
    m_viewport.firstRow = v;
    m_waveView->update();
}

void VokGUI::onScrollLst_H()
{
    m_waveList->horizontalScrollBar()->setValue(m_listHBar->value());
}

void VokGUI::doListHScrollChanged(int v)
{
    if (m_listHBar->value() != v)
        m_listHBar->setValue(v);
}

void VokGUI::doListVScrollChanged(int v)
{
    if (m_waveVBar->value() == v)
        return;
    m_waveVBar->setValue(v);
    m_viewport.firstRow = v;
    m_waveView->update();
}

void VokGUI::changePointX(int x)
{
    m_ruler->mouseX = x;
    m_ruler->update();
}

void VokGUI::changeRange(double a, double b)
{
    if (a == -1.0)
        Q_EMIT editdataChanged(false);
    m_sel.rangeStart = a;
    m_sel.rangeEnd = b;
    m_waveView->update();
}

quint64 VokGUI::getRangeStart() const
{
    return static_cast<quint64>(m_sel.rangeStart);
}

quint64 VokGUI::getRangeEnd() const
{
    return static_cast<quint64>(m_sel.rangeEnd);
}

void VokGUI::setRulerStartX(int x)
{
    m_ruler->originX = x;
    Refresh();
}

void VokGUI::placeMarker()
{
    m_waveView->setMarkerTime(m_waveView->cursorTime());
    Q_EMIT markChanged(true);
}

void VokGUI::hideMarker()
{
    if (isMarked())
        m_waveView->setMarkerTime(NoTime);
    Q_EMIT markChanged(false);
}

bool VokGUI::isMarked() const
{
    return m_waveView->markerTime() != NoTime;
}

void VokGUI::jumpTo(quint64 t)
{
    m_waveView->Jumpto(t);
    Refresh();
}

void VokGUI::JumptoNext()
{
    if (WaveData* wave = activeWave())
        jumpTo(wave->getNextChange(m_waveView->cursorTime()));
}

void VokGUI::JumptoMarker()
{
    jumpTo(m_waveView->markerTime());
}

void VokGUI::JumptoZero()
{
    jumpTo(0);
}

void VokGUI::JumptoEnd()
{
    if (WaveData* wave = activeWave())
        jumpTo(wave->getEndTime());
}

void VokGUI::JumptoLeft()
{
    const quint64 c = m_waveView->cursorTime();
    const quint64 step = m_viewport.step;
    jumpTo(c > step ? c - step : 0);
}

void VokGUI::JumptoRight()
{
    const quint64 c = m_waveView->cursorTime();
    const quint64 step = m_viewport.step;
    jumpTo(c == NoTime ? step : c + step);
}

void VokGUI::JumptoLeft10()
{
    const quint64 c = m_waveView->cursorTime();
    const quint64 ten = 10 * m_viewport.step;
    jumpTo(c > ten ? c - ten : 0);
}

void VokGUI::JumptoRight10()
{
    const quint64 c = m_waveView->cursorTime();
    const quint64 ten = 10 * m_viewport.step;
    jumpTo(c == NoTime ? ten : c + ten);
}

void VokGUI::JumptoTime()
{
    bool accepted = false;
    const QString text = QInputDialog::getText(this, tr("Jump to Time"), tr("Time:"), QLineEdit::Normal,
                                               QString(), &accepted);
    if (!accepted || text.isEmpty())
        return;
    bool ok = false;
    const quint64 t = convertTime(ok, text);
    if (!ok) {
        showerrormsg(tr("Invalid time."), this);
        return;
    }
    jumpTo(t);
}

void VokGUI::onChangeSplitter()
{
    const QList<int> sizes = m_splitter->sizes();
    const int listWidth = sizes.isEmpty() ? 0 : sizes.first();
    setRulerStartX(listWidth);
    m_listHBar->setFixedWidth(qMax(0, listWidth));
}

} // namespace kesu::toolvok
