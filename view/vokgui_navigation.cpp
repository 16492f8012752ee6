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
constexpr quint64 MaxStep = 100000;

QPalette backgroundPalette(const QColor& back)
{
    return QPalette(back);
}
} // namespace

void VokGUI::changeStep(quint64 s)
{
    m_step = s == 0 ? 1 : s;
    m_ruler->update();
    m_waveView->update();
}

void VokGUI::zoomIn()
{
    if (m_step == 1)
        return;
    const bool five = QString::number(m_step).startsWith(QLatin1Char('5'));
    const quint64 next = five ? static_cast<quint64>(m_step / 2.5) : m_step / 2;
    changeStep(qMax<quint64>(1, next));
    Refresh();
}

void VokGUI::zoomOut()
{
    if (m_step == MaxStep)
        return;
    const bool two = QString::number(m_step).startsWith(QLatin1Char('2'));
    const quint64 next = two ? static_cast<quint64>(m_step * 2.5) : m_step * 2;
    changeStep(qMin(MaxStep, next));
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
        quint64 next = m_step;
        if (m_step != 1) {
            const bool five = QString::number(m_step).startsWith(QLatin1Char('5'));
            next = qMax<quint64>(1, five ? static_cast<quint64>(m_step / 2.5) : m_step / 2);
        }
        // 32-bit arithmetic, like the other view computations.
        const qint64 offset = static_cast<qint32>(static_cast<quint32>(next) * static_cast<quint32>(viewWidth)) / 40;
        const qint64 start = static_cast<qint64>(m_waveView->cursorTime) - offset;
        m_startTime = start < 0 ? 0 : static_cast<quint64>(start);
        changeStep(next);
        Refresh();
        return;
    }
    // Unsigned like the range itself: a range given backwards asks for the
    // widest step.
    const quint64 raw = (b - a) * 20 / static_cast<quint64>(viewWidth);
    quint64 step;
    if (raw > MaxStep) {
        step = MaxStep;
    } else if (raw == 0) {
        step = 1;
    } else {
        // Rounded up past the leading digit, so the whole range fits with room.
        const QString digits = QString::number(raw);
        const int first = digits.at(0).digitValue();
        quint64 power = 1;
        for (int i = 1; i < digits.size(); ++i)
            power *= 10;
        if (first >= 5)
            step = power * 10;
        else if (first >= 2)
            step = power * 5;
        else
            step = power * 2;
    }
    m_startTime = a;
    m_step = step == 0 ? 1 : step;
    Refresh();
}

void VokGUI::viewZoomfit()
{
    zoomRange(0, getMaxEnd());
    m_mode = action(ActEditMode)->isChecked() ? ModeEdit : ModeQuery;
    setModeCursor();
    Refresh();
}

void VokGUI::viewZoomto()
{
    m_mode = ModeZoomArea;
    setModeCursor();
}

void VokGUI::onZooming(bool on)
{
    if (!on && m_mode == ModeEdit) {
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
    m_waveHBar->setMaximum(static_cast<int>(static_cast<quint32>(getMaxEnd() / m_step)) + 5);
    m_waveHBar->setValue(static_cast<int>(m_startTime / m_step));
}

void VokGUI::onScrollWave_H()
{
    m_startTime = quint64(qMax(0, m_waveHBar->value())) * m_step;
    m_waveView->update();
    m_ruler->update();
}

void VokGUI::onScrollWave_V()
{
    const int v = m_waveVBar->value();
    m_waveList->verticalScrollBar()->setValue(v);
    m_waveView->firstVisibleRow = v;
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
    m_waveView->firstVisibleRow = v;
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
    m_waveView->selectionStart = a;
    m_waveView->selectionEnd = b;
    m_waveView->update();
}

quint64 VokGUI::getRangeStart() const
{
    return static_cast<quint64>(m_waveView->selectionStart);
}

quint64 VokGUI::getRangeEnd() const
{
    return static_cast<quint64>(m_waveView->selectionEnd);
}

void VokGUI::setRulerStartX(int x)
{
    m_ruler->originX = x;
    Refresh();
}

void VokGUI::placeMarker()
{
    m_waveView->markerTime = m_waveView->cursorTime;
    m_waveView->update();
    Q_EMIT markChanged(true);
}

void VokGUI::hideMarker()
{
    if (m_waveView->markerTime != NoTime) {
        m_waveView->markerTime = NoTime;
        m_waveView->update();
    }
    Q_EMIT markChanged(false);
}

bool VokGUI::isMarked() const
{
    return m_waveView->markerTime != NoTime;
}

void VokGUI::jumpTo(quint64 t)
{
    m_waveView->Jumpto(t);
    Refresh();
}

void VokGUI::JumptoNext()
{
    if (m_activeWave)
        jumpTo(m_activeWave->getNextChange(m_waveView->cursorTime));
}

void VokGUI::JumptoMarker()
{
    jumpTo(m_waveView->markerTime);
}

void VokGUI::JumptoZero()
{
    jumpTo(0);
}

void VokGUI::JumptoEnd()
{
    if (m_activeWave)
        jumpTo(m_activeWave->getEndTime());
}

void VokGUI::JumptoLeft()
{
    const quint64 c = m_waveView->cursorTime;
    jumpTo(c > m_step ? c - m_step : 0);
}

void VokGUI::JumptoRight()
{
    const quint64 c = m_waveView->cursorTime;
    jumpTo(c == NoTime ? m_step : c + m_step);
}

void VokGUI::JumptoLeft10()
{
    const quint64 c = m_waveView->cursorTime;
    jumpTo(c > 10 * m_step ? c - 10 * m_step : 0);
}

void VokGUI::JumptoRight10()
{
    const quint64 c = m_waveView->cursorTime;
    jumpTo(c == NoTime ? 10 * m_step : c + 10 * m_step);
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
