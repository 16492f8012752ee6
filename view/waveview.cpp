// Painting of the wave area: every shown wave as rows of level lines, bus
// shapes and don't-care / high-impedance boxes, with the selection, the marker
// and the cursor on top.
//
// A row can hold far more segments than pixels (a whole document at the fit
// zoom), so painting goes through a batch: lines of one solid pen are gathered
// and handed to the painter in one call, and lines whose pixels are already
// covered by a line of the same pen are merged into it. Everything else (boxes,
// text, dotted lines) is drawn at once, after the lines gathered before it, so
// the picture keeps its painting order. Each row band keeps its own batch: the
// bus row, every bit row and the selection marks never share a pixel, so their
// relative order does not matter.
#include "waveview.h"

#include "biginteger.h"
#include "vokgui.h"
#include "waveformdata.h"

#include <QPaintEvent>
#include <QPainter>
#include <QStaticText>

#include <algorithm>
#include <optional>
#include <vector>

namespace kesu::toolvok {

namespace {

// A pixel position truncated to a whole pixel. Positions far outside are held
// where an int cannot overflow; the painter clips them away all the same.
int px(float v)
{
    if (!(v > -1.0e9f))
        return -1000000000;
    if (v > 1.0e9f)
        return 1000000000;
    return static_cast<int>(v);
}

// Batch layers: the selection marks, the wave's own row, then its bit rows.
constexpr int SelectionLayer = 0;
constexpr int RowLayer = 1;
constexpr int bitLayer(int bitRow) { return 2 + bitRow; }

enum class Kind { Zero, One, DontCare, HighZ, Other };

// The reserved texts of a value, told apart without string compares: a row
// at the fit zoom asks this of thousands of patterns.
Kind kindOf(const std::string& value)
{
    if (value.size() == 1)
        return value[0] == '0' ? Kind::Zero : value[0] == '1' ? Kind::One : Kind::Other;
    if (value.size() == 2 && value[0] == '-')
        return value[1] == '1' ? Kind::DontCare : value[1] == '2' ? Kind::HighZ : Kind::Other;
    return Kind::Other;
}

bool isSpecial(Kind kind)
{
    return kind == Kind::DontCare || kind == Kind::HighZ;
}

} // namespace

class WaveView::Batch
{
public:
    // direct: draw every primitive on its own, the reference the gathered
    // picture must equal pixel for pixel.
    Batch(QPainter& painter, int& count, bool direct, const QColor& dontCare);
    ~Batch() { flushAll(); }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    void line(int layer, const QColor& color, int width, int x1, int y1, int x2, int y2);
    // A dotted or dashed line: its dash pattern starts afresh with every
    // line, so it is neither gathered nor merged.
    void styledLine(int layer, const QPen& pen, int x1, int y1, int x2, int y2);
    void rect(int layer, const QPen& pen, const QBrush& brush, const QRect& r);
    void cloneBlock(int layer, int x, int y, int width, int height);
    // Text with its baseline at y.
    void text(int layer, const QColor& color, int x, int y, const QString& text);
    // One of the letters of a don't-care or high-impedance box, or the 0 of
    // a bus before its offset: laid out once per paint, not at every box.
    enum Letter { LetterX, LetterZ, LetterZero };
    void letter(int layer, const QColor& color, int x, int y, Letter which);
    void flush(int layer);
    void flushAll();

    // Pens and brushes of the boxes, made once per paint.
    const QBrush hatch;
    const QPen dontCareDots;
    const QPen highZPen;
    const QPen highZDots;

private:
    struct Slot
    {
        int key;
        int index;
    };
    // The last few horizontal lines (by y), vertical lines (by x) and other
    // lines of the layer, the candidates a new line is merged into.
    template <int N>
    struct Recent
    {
        Slot slots[N];
        int count = 0;
        int next = 0;
        void clear() { count = next = 0; }
        void remember(int key, int index)
        {
            slots[next] = {key, index};
            next = (next + 1) % N;
            count = std::min(count + 1, N);
        }
    };
    struct Layer
    {
        QColor color;
        int width = 1;
        QPen pen;
        bool open = false;
        bool merge = false;
        std::vector<QLine> lines;
        Recent<4> rows;
        Recent<4> columns;
        Recent<8> others;
    };

