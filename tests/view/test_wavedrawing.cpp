// The wave drawing, pixel by pixel: levels, shapes, rows, the selection,
// the marker and the cursor, and what painting costs.
#include "guifixture.h"
#include "selection.h"

#include <QPainter>
#include <QScrollBar>

using namespace guitest;

namespace {
const QColor Back(255, 255, 255), Signal(0, 0, 255), Bus(0, 128, 0), DontCare(200, 0, 100), Gray(Qt::gray),
    Red(Qt::red), Black(Qt::black);
constexpr int Width = 400, Height = 200;
} // namespace

class TestWaveDrawing : public QObject
{
    Q_OBJECT

    std::unique_ptr<VokGUI> gui_;
    WaveView* view_ = nullptr;

    // "value:duration" per segment, blank-separated; "(" in front of the first
    // segment of the forever tail. Appended without merging.
    WaveData* addWave(const QString& segments, quint64 offset = 0, int busWidth = 0)
    {
        auto* wave = new WaveData(QStringLiteral("w%1").arg(gui_->document()->waves.size()));
        wave->offset = offset;
        if (busWidth > 0) {
            wave->isBus = true;
            wave->busWidth = busWidth;
        }
        for (QString item : segments.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const bool forever = item.startsWith(QLatin1Char('('));
            const QStringList parts = item.mid(forever ? 1 : 0).split(QLatin1Char(':'));
            auto* p = new Pattern(parts.at(0).toStdString(), parts.at(1).toInt());
            p->forever = forever;
            wave->insertData(p, nullptr);
            if (forever)
                wave->foreverIndex = int(wave->patterns.size()) - 1;
        }
        gui_->document()->addWave(wave);
        return wave;
    }

    // n segments of one unit, 0 and 1 by turns.
    void addToggling(int n) { addWave(QStringLiteral("0:1 1:1 ").repeated(n / 2)); }
    void setView(quint64 start, quint64 step) { guitest::setView(*gui_, start, step); }

    QImage paint(int width = Width, int height = Height)
    {
        view_->resize(width, height);
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::magenta);
        view_->render(&image);
        if (view_->size() != QSize(width, height))
            qFatal("the wave view was laid out to another size while rendering");
        return image;
    }

    // Scrolls the wave view down to a row, as the tool's scroll bar does.
    void scrollTo(int row)
    {
        gui_->waveVBar()->setMaximum(qMax(row, gui_->waveVBar()->maximum()));
        gui_->waveVBar()->setValue(row);
    }

