// At 200 % the wave view and the ruler paint whole device pixels, never a blurring blend.
#include "guifixture.h"

using namespace guitest;

namespace {
constexpr int Ratio = 2;
// The scale a 200 % desktop gives every window of the program, set before the application starts.
const bool scaled = qputenv("QT_SCALE_FACTOR", QByteArray::number(Ratio));

// Device pixels from `from` along `step`: W white, S blue, ? a blend.
QString pixels(const QImage& image, QPoint from, QPoint step, int count)
{
    QString out;
    for (QPoint p = from; count-- > 0; p += step)
        out += image.pixel(p) == QColor(Qt::white).rgb() ? 'W' : image.pixel(p) == QColor(Qt::blue).rgb() ? 'S' : '?';
    return out;
}
} // namespace

class TestHiDpi : public QObject
{
    Q_OBJECT
    std::unique_ptr<Window> w_;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(scaled);
        w_ = std::make_unique<Window>(wdl({"clk { A I Default NRZ 0 1 50 } = 0 5 1 5 0 10;"}));
        QCOMPARE(w_->gui->devicePixelRatioF(), qreal(Ratio));
        (*w_)->color_back = Qt::white;
        (*w_)->color_signal = Qt::blue;
        (*w_)->Refresh();
    }
    void cleanupTestCase() { w_.reset(); }

    // Grabbed and rendered at ratio 2: the edge at 5 is device columns 200-201, the high level rows 20-21.
    void edgesAreWholeDevicePixels_data()
    {
        QTest::addColumn<bool>("grab");
        QTest::newRow("window grab") << true;
        QTest::newRow("render at ratio 2") << false;
    }
    void edgesAreWholeDevicePixels()
    {
        QFETCH(bool, grab);
        WaveView* view = w_->view();
        QImage image = grab ? view->grab().toImage() : QImage(view->size() * Ratio, QImage::Format_RGB32);
        if (!grab) {
            image.setDevicePixelRatio(Ratio);
            image.fill(Qt::magenta);
            view->render(&image);
        }
        QCOMPARE(image.size(), view->size() * Ratio);
        QCOMPARE(pixels(image, {196, 50}, {1, 0}, 8) + ' ' + pixels(image, {300, 16}, {0, 1}, 8), "WWWWSSWW WWWWSSWW");
        // The ruler's bottom, below the labels: ink and background only.
        const QImage ruler = (*w_)->rulerView()->grab().toImage();
        QCOMPARE(ruler.size(), (*w_)->rulerView()->size() * Ratio);
        QSet<QRgb> colours;
        for (int x = 0; x < ruler.width(); ++x)
            colours.insert(ruler.pixel(x, ruler.height() - 3));
        QCOMPARE(colours.size(), 2);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestHiDpi)

#include "test_hidpi.moc"