    Layer& at(int layer)
    {
        if (layer >= static_cast<int>(layers_.size()))
            layers_.resize(static_cast<size_t>(layer) + 1);
        return layers_[static_cast<size_t>(layer)];
    }
    void flush(Layer& l);
    void setTextColor(const QColor& color);

    QPainter& painter_;
    int& count_;
    bool direct_;
    std::vector<Layer> layers_;
    QPen textPen_;
    QStaticText letters_[3];
    qreal ascent_ = 0;
};

WaveView::Batch::Batch(QPainter& painter, int& count, bool direct, const QColor& dontCare)
    : hatch(dontCare, Qt::BDiagPattern),
      dontCareDots(dontCare, 1, Qt::DotLine),
      highZPen(QColor(Qt::gray)),
      highZDots(QColor(Qt::gray), 1, Qt::DotLine),
      painter_(painter),
      count_(count),
      direct_(direct)
{
    const QString texts[] = {QStringLiteral("X"), QStringLiteral("Z"), QStringLiteral("0")};
    for (int i = 0; i < 3; ++i) {
        letters_[i].setText(texts[i]);
        letters_[i].setTextFormat(Qt::PlainText);
    }
}

void WaveView::Batch::line(int layer, const QColor& color, int width, int x1, int y1, int x2, int y2)
{
    if (direct_) {
        painter_.setPen(QPen(color, width));
        painter_.drawLine(x1, y1, x2, y2);
        ++count_;
        return;
    }
    Layer& l = at(layer);
    if (!l.open || l.width != width || l.color != color) {
        flush(l);
        l.open = true;
        if (l.width != width || l.color != color)
            l.pen = QPen(color, width);
        l.color = color;
        l.width = width;
        // Drawing an opaque pixel twice changes nothing; a translucent one
        // darkens, so translucent lines are gathered but never merged.
        l.merge = color.alpha() == 255 && (width == 1 || width == 2);
    }
    auto& lines = l.lines;
    const int index = static_cast<int>(lines.size());
    if (!l.merge) {
        lines.emplace_back(x1, y1, x2, y2);
        return;
    }
    // A solid line covers its pixels from end to end whichever way it runs, so
    // two overlapping lines on one pixel row or column cover what one line
    // over both covers.
    if (y1 == y2) {
        const int a = std::min(x1, x2);
        const int b = std::max(x1, x2);
        if (a == b) {
            for (int i = 0; i < l.columns.count; ++i) {
                const Slot& s = l.columns.slots[i];
                const QLine& v = lines[static_cast<size_t>(s.index)];
                if (s.key == a && y1 >= v.y1() && y1 <= v.y2())
                    return;
            }
        }
        for (int i = 0; i < l.rows.count; ++i) {
            const Slot& s = l.rows.slots[i];
            QLine& h = lines[static_cast<size_t>(s.index)];
            if (s.key == y1 && a <= h.x2() && b >= h.x1()) {
                h.setLine(std::min(a, h.x1()), y1, std::max(b, h.x2()), y1);
                return;
            }
        }
        l.rows.remember(y1, index);
        lines.emplace_back(a, y1, b, y1);
        return;
    }
    if (x1 == x2 && width == 1) {
        const int a = std::min(y1, y2);
        const int b = std::max(y1, y2);
        for (int i = 0; i < l.columns.count; ++i) {
            const Slot& s = l.columns.slots[i];
            QLine& v = lines[static_cast<size_t>(s.index)];
            if (s.key == x1 && a <= v.y2() && b >= v.y1()) {
                v.setLine(x1, std::min(a, v.y1()), x1, std::max(b, v.y2()));
                return;
            }
        }
        l.columns.remember(x1, index);
        lines.emplace_back(x1, a, x1, b);
        return;
    }
    // A slanted line's pixels depend on its direction: only an identical
    // line is dropped.
    const QLine slanted(x1, y1, x2, y2);
    for (int i = 0; i < l.others.count; ++i) {
        if (lines[static_cast<size_t>(l.others.slots[i].index)] == slanted)
            return;
    }
    l.others.remember(0, index);
    lines.push_back(slanted);
}

void WaveView::Batch::styledLine(int layer, const QPen& pen, int x1, int y1, int x2, int y2)
{
    flush(layer);
    painter_.setPen(pen);
    painter_.drawLine(x1, y1, x2, y2);
    ++count_;
}

void WaveView::Batch::rect(int layer, const QPen& pen, const QBrush& brush, const QRect& r)
{
    // A fill without an outline and without width or height paints nothing.
    if (!direct_ && pen.style() == Qt::NoPen && (r.width() == 0 || r.height() == 0))
        return;
    flush(layer);
    painter_.setPen(pen);
    painter_.setBrush(brush);
    painter_.drawRect(r);
    ++count_;
}

void WaveView::Batch::cloneBlock(int layer, int x, int y, int width, int height)
{
    if (!direct_ && (width == 0 || height == 0))
        return;
    flush(layer);
    WaveView::drawCloneBlock(painter_, x, y, width, height);
    ++count_;
}

void WaveView::Batch::setTextColor(const QColor& color)
{
    if (textPen_.color() != color || textPen_.style() != Qt::SolidLine)
        textPen_ = QPen(color);
    painter_.setPen(textPen_);
}

void WaveView::Batch::text(int layer, const QColor& color, int x, int y, const QString& text)
{
    flush(layer);
    setTextColor(color);
    painter_.drawText(x, y, text);
    ++count_;
}

void WaveView::Batch::letter(int layer, const QColor& color, int x, int y, Letter which)
{
    if (direct_) {
        text(layer, color, x, y, letters_[which].text());
        return;
    }
    flush(layer);
    setTextColor(color);
    QStaticText& prepared = letters_[which];
    if (ascent_ == 0) {
        ascent_ = QFontMetricsF(painter_.font()).ascent();
        for (QStaticText& t : letters_)
            t.prepare(QTransform(), painter_.font());
    }
    // Placed by its top; the font's exact ascent puts the baseline at y, on
    // the very pixels drawText gives.
    painter_.drawStaticText(QPointF(x, y - ascent_), prepared);
    ++count_;
}

void WaveView::Batch::flush(int layer)
{
    if (layer < static_cast<int>(layers_.size()))
        flush(layers_[static_cast<size_t>(layer)]);
}

void WaveView::Batch::flush(Layer& l)
{
    if (!l.lines.empty()) {
        painter_.setPen(l.pen);
        painter_.drawLines(l.lines.data(), static_cast<int>(l.lines.size()));
        count_ += static_cast<int>(l.lines.size());
        l.lines.clear();
    }
    l.open = false;
    l.rows.clear();
    l.columns.clear();
    l.others.clear();
}

void WaveView::Batch::flushAll()
{
    for (Layer& l : layers_)
        flush(l);
}

WaveView::WaveView(VokGUI* owner, QWidget* parent) : QWidget(parent), owner_(owner)
{
    setAutoFillBackground(true);
    setAttribute(Qt::WA_MouseTracking);
    setFocusPolicy(Qt::ClickFocus);
    setPalette(QPalette(owner->color_back));
    // The mouse interaction watches the view's own events first.
    installEventFilter(this);
}

void WaveView::drawCloneBlock(QPainter& painter, int x, int y, int width, int height)
{
    static const QBrush clone(Qt::gray, Qt::Dense6Pattern);
    painter.setPen(Qt::NoPen);
    painter.setBrush(clone);
    painter.drawRect(x, y, width, height);
}

bool WaveView::collectsFrom(const WaveData* wave) const
{
    return collectSelection && !selectionIsRange && !highlightOff && wave->selected && owner_->mode() == 4
        && selectionStart != 0 && selectionEnd != 0 && rowIndex >= firstVisibleRow;
}

void WaveView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    QFont font = this->font();
    font.setPointSize(8);
    font.setFamily(QStringLiteral("Arial"));
    font.setWeight(QFont::Bold);
    painter.setFont(font);
    fontSize = 8;
    startTime = owner_->startTime();
    step = qMax<quint64>(1, owner_->step());
    hiddenCount = 0;
    rowIndex = 0;
    bitRowsAbove = 0;
    rowHeight = RowHeight;
    previousValue.assign(1, static_cast<char>(0xff));
    primitives_ = 0;