private Q_SLOTS:
    void initTestCase()
    {
        gui_ = toolfixture::laidOutTool();
        view_ = gui_->waveView();
    }

    void init()
    {
        gui_->ClearAll();
        gui_->selection().clear();
        std::tie(gui_->color_back, gui_->color_signal, gui_->color_bus, gui_->color_x) =
            std::tie(Back, Signal, Bus, DontCare);
        gui_->setShowGuideline(false);
        gui_->setBusRadix(3);
        gui_->setMode(VokGUI::ModeQuery);
        view_->setPalette(QPalette(Back));
        scrollTo(0);
        view_->setMarkerTime(NoTime);
        gui_->changeRange(0, 0);
        Selection& s = gui_->selectionState();
        s.isRange = s.highlightOff = false;
        s.picked = s.picked2 = nullptr;
        view_->setProperty("directPaint", false);
        setView(0, 1);
    }

    void cleanupTestCase() { gui_.reset(); }

    void scenes_data()
    {
        // Waves separated by "|": segments as addWave takes them, then "@offset" and "/bus width"; "+" in front
        // expands a bus, "~" hides the wave. Expected: "C@x,y" a pixel of colour C, "C>x0,y0,x1,y1" some of the
        // rectangle in C, "C!x0,y0,x1,y1" none of it. Colours: S signal, B bus, K black, D don't care, G gray, W back.
        using Time = quint64;
        addColumns<QString, Time, Time, int, QString>({"scene", "start", "step", "radix", "expected"});
        // Low at row top + 40, high at + 10, edges between; none after a don't care or high impedance, none for an
        // empty pattern; low up to an offset.
        QTest::newRow("levels") << "0:2 1:3 0:2 | 1:2 -1:2 0:2 | 1:2 -2:2 0:2 | 1:2 1:0 1:2 | 1:2@3" << Time(0)
                                << Time(1) << 3 << "S@20,40 S@70,10 S@40,25 S@100,25 S@120,40 W@150,40 S@100,80 "
                                   "S@100,120 S@60,130 S!38,131,42,159 S@30,200 S@60,185 S@80,170 W@110,170";
        QTest::newRow("don't care and high impedance")
            << "1:2 -1:2 0:2 -2:2" << Time(0) << Time(1) << 3
            << "D>40,10,47,39 D>40,32,47,39 D!30,0,39,198 D!80,0,398,198 D!40,40,79,45 G@120,10 G@159,10 "
               "G@120,39 G@159,39 W@125,20 G>136,22,144,32 G!160,0,398,198";
        QTest::newRow("hidden: no row") << "~1:5 | 0:5" << Time(0) << Time(1) << 3 << "S@50,40 W@50,10 S!1,41,398,198";
        // 10 pixels a unit: a hexagon over 0..60, a diamond 60..70, 20 pixels a hexagon again, each with its text.
        QTest::newRow("bus") << "A5:6 1F:1 3:2/8" << Time(0) << Time(2) << 3
                             << "B@30,10 B@30,40 B@60,25 B@65,10 B@65,40 B@76,10 B@84,10 B>10,15,50,35 B>76,20,84,33";
        // Binary "10100101" is 64 pixels of text: too wide for 60.
        QTest::newRow("bus text too wide") << "A5:6 1F:1 3:2/8" << Time(0) << Time(2) << 0 << "B@30,10 B!10,15,50,35";
        // Begun left of the view: the edges run from the left side, no bevel.
        QTest::newRow("bus begun left") << "A5:6 1F:1 3:2/8" << Time(1) << Time(2) << 3 << "B@2,10 B@2,40";
        // Bit row 0 shows bit 1 (0 then 1), bit row 1 bit 0 (1 then 0); don't care in the bus row and in both bit
        // rows; the next wave below them.
        QTest::newRow("bit rows") << "+1:2 2:2 -1:1 3:1/2 | 1:5" << Time(0) << Time(1) << 3
                                  << "B@20,10 K@20,80 K@60,50 K@40,65 K@20,90 K@60,120 K@40,105 D>80,10,87,39 "
                                     "D>80,50,87,79 D>80,90,87,119 D!100,0,398,198 S@50,130";
        // The forever tail repeats to the right edge over clone blocks, however far the view scrolls.
        QTest::newRow("forever") << "0:1 (1:1 0:1" << Time(0) << Time(1) << 3
                                 << "S@30,10 S@50,40 G!1,10,59,39 G>60,10,99,39 G>360,10,398,39 S@390,10 S@370,40";
        QTest::newRow("forever far") << "0:1 (1:1 0:1" << Time(1000001) << Time(1) << 3 << "S@10,10 S@30,40";
    }
    void scenes()
    {
        QFETCH(QString, scene); QFETCH(quint64, start); QFETCH(quint64, step); QFETCH(int, radix);
        QFETCH(QString, expected);
        static const QRegularExpression form(QStringLiteral("^([+~]?)([^@/]*)@?(\\d*)/?(\\d*)$"));
        for (const QString& wave : scene.split(QLatin1Char('|'))) {
            const QRegularExpressionMatch m = form.match(wave.trimmed());
            WaveData* w = addWave(m.captured(2), m.captured(3).toULongLong(), m.captured(4).toInt());
            w->expandFlag = m.captured(1) == QLatin1String("+");
            w->visible = m.captured(1) != QLatin1String("~");
        }
        gui_->setBusRadix(radix);
        setView(start, step);
        const QImage img = paint(Width, 240);
        const QMap<QChar, QColor> colors{{'S', Signal}, {'B', Bus}, {'K', Black}, {'D', DontCare}, {'G', Gray},
                                         {'W', Back}};
        for (const QString& check : expected.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QColor color = colors.value(check.at(0));
            QList<int> n;
            for (const QString& number : check.mid(2).split(QLatin1Char(',')))
                n << number.toInt();
            if (check.at(1) == QLatin1Char('@'))
                QVERIFY2(img.pixelColor(n[0], n[1]) == color, qPrintable(check));
            else
                QVERIFY2((count(img, color, QRect(QPoint(n[0], n[1]), QPoint(n[2], n[3]))) > 0) == (check.at(1) == '>'),
                         qPrintable(check));
        }
    }

    void guideLinesScrollingMarkerAndCursor()
    {
        addWave("1:5");
        addWave("0:5");
        gui_->setShowGuideline(true);
        QImage img = paint();
        // A dotted line 8 below each row's low level.
        for (int y : {48, 88}) {
            QVERIFY(count(img, Black, QRect(1, y, Width - 2, 1)) > 100);
            for (int x = 1; x < Width - 2; ++x)
                QVERIFY(!(img.pixelColor(x, y) == Black && img.pixelColor(x + 1, y) == Black));
        }
        QCOMPARE(count(img, Black, QRect(1, 120, Width - 2, Height - 121)), 0);
        scrollTo(1);   // the first wave scrolled out above
        expectPixels(paint(), {{50, 40, Signal}, {50, 10, Back}});
        // The marker only right of the start, the cursor only in query and edit mode.
        view_->setMarkerTime(5);
        img = paint();
        QCOMPARE(img.pixelColor(100, 150), Red);
        QCOMPARE(count(img, Red, img.rect()), Height - 2);
        setView(4, 1);
        QCOMPARE(paint().pixelColor(20, 150), Red);
        setView(5, 1);
        QCOMPARE(count(paint(), Red, img.rect()), 0);
        view_->setMarkerTime(NoTime);   // hidden
        setView(0, 1);
        QCOMPARE(count(paint(), Red, img.rect()), 0);
        QTest::mouseClick(view_, Qt::LeftButton, {}, QPoint(140, 10));
        QCOMPARE(view_->cursorTime(), quint64(7));
        for (int mode : {1, 2, 3, 4}) {
            gui_->setMode(mode);
            QCOMPARE(paint().pixelColor(140, 150), mode >= 3 ? Black : Back);
        }
    }

    void selectionIsMarkedAboveAndBelowTheRow()
    {
        WaveData* wave = addWave("0:1 1:2 0:2 1:1");
        wave->selected = true;
        gui_->setMode(VokGUI::ModeEdit);
        // Per segment: the two it touches, [1,5], x 20..100. Two-pixel lines
        // at y 5 and 45 cover the pixel row above too.
        gui_->changeRange(1.3, 4.2);
        const QImage img = paint();
        for (int y : {4, 5, 44, 45})
            expectPixels(img, {{60, y, Black}, {10, y, Back}, {110, y, Back}});
        // A free range is marked from its own times.
        gui_->selectionState().isRange = true;
        gui_->changeRange(2, 3);
        expectPixels(paint(), {{50, 5, Black}, {30, 5, Back}, {70, 5, Back}});
        // Outside edit mode nothing is marked.
        gui_->setMode(VokGUI::ModeQuery);
        QCOMPARE(paint().pixelColor(50, 5), Back);
    }

    void paintingCostsWhatIsVisible()
    {
        // Segments right of the view cost nothing.
        addToggling(26);
        paint();
        const int few = view_->lastPaintPrimitives();
        QVERIFY(few > 20);
        init();
        addToggling(100026);
        paint();
        QCOMPARE(view_->lastPaintPrimitives(), few);
        // Thousands of segments per pixel cost about the pixels.
        init();
        addToggling(200000);
        view_->resize(Width, Height);
        gui_->zoomRange(0, 200000);
        paint();
        QVERIFY2(view_->lastPaintPrimitives() < 4 * Width, qPrintable(QString::number(view_->lastPaintPrimitives())));
    }

    void gatheredPaintingEqualsDirectPainting_data()
    {
        addColumns<quint64, quint64>({"start", "step"});   // step 0: fit
        for (auto [start, step] : QList<QPair<quint64, quint64>>{{0, 1}, {1003, 2}, {77, 200}, {0, 0}})
            QTest::addRow("%llu by %llu", start, step) << start << step;
    }
    void gatheredPaintingEqualsDirectPainting()
    {
        QFETCH(quint64, start); QFETCH(quint64, step);
        QString mixed, busy, tail;
        for (int i = 0; i < 3000; ++i) {
            const char* values[] = {"0", "1", "1", "-1", "0", "-2", "1", "0"};
            mixed += QStringLiteral("%1:%2 ").arg(values[i % 8]).arg(1 + i % 3);
            const QString number = i % 7 == 3 ? QStringLiteral("-1") : QString::number(i * 37 % 256, 16);
            busy += QStringLiteral("%1:%2 ").arg(number).arg(1 + i % 4);
            if (i < 10)
                tail += QStringLiteral("%1%2:%3 ").arg(i == 0 ? "(" : "").arg(number).arg(1 + i % 2);
        }
        addWave(mixed, 2);   // above the view
        addWave("0:3 (1:2 -1:1 0:1 -2:1", 1);
        addWave("0:3 (1:1 0:1", 2);
        addWave(busy + tail, 0, 8);
        WaveData* selected = addWave(mixed, 0);
        selected->selected = true;
        addWave("A5:9000", 0, 8);
        // Over before most views start: bands begin below a wave that draws nothing, and above a bus's bit rows.
        addWave("1:2 0:1", 0);
        WaveData* bus = addWave(busy, 5, 8);
        bus->expandFlag = true;
        gui_->setShowGuideline(true);
        view_->setMarkerTime(30);
        gui_->selectionState().picked = selected->patterns.at(5);
        gui_->selectionState().picked2 = bus->patterns.at(9);
        gui_->setMode(VokGUI::ModeEdit);
        gui_->changeRange(20, 700);
        scrollTo(1);
        view_->resize(Width, 800);
        if (step == 0)
            gui_->zoomRange(0, gui_->getMaxEnd());
        else
            setView(start, step);
        const QImage gathered = paint(Width, 800);
        const int gatheredCount = view_->lastPaintPrimitives();
        // Bands painted side by side, each cut between waves and begun with the value the rows above leave.
        QList<QImage> banded;
        for (int bands : {2, 3, 5}) {
            view_->setProperty("paintBands", bands);
            banded << paint(Width, 800);
        }
        view_->setProperty("paintBands", QVariant());
        view_->setProperty("directPaint", true);
        const QImage direct = paint(Width, 800);
        for (const QImage& picture : banded << gathered)
            QVERIFY(picture == direct);
        QVERIFY(gatheredCount <= view_->lastPaintPrimitives());
        // A repaint of part of the view sets pixels there only, those written past the painter included.
        view_->setProperty("directPaint", QVariant());
        const QRegion part = QRegion(0, 0, Width / 3, 800) + QRegion(Width / 2, 100, 200, 300);
        QImage partial(Width, 800, QImage::Format_RGB32);
        partial.fill(Qt::magenta);
        view_->render(&partial, QPoint(), part);
        QImage expected(Width, 800, QImage::Format_RGB32);
        expected.fill(Qt::magenta);
        {
            QPainter painter(&expected);
            for (const QRect& r : part)
                painter.drawImage(r, direct, r);
        }
        QVERIFY(partial == expected);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestWaveDrawing)

#include "test_wavedrawing.moc"
