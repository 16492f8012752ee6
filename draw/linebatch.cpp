#include "linebatch.h"

#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainter>
#include <QTextLayout>

#include <tuple>

namespace kesu::toolvok {

LineBatch::LineBatch(QPainter& painter, int& count, bool direct, const QColor& dontCare)
    : hatch(dontCare, Qt::BDiagPattern),
      dontCareDots(dontCare, 1, Qt::DotLine),
      highZPen(QColor(Qt::gray)),
      highZDots(QColor(Qt::gray), 1, Qt::DotLine),
      painter_(painter),
      count_(count),
      direct_(direct),
      raster_(painter.paintEngine() && painter.paintEngine()->type() == QPaintEngine::Raster),
      pixels_(painter),
      glyphRuns_(painter.paintEngine() && painter.paintEngine()->type() == QPaintEngine::Pdf)
{
    const QString texts[] = {QStringLiteral("X"), QStringLiteral("Z"), QStringLiteral("0")};
    for (int i = 0; i < 3; ++i) {
        letters_[i].setText(texts[i]);
        letters_[i].setTextFormat(Qt::PlainText);
    }
}

void LineBatch::line(int layer, const QColor& color, int width, int x1, int y1, int x2, int y2)
{
    if (direct_) {
        drawLetters();
        painter_.setPen(QPen(color, width));
        painter_.drawLine(x1, y1, x2, y2);
        ++count_;
        return;
    }
    Layer& l = at(layer);
    if (!l.open || l.width != width || l.color != color) {
        flush(l);
        l.open = true;
        if (l.width != width || l.color != color) {
            const Tools& tools = toolsFor(color, width);
            l.pen = tools.pen;
            l.brush = tools.brush;
        }
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

void LineBatch::styledLine(int layer, const QPen& pen, int x1, int y1, int x2, int y2)
{
    flush(layer);
    drawLetters();
    painter_.setPen(pen);
    painter_.drawLine(x1, y1, x2, y2);
    ++count_;
}

void LineBatch::rect(int layer, const QPen& pen, const QBrush& brush, const QRect& r)
{
    // A fill without an outline and without width or height paints nothing.
    if (!direct_ && pen.style() == Qt::NoPen && (r.width() == 0 || r.height() == 0))
        return;
    // The outline of a solid one-pixel pen is exactly its four sides, whatever
    // the rectangle's width (a high-impedance box narrower than a pixel has
    // -1): gathered with the lines, they are filled instead of stroked. Only
    // pixels gain by it; a PDF or SVG would get four shapes for one.
    if (!direct_ && raster_ && brush.style() == Qt::NoBrush && pen.style() == Qt::SolidLine && pen.width() == 1
        && pen.color().alpha() == 255) {
        const QColor color = pen.color();
        const int right = r.left() + r.width();
        const int bottom = r.top() + r.height();
        line(layer, color, 1, r.left(), r.top(), right, r.top());
        line(layer, color, 1, r.left(), bottom, right, bottom);
        line(layer, color, 1, r.left(), r.top(), r.left(), bottom);
        line(layer, color, 1, right, r.top(), right, bottom);
        return;
    }
    flush(layer);
    drawLetters();
    // A fill without an outline leaves the painter's pen and brush alone:
    // boxes, letters and lines take turns thousands of times in a row.
    if (!direct_ && raster_ && pen.style() == Qt::NoPen) {
        if (brush.style() == Qt::SolidPattern)
            pixels_.fill(r, brush.color());
        else
            painter_.fillRect(r, brush);
        ++count_;
        return;
    }
    painter_.setPen(pen);
    painter_.setBrush(brush);
    painter_.drawRect(r);
    // A PDF makes a pattern object for every pen or brush change under a
    // patterned brush; text and lines after the box need no brush.
    if (!raster_ && brush.style() != Qt::NoBrush)
        painter_.setBrush(Qt::NoBrush);
    ++count_;
}

void LineBatch::cloneBlock(int layer, int x, int y, int width, int height)
{
    if (!direct_ && (width == 0 || height == 0))
        return;
    flush(layer);
    drawLetters();
    drawCloneBlock(painter_, x, y, width, height);
    ++count_;
}

void LineBatch::drawCloneBlock(QPainter& painter, int x, int y, int width, int height)
{
    static const QBrush clone(Qt::gray, Qt::Dense6Pattern);
    painter.setPen(Qt::NoPen);
    painter.setBrush(clone);
    painter.drawRect(x, y, width, height);
}

const LineBatch::Tools& LineBatch::toolsFor(const QColor& color, int width)
{
    // A row switches between a handful of colours thousands of times at the
    // fit zoom: each pen and brush is made once.
    for (const Tools& t : tools_) {
        if (t.width == width && t.color == color)
            return t;
    }
    tools_.push_back({color, width, width < 0 ? QPen(color) : QPen(color, width), QBrush(color)});
    return tools_.back();
}

void LineBatch::setTextColor(const QColor& color)
{
    painter_.setPen(toolsFor(color, -1).pen);
}

void LineBatch::text(int layer, const QColor& color, int x, int y, const QString& text)
{
    flush(layer);
    drawLetters();
    setTextColor(color);
    painter_.drawText(x, y, text);
    ++count_;
}

void LineBatch::letter(int layer, const QColor& color, int x, int y, Letter which)
{
    if (direct_) {
        text(layer, color, x, y, letters_[which].text());
        return;
    }
    flush(layer);
    if (ascent_ == 0)
        prepareLetters();
    if (glyphRuns_) {
        if (!pendingGlyphs_.isEmpty() && pendingColor_ != color)
            drawLetters();
        pendingColor_ = color;
        const QGlyphRun& glyph = glyphs_[which];
        pendingGlyphs_.append(glyph.glyphIndexes().constFirst());
        pendingPositions_.append(QPointF(x, y - ascent_) + glyph.positions().constFirst());
        ++count_;
        return;
    }
    setTextColor(color);
    // Placed by its top; the font's exact ascent puts the baseline at y, on
    // the very pixels drawText gives.
    painter_.drawStaticText(QPointF(x, y - ascent_), letters_[which]);
    ++count_;
}

void LineBatch::prepareLetters()
{
    ascent_ = QFontMetricsF(painter_.font()).ascent();
    for (int i = 0; i < 3; ++i) {
        letters_[i].prepare(QTransform(), painter_.font());
        if (!glyphRuns_)
            continue;
        QTextLayout layout(letters_[i].text(), painter_.font(), painter_.device());
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        const QList<QGlyphRun> runs = layout.glyphRuns();
        // A font without the letter leaves it out, as drawing its text would.
        if (runs.isEmpty() || runs.constFirst().glyphIndexes().isEmpty())
            glyphRuns_ = false;
        else
            glyphs_[i] = runs.constFirst();
    }
}

void LineBatch::drawLetters()
{
    if (pendingGlyphs_.isEmpty())
        return;
    QGlyphRun run = glyphs_[0];
    run.setGlyphIndexes(pendingGlyphs_);
    run.setPositions(pendingPositions_);
    setTextColor(pendingColor_);
    painter_.drawGlyphRun(QPointF(0, 0), run);
    pendingGlyphs_.clear();
    pendingPositions_.clear();
}

void LineBatch::flush(int layer)
{
    if (layer < static_cast<int>(layers_.size()))
        flush(layers_[static_cast<size_t>(layer)]);
}

void LineBatch::flush(Layer& l)
{
    if (!l.lines.empty()) {
        drawLetters();
        if (l.merge && l.width == 1)
            fillStraight(l);
        if (l.merge && pixels_.active()) {
            const QRgb pixel = l.color.rgba();
            const auto left = std::remove_if(l.lines.begin(), l.lines.end(),
                                             [&](const QLine& s) { return pixels_.line(s, l.width, pixel); });
            count_ += static_cast<int>(l.lines.end() - left);
            l.lines.erase(left, l.lines.end());
        }
        if (!l.lines.empty()) {
            painter_.setPen(l.pen);
            painter_.drawLines(l.lines.data(), static_cast<int>(l.lines.size()));
            count_ += static_cast<int>(l.lines.size());
            l.lines.clear();
        }
    }
    l.open = false;
    l.rows.clear();
    l.columns.clear();
    l.others.clear();
}

void LineBatch::fillStraight(Layer& l)
{
    // A solid one-pixel line along a pixel row or column covers exactly the
    // rectangle between its ends, and the raster engine fills rectangles far
    // faster than it strokes lines; neighbouring columns of one height (a
    // stretch where the wave changes in every column) become one rectangle.
    rects_.clear();
    auto slanted = l.lines.begin();
    for (const QLine& s : l.lines) {
        if (s.x1() != s.x2() && s.y1() != s.y2())
            *slanted++ = s;
        else
            rects_.emplace_back(QPoint(std::min(s.x1(), s.x2()), std::min(s.y1(), s.y2())),
                                QPoint(std::max(s.x1(), s.x2()), std::max(s.y1(), s.y2())));
    }
    // One colour, all opaque: the order of the fills does not matter, so
    // spans of one height are sorted together and joined where they touch.
    std::sort(rects_.begin(), rects_.end(), [](const QRect& a, const QRect& b) {
        return std::make_tuple(a.top(), a.bottom(), a.left()) < std::make_tuple(b.top(), b.bottom(), b.left());
    });
    size_t kept = 0;
    for (size_t i = 0; i < rects_.size(); ++i) {
        const QRect& r = rects_[i];
        QRect& last = rects_[kept > 0 ? kept - 1 : 0];
        if (kept > 0 && last.top() == r.top() && last.bottom() == r.bottom() && r.left() <= last.right() + 1)
            last.setRight(std::max(last.right(), r.right()));
        else
            rects_[kept++] = r;
    }
    rects_.resize(kept);
    l.lines.erase(slanted, l.lines.end());
    if (raster_) {
        // A solid fill needs neither pen nor brush: the painter's state stays
        // as the boxes and letters around it left it.
        for (const QRect& r : rects_)
            pixels_.fill(r, l.color);
    } else {
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(l.brush);
        painter_.drawRects(rects_.data(), static_cast<int>(rects_.size()));
    }
    count_ += static_cast<int>(rects_.size());
}

void LineBatch::flushAll()
{
    for (Layer& l : layers_)
        flush(l);
    drawLetters();
}

} // namespace kesu::toolvok
