// A row can hold far more segments than pixels (a whole document at the fit
// zoom), so painting goes through a batch: lines of one solid pen are gathered
// and handed to the painter in one call, and lines whose pixels are already
// covered by a line of the same pen are merged into it. Everything else (boxes,
// text, dotted lines) is drawn at once, after the lines gathered before it, so
// the picture keeps its painting order. Each row band keeps its own batch: the
// bus row, every bit row and the selection marks never share a pixel, so their
// relative order does not matter.
#pragma once

#include "directfill.h"

#include <QBrush>
#include <QColor>
#include <QGlyphRun>
#include <QLine>
#include <QPen>
#include <QRect>
#include <QStaticText>

#include <string>

#include <algorithm>
#include <deque>
#include <vector>

namespace kesu::toolvok {

// A pixel position truncated to a whole pixel. Positions far outside are held
// where an int cannot overflow; the painter clips them away all the same.
inline int px(float v)
{
    if (!(v > -1.0e9f))
        return -1000000000;
    if (v > 1.0e9f)
        return 1000000000;
    return static_cast<int>(v);
}

enum class Kind { Zero, One, DontCare, HighZ, Other };

// The reserved texts of a value, told apart without string compares: a row
// at the fit zoom asks this of thousands of patterns.
inline Kind kindOf(const std::string& value)
{
    if (value.size() == 1)
        return value[0] == '0' ? Kind::Zero : value[0] == '1' ? Kind::One : Kind::Other;
    if (value.size() == 2 && value[0] == '-')
        return value[1] == '1' ? Kind::DontCare : value[1] == '2' ? Kind::HighZ : Kind::Other;
    return Kind::Other;
}

inline bool isSpecial(Kind kind)
{
    return kind == Kind::DontCare || kind == Kind::HighZ;
}

// Whether a value differs from the one before it; levels by their kind alone.
inline bool differs(Kind kind, const std::string& value, Kind before, const std::string& previous)
{
    const bool levels = (kind == Kind::Zero || kind == Kind::One) && (before == Kind::Zero || before == Kind::One);
    return levels ? kind != before : value != previous;
}

// Batch layers: the selection marks, the wave's own row, then its bit rows.
constexpr int SelectionLayer = 0;
constexpr int RowLayer = 1;
constexpr int bitLayer(int bitRow) { return 2 + bitRow; }

class LineBatch
{
public:
    // direct: draw every primitive on its own, the reference the gathered
    // picture must equal pixel for pixel.
    LineBatch(QPainter& painter, int& count, bool direct, const QColor& dontCare);
    ~LineBatch() { flushAll(); }
    LineBatch(const LineBatch&) = delete;
    LineBatch& operator=(const LineBatch&) = delete;

    void line(int layer, const QColor& color, int width, int x1, int y1, int x2, int y2);
    // A dotted or dashed line: its dash pattern starts afresh with every
    // line, so it is neither gathered nor merged.
    void styledLine(int layer, const QPen& pen, int x1, int y1, int x2, int y2);
    void rect(int layer, const QPen& pen, const QBrush& brush, const QRect& r);
    void cloneBlock(int layer, int x, int y, int width, int height);
    // The grey shading under a repeated forever tail.
    static void drawCloneBlock(QPainter& painter, int x, int y, int width, int height);
    // Text with its baseline at y.
    void text(int layer, const QColor& color, int x, int y, const QString& text);
    // One of the letters of a don't-care or high-impedance box, or the 0 of
    // a bus before its offset: laid out once per paint, not at every box.
    enum Letter { LetterX, LetterZ, LetterZero };
    void letter(int layer, const QColor& color, int x, int y, Letter which);
    void flush(int layer);
    void flushAll();
    bool isDirect() const { return direct_; }

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
        QBrush brush;
        bool open = false;
        bool merge = false;
        std::vector<QLine> lines;
        Recent<4> rows;
        Recent<4> columns;
        Recent<8> others;
    };

    // A pen and a brush of one colour and width (-1: the text pen).
    struct Tools
    {
        QColor color;
        int width;
        QPen pen;
        QBrush brush;
    };
    const Tools& toolsFor(const QColor& color, int width);
    std::deque<Tools> tools_;

    Layer& at(int layer)
    {
        if (layer >= static_cast<int>(layers_.size()))
            layers_.resize(static_cast<size_t>(layer) + 1);
        return layers_[static_cast<size_t>(layer)];
    }
    void flush(Layer& l);
    void fillStraight(Layer& l);
    void setTextColor(const QColor& color);
    void prepareLetters();
    // Letters in a row of one colour, drawn as one run of glyphs before
    // anything else is drawn.
    void drawLetters();

    QPainter& painter_;
    int& count_;
    bool direct_;
    // Drawing pixels, not shapes for a PDF or SVG file.
    bool raster_;
    std::vector<Layer> layers_;
    std::vector<QRect> rects_;
    DirectFill pixels_;
    QStaticText letters_[3];
    qreal ascent_ = 0;
    // A PDF or SVG engine lays out static text anew at every call; it gets
    // the letters' glyphs, shaped once per paint, instead.
    bool glyphRuns_;
    QGlyphRun glyphs_[3];
    QColor pendingColor_;
    QList<quint32> pendingGlyphs_;
    QList<QPointF> pendingPositions_;
};

} // namespace kesu::toolvok