    // directPaint draws every primitive on its own: the reference picture
    // the gathered painting must equal pixel for pixel.
    Batch batch(painter, primitives_, property("directPaint").toBool(), owner_->color_x);
    batch_ = &batch;

    const int viewWidth = width();
    const int viewHeight = height();
    const float rightEdge = static_cast<float>(viewWidth + 1);
    bool belowView = false;
    for (WaveData* wave : std::as_const(owner_->document()->waves)) {
        if (!wave->visible) {
            ++hiddenCount;
            continue;
        }
        const int bitRows = wave->isBus && wave->expandFlag ? qMax(0, wave->busWidth) : 0;
        const int rows = 1 + bitRows;
        if (rowIndex + rows <= firstVisibleRow) {
            rowIndex += rows;
            continue;
        }
        rowTop = (rowIndex - firstVisibleRow) * rowHeight;
        belowView = belowView || rowTop >= viewHeight;
        // Below the bottom edge nothing shows; only a selection being
        // collected still needs the wave's patterns walked.
        if (belowView && !collectsFrom(wave)) {
            rowIndex += rows;
            continue;
        }
        paintRows_ = !belowView;
        highY = rowTop + 10;
        lowY = rowTop + 40;
        midY = rowTop + 25;
        xCursor = 0;
        timeSum = 0;
        rangeDrawn_ = false;

        if (wave->offset > startTime) {
            const float w = static_cast<float>(wave->offset - startTime) / static_cast<float>(step) * 20.0f;
            if (paintRows_)
                drawLeadingOffset(wave, w);
            xCursor += w;
            previousValue = "0";
        }

        timeCursor = static_cast<float>(wave->offset);
        exactTime_ = wave->offset;
        const int count = static_cast<int>(wave->patterns.size());
        drawWave(false, painter, wave, 0, count);

        const int tail = wave->foreverIndex;
        if (tail >= 0 && tail < count) {
            qint64 period = 0;
            bool forward = true;
            for (int i = tail; i < count; ++i) {
                const qint32 d = wave->patterns.at(i)->duration;
                period += d;
                forward = forward && d >= 0;
            }
            while (xCursor <= rightEdge) {
                // Repetitions wholly left of the view move the time on and
                // nothing else: skip them in one stride.
                if (xCursor == 0 && forward && period > 0 && exactTime_ < startTime
                    && startTime - exactTime_ >= quint64(period)) {
                    const quint64 skipped = (startTime - exactTime_) / quint64(period);
                    exactTime_ += skipped * quint64(period);
                    timeCursor = static_cast<float>(exactTime_);
                    timeSum = static_cast<int>(static_cast<quint32>(timeSum)
                                               + static_cast<quint32>(skipped * quint64(period)));
                }
                const float before = xCursor;
                const quint64 timeBefore = exactTime_;
                drawWave(true, painter, wave, tail, count);
                // A tail that takes no time, or whose width no longer moves
                // the cursor, would repeat for ever.
                if (period <= 0 || (xCursor == before && (xCursor != 0 || exactTime_ == timeBefore)))
                    break;
            }
        }
        batch.flushAll();

        if (paintRows_ && owner_->showGuideline())
            batch.styledLine(RowLayer, QPen(Qt::black, 1, Qt::DotLine), 0, lowY + 8, viewWidth, lowY + 8);
        if (bitRows > 0 && rowIndex + 1 < firstVisibleRow)
            bitRowsAbove += firstVisibleRow - rowIndex - 1;
        rowIndex += rows;
    }
    paintRows_ = true;

