// The ruler: ticks and labels, a marked range, the mouse position.
#include "guifixture.h"

using namespace guitest;

namespace {
const QColor Back(255, 255, 255);
const QColor Ink(0, 0, 128);
const QColor Black(Qt::black);
} // namespace

class TestRulerView : public QObject
{
    Q_OBJECT

    std::unique_ptr<VokGUI> gui_;
    RulerView* ruler_ = nullptr;

    void setView(quint64 start, quint64 step) { guitest::setView(*gui_, start, step); }
    // The ruler 600 x 50, its time axis from x 100.
    QImage paintRuler()
    {
        QImage image(ruler_->size(), QImage::Format_RGB32);
        image.fill(Qt::magenta);
        ruler_->render(&image);
        return image;
    }
    // The mouse moved to x with no button down.
    void move(int x)
    {
        const QPointF pos(x, 10);
        QMouseEvent event(QEvent::MouseMove, pos, ruler_->mapToGlobal(pos), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(ruler_, &event);
    }

private Q_SLOTS:
    void initTestCase()
    {
        gui_ = toolfixture::laidOutTool();
        ruler_ = gui_->rulerView();
        ruler_->resize(600, 50);
        paintRuler();
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
        addColumns<quint64, int, quint64>({"start", "minors", "labelStart"});
        const std::tuple<quint64, int, quint64> rows[] = {{100, 0, 0}, {10, 9, 0}, {15, 9, 5}, {55, 5, 5}, {1230, 7, 1200}};
        for (auto [start, minors, labelStart] : rows)
            QTest::addRow("start %llu", start) << start << minors << labelStart;
    }
    void rulerTicksFromTheStart()
    {
        QFETCH(quint64, start); QFETCH(int, minors); QFETCH(quint64, labelStart);
        setView(start, 10);
        const QImage img = paintRuler();
        // Height 50, half 25: minor ticks from y 40, major ticks from y 35.
        for (int i = 0; i < minors; ++i) {
            const int x = 100 + 20 * i;
            expectPixels(img, {{x, 45, Ink}, {x, 37, Back}, {x + 10, 45, Back}});
        }
        const int major = 100 + 20 * minors;
        expectPixels(img, {{major, 37, Ink}, {major + 200, 37, Ink}, {major + 20, 37, Back}});
        // Its label equals the label of the same time elsewhere.
        setView(labelStart, 10);
        const QImage reference = paintRuler();
        expectPixels(reference, {{300, 37, Ink}});
        const QImage label = img.copy(major - 20, 0, 40, 34);
        QVERIFY(count(label, Back, label.rect()) < 40 * 34 - 20);
        QCOMPARE(label, reference.copy(300 - 20, 0, 40, 34));
        QVERIFY(label != reference.copy(100 - 20, 0, 40, 34));
    }

    void rulerMarksARangeAndFollowsTheMouse()
    {
        setView(0, 10);
        ruler_->rangeActive = true;
        ruler_->rangeStart = 50;
        ruler_->rangeEnd = 20;
        const QImage img = paintRuler();
        // Black inside the white outline of each marked step.
        for (int x : {150, 170, 190})
            expectPixels(img, {{x, 45, Black}, {140, 45, Back}, {210, 45, Back}});
        ruler_->rangeEnd = 50;
        QCOMPARE(count(paintRuler(), Black, QRect(100, 36, 500, 13)), 0);
        // The mouse's place on the time axis.
        setView(1000, 10);
        move(40);
        QCOMPARE(ruler_->mouseX, 0);
        move(175);
        QCOMPARE(ruler_->mouseX, 75);
        // Outside zoom mode a range ends at the first move.
        QTest::mousePress(ruler_, Qt::LeftButton, {}, QPoint(150, 10));
        QCOMPARE(std::pair(ruler_->rangeActive, ruler_->rangeStart), std::pair(true, quint64(1020)));
        move(210);
        QVERIFY(!ruler_->rangeActive);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestRulerView)

#include "test_rulerview.moc"
