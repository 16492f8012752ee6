// At 200 % the wave view and the ruler paint whole device pixels, never a blurring blend.
#include "rulerview.h"
#include "vokgui.h"
#include "waveview.h"

#include <QtTest>

#include "toolfixture.h"

using namespace kesu::toolvok;

namespace {
constexpr int Ratio = 2;

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
        gui_->color_back = Qt::white;
        gui_->color_signal = Qt::blue;
        gui_->Refresh();
        gui_->setStartTime(0);
        gui_->changeStep(1);
    }
    void cleanupTestCase() { gui_.reset(); }

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
        WaveView* view = gui_->waveView();
        QImage image = grab ? view->grab().toImage() : QImage(view->size() * Ratio, QImage::Format_RGB32);
        if (!grab) {
            image.setDevicePixelRatio(Ratio);
            image.fill(Qt::magenta);
            view->render(&image);
        }
        QCOMPARE(image.size(), view->size() * Ratio);
        QCOMPARE(pixels(image, {196, 50}, {1, 0}, 8), QStringLiteral("WWWWSSWW"));
        QCOMPARE(pixels(image, {300, 16}, {0, 1}, 8), QStringLiteral("WWWWSSWW"));
    }

    // The ruler's bottom, below the labels: ink and background only.
    void rulerIsWholeDevicePixels()
    {
        const QImage image = gui_->rulerView()->grab().toImage();
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
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    TestHiDpi test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_hidpi.moc"