    const float stepF = static_cast<float>(step);
    if (startTime < markerTime) {
        const float x = static_cast<float>(markerTime - startTime) / stepF * 20.0f;
        if (x <= rightEdge)
            batch.line(RowLayer, Qt::red, 1, px(x), 0, px(x), viewHeight);
    }
    const int mode = owner_->mode();
    if (startTime < cursorTime && (mode == 3 || mode == 4)) {
        const float x = static_cast<float>(cursorTime - startTime) / stepF * 20.0f;
        if (x <= rightEdge)
            batch.line(RowLayer, Qt::black, 1, px(x), 0, px(x), viewHeight);
    }
    batch.rect(RowLayer, QPen(palette().dark().color()), Qt::NoBrush, QRect(0, 0, viewWidth - 1, viewHeight - 1));
    batch.flushAll();
    batch_ = nullptr;

    if (collectSelection && snappedStart != snappedEnd) {
        selectionStart = snappedStart;
        selectionEnd = snappedEnd;
    }
}

void WaveView::drawLeadingOffset(const WaveData* wave, float w)
{
    Batch& batch = *batch_;
    const float x = xCursor;
    if (x > static_cast<float>(width() + 1))
        return;
    if (!wave->isBus) {
        batch.line(RowLayer, owner_->color_signal, 1, px(x), lowY, px(x + w), lowY);
        return;
    }
    // Before its offset a bus reads as 0.
    if (rowIndex >= firstVisibleRow) {
        const bool narrow = w < 20.0f;
        drawBusShape(RowLayer, owner_->color_bus, false, x, w, narrow, startTime != 0);
        if (!narrow)
            batch.letter(RowLayer, owner_->color_bus, px(x + w / 2.0f - static_cast<float>(fontSize / 2)), lowY - 8,
                         Batch::LetterZero);
    }
    if (!wave->expandFlag)
        return;
    for (int j = qMax(0, firstVisibleRow - rowIndex - 1); j < wave->busWidth; ++j) {
        const int top = (rowIndex + j + 1 - firstVisibleRow) * rowHeight;
        if (top >= height())
            break;
        batch.line(bitLayer(j), Qt::black, 1, px(x), top + 40, px(x + w), top + 40);
    }
}

