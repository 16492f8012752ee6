// The drawing on a screen scaled to 200 %: the wave view and the ruler paint
// at the device's pixels, so edges stay one colour, with no blend of the wave
// and the background that would blur them.
#include "rulerview.h"
#include "vokgui.h"
#include "waveview.h"

#include <QtTest>

#include "files.h"
#include "toolfixture.h"

using namespace kesu::toolvok;

namespace {
const QColor Back(Qt::white);
const QColor Signal(Qt::blue);
constexpr int Ratio = 2;

// The runs of colour along device row y from x0 to x1: "W3 S2 W5" for three
// background pixels, two of the wave, five of the background.
QString runs(const QImage& image, int y, int x0, int x1)
{
    QStringList out;
    QRgb last = 0;
    int length = 0;
    auto flush = [&] {
        if (length > 0)
            out << QStringLiteral("%1%2").arg(last == Back.rgb() ? QChar('W') : last == Signal.rgb() ? QChar('S') : QChar('?')).arg(length);
    };
    for (int x = x0; x <= x1; ++x) {
        const QRgb c = image.pixel(x, y) | 0xff000000;
        if (c != last || length == 0) {
            flush();
            last = c;
            length = 0;
        }
        ++length;
    }
    flush();
    return out.join(QLatin1Char(' '));
}
} // namespace

class TestHiDpi : public QObject
{
    Q_OBJECT
    QTemporaryDir dir_;
    std::unique_ptr<VokGUI> gui_;

private Q_SLOTS:
    void initTestCase()
    {
        const QString path = dir_.filePath(QStringLiteral("edge.wdl"));
        QVERIFY(testfiles::writeFile(path, "%ENDTIME = 20;\nclk { A I Default NRZ 0 1 50 } = 0 5 1 5 0 10;\n"));
        gui_ = toolfixture::openShown(path, QSize(800, 500));
        QVERIFY(gui_);
        QCOMPARE(gui_->devicePixelRatioF(), qreal(Ratio));
        gui_->color_back = Back;
        gui_->color_signal = Signal;
        gui_->Refresh();
        gui_->setStartTime(0);
        gui_->changeStep(1);
    }
    void cleanupTestCase() { gui_.reset(); }

    // The picture as the screen gets it (grab) and as a paint device of ratio
    // 2 gets it (render): at 20 pixels a unit the rising edge at 5 is a
    // column of 2 device pixels, 200 and 201, in the wave's colour, between
    // background; the high level at 10 lies on 2 device rows, 20 and 21.
    void edgesAreWholeDevicePixels_data()
    {
        QTest::addColumn<bool>("grab");
        QTest::newRow("window grab") << true;
        QTest::newRow("render at ratio 2") << false;
    }
    void edgesAreWholeDevicePixels()
    {
        QFETCH(bool, grab);
        WaveView* view = gui_->waveView();
        QImage image;
        if (grab) {
            image = view->grab().toImage();
        } else {
            image = QImage(view->size() * Ratio, QImage::Format_RGB32);
            image.setDevicePixelRatio(Ratio);
            image.fill(Qt::magenta);
            view->render(&image);
        }
        QCOMPARE(image.size(), view->size() * Ratio);
        QCOMPARE(image.devicePixelRatio(), qreal(Ratio));
        // Halfway up the edge: background, the edge, background.
        QCOMPARE(runs(image, 25 * Ratio, 90 * Ratio, 110 * Ratio), QStringLiteral("W20 S2 W19"));
        // Down the high level's middle: background, 2 rows of wave, background.
        QString column;
        for (int y = 5 * Ratio; y <= 15 * Ratio; ++y)
            column += image.pixel(150 * Ratio, y) == Signal.rgb() ? 'S' : image.pixel(150 * Ratio, y) == Back.rgb() ? 'W' : '?';
        QCOMPARE(column, QStringLiteral("WWWWWWWWWWSSWWWWWWWWW"));
    }

    // The ruler's ticks are whole device pixels as well: along its bottom,
    // below the labels, no pixel blends the ink with the background.
    void rulerTicksAreWholeDevicePixels()
    {
        const QImage image = gui_->rulerView()->grab().toImage();
        QCOMPARE(image.devicePixelRatio(), qreal(Ratio));
        QCOMPARE(image.size(), gui_->rulerView()->size() * Ratio);
        QSet<QRgb> colours;
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, image.height() - 3));
        QCOMPARE(colours.size(), 2);
    }
};

int main(int argc, char** argv)
{
    // The scale a 200 % desktop gives every window of the program.
    qputenv("QT_SCALE_FACTOR", QByteArray::number(Ratio));
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    TestHiDpi test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_hidpi.moc"
