// The ruler: ticks and labels, a marked range, the mouse position.
#include "rulerview.h"
#include "vokgui.h"

#include <QImage>
#include <QMouseEvent>
#include <QtTest>

#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <memory>

using namespace kesu::toolvok;

namespace {
const QColor Back(255, 255, 255);
const QColor Ink(0, 0, 128);
const QColor Black(Qt::black);

int count(const QImage& image, const QColor& color, int x0, int y0, int x1, int y1)
{
    int n = 0;
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x)
            n += image.pixel(x, y) == color.rgb();
    return n;
}

void expect(const QImage& image, std::initializer_list<std::tuple<int, int, QColor>> points)
{
    for (const auto& [x, y, color] : points)
        QVERIFY2(image.pixel(x, y) == color.rgb(), qPrintable(QStringLiteral("pixel %1, %2").arg(x).arg(y)));
}
} // namespace

class TestRulerView : public QObject
{
    Q_OBJECT

    std::unique_ptr<VokGUI> gui_;
    RulerView* ruler_ = nullptr;

    void setView(quint64 start, quint64 step)
    {
        gui_->setStartTime(start);
        gui_->changeStep(step);
    }
    // The ruler 600 x 50, its time axis from x 100.
    QImage paintRuler()
    {
        QImage image(ruler_->size(), QImage::Format_RGB32);
        image.fill(Qt::magenta);
        ruler_->render(&image);
        return image;
    }
    void send(QEvent::Type type, Qt::MouseButton button, QPoint pos)
    {
        const Qt::MouseButtons buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
        QMouseEvent event(type, QPointF(pos), ruler_->mapToGlobal(QPointF(pos)), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(ruler_, &event);
    }

private Q_SLOTS:
    void initTestCase()
    {
        gui_ = toolfixture::laidOutTool();
        ruler_ = gui_->rulerView();
        ruler_->resize(600, 50);
        QImage settle(8, 8, QImage::Format_RGB32);
        ruler_->render(&settle);
        QCOMPARE(ruler_->size(), QSize(600, 50));
    }
    void init()
    {
        gui_->color_names = Ink;
        ruler_->setPalette(QPalette(Back));
        ruler_->originX = 100;
        ruler_->mouseX = 400;
        ruler_->rangeActive = false;
    }
    void cleanupTestCase() { gui_.reset(); }

    void rulerTicksFromTheStart_data()
    {
        QTest::addColumn<quint64>("start");
        QTest::addColumn<int>("minors");
        QTest::addColumn<quint64>("labelStart");
        QTest::newRow("on the grid") << quint64(100) << 0 << quint64(0);
        QTest::newRow("start 10") << quint64(10) << 9 << quint64(0);
        QTest::newRow("start 15") << quint64(15) << 9 << quint64(5);
        QTest::newRow("start 55") << quint64(55) << 5 << quint64(5);
        QTest::newRow("start 1230") << quint64(1230) << 7 << quint64(1200);
    }
    void rulerTicksFromTheStart()
    {
        QFETCH(quint64, start);
        QFETCH(int, minors);
        QFETCH(quint64, labelStart);
        setView(start, 10);
        const QImage img = paintRuler();
        // Height 50, half 25: minor ticks from y 40, major ticks from y 35.
        for (int i = 0; i < minors; ++i) {
            const int x = 100 + 20 * i;
            expect(img, {{x, 45, Ink}, {x, 37, Back}, {x + 10, 45, Back}});
        }
        const int major = 100 + 20 * minors;
        expect(img, {{major, 37, Ink}, {major + 200, 37, Ink}, {major + 20, 37, Back}});
        // Its label equals the label of the same time elsewhere.
        setView(labelStart, 10);
        const QImage reference = paintRuler();
        expect(reference, {{300, 37, Ink}});
        const QImage label = img.copy(major - 20, 0, 40, 34);
        QVERIFY(count(label, Back, 0, 0, 39, 33) < 40 * 34 - 20);
        QCOMPARE(label, reference.copy(300 - 20, 0, 40, 34));
        QVERIFY(label != reference.copy(100 - 20, 0, 40, 34));
    }

    void rulerMarksARange()
    {
        setView(0, 10);
        ruler_->rangeActive = true;
        ruler_->rangeStart = 50;
        ruler_->rangeEnd = 20;
        QImage img = paintRuler();
        // Black inside the white outline of each marked step.
        for (int x : {150, 170, 190})
            expect(img, {{x, 45, Black}, {140, 45, Back}, {210, 45, Back}});
        ruler_->rangeEnd = 50;
        img = paintRuler();
        QCOMPARE(count(img, Black, 100, 36, 599, 48), 0);
    }

    void rulerMouse()
    {
        setView(1000, 10);
        send(QEvent::MouseMove, Qt::NoButton, QPoint(40, 10));
        QCOMPARE(ruler_->mouseX, 0);
        send(QEvent::MouseMove, Qt::NoButton, QPoint(175, 10));
        QCOMPARE(ruler_->mouseX, 75);
        // Outside zoom mode a range ends at the first move.
        send(QEvent::MouseButtonPress, Qt::LeftButton, QPoint(150, 10));
        QVERIFY(ruler_->rangeActive);
        QCOMPARE(ruler_->rangeStart, quint64(1020));
        send(QEvent::MouseMove, Qt::NoButton, QPoint(210, 10));
        QVERIFY(!ruler_->rangeActive);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestRulerView)

#include "test_rulerview.moc"