void WaveView::drawBusShape(int layer, const QColor& color, bool dotted, float x, float w, bool narrow,
                            bool startedLeft)
{
    Batch& batch = *batch_;
    const QPen dots(color, 1, Qt::DotLine);
    auto line = [&](float x1, int y1, float x2, int y2) {
        if (dotted)
            batch.styledLine(layer, dots, px(x1), y1, px(x2), y2);
        else
            batch.line(layer, color, 1, px(x1), y1, px(x2), y2);
    };
    if (narrow) {
        const float middle = x + w / 2.0f;
        if (startedLeft) {
            line(x, highY, middle, highY);
            line(x, lowY, middle, lowY);
        } else {
            line(x, midY, middle, highY);
            line(x, midY, middle, lowY);
        }
        line(x + w, midY, middle, highY);
        line(x + w, midY, middle, lowY);
        return;
    }
    if (startedLeft) {
        line(x, highY, x + w - 5.0f, highY);
        line(x, lowY, x + w - 5.0f, lowY);
    } else {
        line(x, midY, x + 5.0f, highY);
        line(x, midY, x + 5.0f, lowY);
        line(x + 5.0f, highY, x + w - 5.0f, highY);
        line(x + 5.0f, lowY, x + w - 5.0f, lowY);
    }
    line(x + w, midY, x + w - 5.0f, highY);
    line(x + w, midY, x + w - 5.0f, lowY);
}

void WaveView::drawSpecialBox(int layer, bool dontCare, bool picked, bool shapes, float x, float w, int high,
                              int low)
{
    Batch& batch = *batch_;
    // The box covers the pattern's pixel columns up to the one where the next
    // pattern begins.
    const int left = px(x);
    const int right = px(x + w) - 1;
    if (picked) {
        if (shapes)
            batch.rect(layer, dontCare ? batch.dontCareDots : batch.highZDots, Qt::NoBrush,
                       QRect(left, high, right - left, low - 1 - high));
        return;
    }
    if (shapes) {
        if (dontCare)
            batch.rect(layer, Qt::NoPen, batch.hatch, QRect(left, high, right - left + 1, low - high));
        else
            batch.rect(layer, batch.highZPen, Qt::NoBrush, QRect(left, high, right - left, low - 1 - high));
    }
    // The letter sits centred on the pattern and may reach a little left of
    // it, so it is drawn for patterns just beyond the right edge too.
    batch.letter(layer, dontCare ? owner_->color_x : QColor(Qt::gray),
                 px(x + w / 2.0f - static_cast<float>(fontSize / 2)), low - 8,
                 dontCare ? Batch::LetterX : Batch::LetterZ);
}

void WaveView::drawWave(bool clone, QPainter& painter, WaveData* wave, int from, int to)
{
    // Called on its own, outside a paint, the wave still goes through a batch.
    std::optional<Batch> own;
    if (!batch_) {
        own.emplace(painter, primitives_, false, owner_->color_x);
        batch_ = &*own;
    }
    Batch& batch = *batch_;

    const float startF = static_cast<float>(startTime);
    const float stepF = static_cast<float>(step);
    const float rightEdge = static_cast<float>(width() + 1);
    const int viewHeight = height();
    const bool bus = wave->isBus;
    const int bitRows = bus && wave->expandFlag ? qMax(0, wave->busWidth) : 0;
    const int firstBitRow = qMax(0, firstVisibleRow - rowIndex - 1);
    const bool busRowShown = rowIndex >= firstVisibleRow;

    const bool selecting =
        owner_->mode() == 4 && wave->selected && selectionStart != 0 && selectionEnd != 0;
    const double lo = qMin(selectionStart, selectionEnd);
    const double hi = qMax(selectionStart, selectionEnd);
    const bool perPattern = selecting && !selectionIsRange && !highlightOff && rowIndex >= firstVisibleRow;
    QList<Pattern*>& selected = owner_->selection();

    // The value drawn last; a pattern's own text while the walk goes on.
    const std::string* prev = &previousValue;
    Kind prevKind = kindOf(previousValue);
    // The bus value of the pattern drawn last, read for the bit rows' edges.
    BigInteger lastNumber;
    const std::string* lastNumberOf = nullptr;

    from = qMax(0, from);
    to = qMin(to, static_cast<int>(wave->patterns.size()));
    Pattern* const* list = wave->patterns.constData();
    for (int i = from; i < to; ++i) {
        Pattern* p = list[i];
        const qint32 d = p->duration;
        if (d == 0)
            continue;
        timeSum = static_cast<int>(static_cast<quint32>(timeSum) + static_cast<quint32>(d));
        timeCursor += static_cast<float>(d);
        exactTime_ += static_cast<quint64>(static_cast<qint64>(d));
        if (timeCursor <= startF)
            continue;

        const float x = xCursor;
        const float w = (x == 0.0f ? timeCursor - startF : static_cast<float>(d)) / stepF * 20.0f;
        const std::string& value = p->value;
        const Kind kind = kindOf(value);
        const bool picked = !clone && (p == selectedPattern || p == selectedPattern2);
        const float left = qMin(x, x + w);
        // Letters reach up to half a font size left of their pattern.
        if (paintRows_ && left - static_cast<float>(fontSize) <= rightEdge) {
            const bool shapes = left <= rightEdge;
            const bool dontCare = kind == Kind::DontCare;
            const bool highZ = kind == Kind::HighZ;
            if (!bus) {
                if (kind == Kind::One || kind == Kind::Zero) {
                    levelY = kind == Kind::One ? highY : lowY;
                    if (shapes) {
                        if (clone)
                            batch.cloneBlock(RowLayer, px(x), highY, px(x + w) - px(x), lowY - highY);
                        const QColor& color = owner_->color_signal;
                        if (x != 0.0f && !isSpecial(prevKind) && value != *prev)
                            batch.line(RowLayer, color, 1, px(x), highY, px(x), lowY);
                        if (picked)
                            batch.styledLine(RowLayer, QPen(color, 1, Qt::DotLine), px(x), levelY, px(x + w), levelY);
                        else
                            batch.line(RowLayer, color, 1, px(x), levelY, px(x + w), levelY);
                    }
                } else if (dontCare || highZ) {
                    drawSpecialBox(RowLayer, dontCare, picked, shapes, x, w, highY, lowY);
                }
            } else if (busRowShown) {
                if (clone && shapes)
                    batch.cloneBlock(RowLayer, px(x), highY, px(x + w) - px(x), lowY - highY);
                if (dontCare || highZ) {
                    drawSpecialBox(RowLayer, dontCare, picked, shapes, x, w, highY, lowY);
                } else if (shapes) {
                    const QColor& color = owner_->color_bus;
                    drawBusShape(RowLayer, color, picked, x, w, w < 20.0f || picked, timeCursor - static_cast<float>(d) < startF);
                    // No text of one or more characters fits a pattern of a
                    // font size or less, so its text is not even made.
                    if (w > static_cast<float>(fontSize)) {
                        const QString text = owner_->getBusValueString(value, wave->busWidth);
                        const int length = static_cast<int>(text.length());
                        if (static_cast<float>(fontSize * length) < w)
                            batch.text(RowLayer, color, px(x + w / 2.0f - static_cast<float>(fontSize * length / 2)),
                                       lowY - 8, text);
                    }
                }
            }

            if (bitRows > 0) {
                BigInteger number;
                bool edges = false;
                BigInteger before;
                if (!dontCare && !highZ && shapes) {
                    number = BigInteger(value, 16);
                    if (!isSpecial(prevKind)) {
                        before = prev == lastNumberOf ? lastNumber : BigInteger(*prev, 16);
                        edges = number.isNumber() && before.isNumber();
                    }
                }
                for (int j = firstBitRow; j < bitRows; ++j) {
                    const int top = (rowIndex + j + 1 - firstVisibleRow) * rowHeight;
                    if (top >= viewHeight)
                        break;
                    const int high = top + 10;
                    const int low = top + 40;
                    if (dontCare || highZ) {
                        drawSpecialBox(bitLayer(j), dontCare, picked, shapes, x, w, high, low);
                        continue;
                    }
                    if (!shapes)
                        break;
                    const int bit = wave->busWidth - 1 - j;
                    const bool set = number.bitAt(bit);
                    const int level = set ? high : low;
                    batch.line(bitLayer(j), Qt::black, 1, px(x), level, px(x + w), level);
                    if (edges && before.bitAt(bit) != set)
                        batch.line(bitLayer(j), Qt::black, 1, px(x), high, px(x), low);
                }
                if (shapes && !dontCare && !highZ) {
                    lastNumber = std::move(number);
                    lastNumberOf = &value;
                }
            }
        }

        if (selecting) {
            if (selectionIsRange) {
                // Every pattern of the row marks the same range: once is enough.
                if (paintRows_ && !rangeDrawn_) {
                    const float a = static_cast<float>(lo - static_cast<double>(startTime)) / stepF * 20.0f;
                    const float b = static_cast<float>(hi - static_cast<double>(startTime)) / stepF * 20.0f;
                    batch.line(SelectionLayer, Qt::black, 2, px(a), highY - 5, px(b), highY - 5);
                    batch.line(SelectionLayer, Qt::black, 2, px(a), lowY + 5, px(b), lowY + 5);
                    rangeDrawn_ = true;
                }
            } else if (perPattern) {
                const double end = static_cast<double>(exactTime_);
                const double start = end - static_cast<double>(d);
                const bool overlaps = lo == hi ? start <= lo && end >= lo
                                               : (start >= lo && start <= hi) || (end >= lo && end <= hi)
                                                     || (start <= lo && end >= hi);
                if (overlaps) {
                    if (paintRows_ && left <= rightEdge) {
                        batch.line(SelectionLayer, Qt::black, 2, px(x), highY - 5, px(x + w), highY - 5);
                        batch.line(SelectionLayer, Qt::black, 2, px(x), lowY + 5, px(x + w), lowY + 5);
                    }
                    if (collectSelection) {
                        if (selected.isEmpty())
                            snappedStart = start + 0.5;
                        selected.append(p);
                        snappedEnd = end - 0.5;
                    }
                }
            }
        }

        xCursor = x + w;
        prev = &value;
        prevKind = kind;
    }
    if (prev != &previousValue)
        previousValue = *prev;
    if (own) {
        own->flushAll();
        batch_ = nullptr;
    }
}

} // namespace kesu::toolvok
