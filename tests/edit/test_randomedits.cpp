// Random edits through the tool window: undoing and redoing every step gives back each state exactly.
// Replay with VOK_RANDOMEDITS_SEED=<seed> [VOK_RANDOMEDITS_STEPS=<n>], which also traces each step.
#include "undocommands.h"
#include "wavekind.h"

#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <iterator>

#include "guifixture.h"

using namespace guitest;

namespace {

// The saved text, the hidden waves, and whether the name list matches the drawing.
QByteArray summary(const Tool& t)
{
    QByteArray hidden;
    for (const WaveData* w : t->document()->waves)
        hidden += (w->visible ? "" : w->name.toUtf8() + ' ') + (w->indexConsistent() ? "" : "stale index ");
    return t.saved() + "hidden: " + hidden + (t.listRows() == t.drawnRows() ? "" : " names differ");
}

class RandomEditor
{
public:
    RandomEditor(VokGUI& gui, quint32 seed)
        : gui_(gui), rng_(seed), loaded_(gui.document()->waves.cbegin(), gui.document()->waves.cend()) {}

    // Applies one random operation; returns its description and sets the number of commands it must have pushed.
    QString step(int& pushes)
    {
        // Cumulative weights out of 100, one per case below.
        static const int upTo[] = {12, 22, 30, 40, 54, 58, 63, 68, 78, 84, 90, 96, 100};
        for (;;) {
            const int pick = int(rng_.bounded(100));
            const int op = int(std::upper_bound(std::begin(upTo), std::end(upTo), pick) - std::begin(upTo));
            pushes = 1;
            if (const QString what = apply(op, pushes); !what.isEmpty())
                return what;
        }
    }

private:
    int rows() const { return gui_.waveList()->itemModel()->rowCount(); }

    // A click on a row of the name list: current row and active wave.
    WaveData* pickRow(int* chosen = nullptr)
    {
        if (rows() == 0)
            return nullptr;
        const int row = int(rng_.bounded(rows()));
        if (chosen)
            *chosen = row;
        gui_.waveList()->selectionModel()->setCurrentIndex(gui_.waveList()->itemModel()->index(row, 0),
                                                           QItemSelectionModel::ClearAndSelect);
        gui_.setActiveWave(gui_.waveList()->waveAt(row));
        gui_.selection().clear();
        return gui_.waveList()->waveAt(row);
    }

    // A drag across up to four neighbouring segments, now and then every other one.
    WaveData* pickRun(const char* verb, QString& what)
    {
        WaveData* wave = pickRow();
        if (!wave || wave->patterns.isEmpty())
            return nullptr;
        const qsizetype n = wave->patterns.size(), from = rng_.bounded(n);
        const qsizetype count = 1 + qsizetype(rng_.bounded(qMin<qsizetype>(4, n - from)));
        const qsizetype stride = rng_.bounded(4) == 0 ? 2 : 1;
        gui_.selection().clear();
        for (qsizetype i = from; i < from + count; i += stride)
            gui_.selection().append(wave->patterns.at(i));
        what = QStringLiteral("%1 %2 [%3, %4) by %5 of %6").arg(verb, wave->name).arg(from).arg(from + count).arg(stride).arg(n);
        return wave;
    }

    // An empty description: the operation did not apply, pick another.
    QString apply(int op, int& pushes)
    {
        QString what;
        WaveData* wave = nullptr;
        switch (op) {
        case 0: {   // a click past the end; now and then right at it, which adds nothing
            if (!(wave = pickRow()))
                return {};
            const quint64 gap = rng_.bounded(10) == 0 ? 0 : 1 + rng_.bounded(300);
            gui_.addEditData(wave->getEndTime() + gap);
            return QStringLiteral("extend %1 by %2").arg(wave->name).arg(gap);
        }
        case 1:
            return pickRun("clear", what) ? (gui_.clearData(), what) : QString();
        case 2:
            return pickRun("cut", what) ? (gui_.cutData(), what) : QString();
        case 3:
            pushes = 0;
            return pickRun("copy", what) ? (gui_.copyData(), what) : QString();
        case 4: {   // mostly onto a wave that takes the clipboard, now and then onto any
            const QList<Pattern*>& clip = gui_.clipboard();
            const WaveData* source = clip.isEmpty() ? nullptr : clip.first()->wave;
            auto fitsOn = [source](const WaveData* w) {
                return source && source->isBus == w->isBus && (!w->isBus || source->busWidth == w->busWidth);
            };
            for (int tries = rng_.bounded(4) == 0 ? 1 : 8; tries > 0; --tries) {
                wave = pickRun("paste over", what);
                if (wave && fitsOn(wave))
                    break;
            }
            if (!wave)
                return {};
            pushes = fitsOn(wave) ? 1 : 0;
            what += QStringLiteral(" (%1 %2)").arg(clip.size()).arg(gui_.isFromCut() ? "cut" : "copied");
            gui_.pasteData();
            return what;
        }
        case 5:
            if (!(wave = pickRow()) || gui_.document()->waves.size() >= 40)
                return {};
            gui_.dupWave();
            return QStringLiteral("duplicate ") + wave->name;
        case 6:
            if (rows() <= 2 || !(wave = pickRow()))
                return {};
            gui_.hideWave();
            return QStringLiteral("hide ") + wave->name;
        case 7: {
            QList<WaveData*> hidden;
            for (WaveData* w : std::as_const(gui_.document()->waves)) {
                if (!w->visible && rng_.bounded(2) == 0)
                    hidden.append(w);
            }
            if (hidden.isEmpty())
                return {};
            gui_.undoStack()->push(new ShowWaveCommand(hidden, &gui_));
            return QStringLiteral("show %1 waves").arg(hidden.size());
        }
        case 8: {   // the command holds its wave by pointer; a redone duplication makes a new one: drag loaded ones
            int from = 0;
            if (rows() < 2 || !loaded_.contains(wave = pickRow(&from)))
                return {};
            int to = int(rng_.bounded(rows() - 1));
            to += to >= from;
            gui_.undoStack()->push(new moveWaveCommand(wave, from, to, &gui_));
            return QStringLiteral("move %1 from row %2 to row %3").arg(wave->name).arg(from).arg(to);
        }
        case 9: {   // only onto waves without a tail: redo never clears an old tail's mark (callers do, before pushing)
            if (!(wave = pickRow()) || wave->isPattern || wave->foreverIndex != -1 || wave->patterns.size() < 2)
                return {};
            const int index = int(rng_.bounded(wave->patterns.size() - 1));
            gui_.undoStack()->push(new ForeverCommand(wave, index, &gui_));
            return QStringLiteral("forever %1 from %2").arg(wave->name).arg(index);
        }
        case 10: {   // never to a named pattern, which renames the wave for good
            if (!(wave = pickRow()) || wave->isPattern || wave->polarity == WaveKind::Pattern)
                return {};
            const int old = wave->polarity;
            int type = int(rng_.bounded(4));
            type += type >= old;
            wave->polarity = type;
            gui_.undoStack()->push(new NodeParaCommand(wave, old, static_cast<int>(wave->offset), &gui_));
            return QStringLiteral("type of %1 from %2 to %3").arg(wave->name).arg(old).arg(type);
        }
        default: {   // a double click on a bus row, which expands or collapses it
            int row = 0;
            if (!(wave = pickRow(&row)) || !wave->isBus)
                return {};
            pushes = 0;
            wave->expandFlag = !wave->expandFlag;
            gui_.waveList()->expandBus(gui_.waveList()->itemModel()->index(row, 0));
            return (wave->expandFlag ? QStringLiteral("expand ") : QStringLiteral("collapse ")) + wave->name;
        }
        case 11: {   // offsets stay far below 2^31
            if (!(wave = pickRow()) || wave->isPattern || wave->polarity == WaveKind::Pattern)
                return {};
            const quint64 offset = rng_.bounded(1000);
            const int old = static_cast<int>(wave->offset);
            if (offset == wave->offset)
                return {};
            wave->offset = offset;
            gui_.undoStack()->push(new NodeParaCommand(wave, wave->polarity, old, &gui_));
            return QStringLiteral("offset of %1 from %2 to %3").arg(wave->name).arg(old).arg(offset);
        }
        }
    }

    VokGUI& gui_;
    QRandomGenerator rng_;
    QSet<const WaveData*> loaded_;
};

} // namespace

class TestRandomEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void undoRedoRestoresText_data()
    {
        addColumns<QString, quint32, int>({"file", "seed", "steps"});
        const QByteArray fixed = qgetenv("VOK_RANDOMEDITS_SEED");
        const int steps = qEnvironmentVariableIntValue("VOK_RANDOMEDITS_STEPS");
        const QList<quint32> seeds = fixed.isEmpty() ? QList<quint32>{1, 2, 3, 20240611} : QList<quint32>{fixed.toUInt()};
        for (const char* file : {"counter.wdl", "cpu_bus.wdl"}) {
            for (quint32 seed : seeds)
                QTest::addRow("%s seed %u", file, seed) << QString::fromLatin1(file) << seed << (steps > 0 ? steps : 300);
        }
    }

    void undoRedoRestoresText()
    {
        QFETCH(QString, file); QFETCH(quint32, seed); QFETCH(int, steps);
        Tool t(toolfixture::readFile(toolfixture::exampleFile(file)));
        t.editMode(true);
        QUndoStack* stack = t->undoStack();
        const QString replay = QStringLiteral("%1, seed %2 (replay: VOK_RANDOMEDITS_SEED=%2)").arg(file).arg(seed);
        // states[i]: the document with i commands on the stack; made[i]: what pushed command i.
        QList<QByteArray> states{summary(t)};
        QStringList made{QString()};
        RandomEditor editor(*t.gui, seed);
        const bool trace = !qEnvironmentVariableIsEmpty("VOK_RANDOMEDITS_SEED");
        for (int step = 0; step < steps; ++step) {
            int expected = 0;
            const int before = stack->count();
            const QString where = QStringLiteral("%1, step %2: %3").arg(replay).arg(step).arg(editor.step(expected));
            if (trace)
                qInfo().noquote() << where;
            QVERIFY2(stack->count() == before + expected && stack->index() == stack->count(),
                     qPrintable(QStringLiteral("%1: %2 commands pushed, %3 expected")
                                    .arg(where).arg(stack->count() - before).arg(expected)));
            if (expected) {
                states.append(summary(t));
                made.append(where);
            }
        }
        const int pushes = stack->count();
        QVERIFY(states.first() != states.last());
        // Twice: a command undone and redone must undo as well as the first time.
        for (int round = 1; round <= 2; ++round) {
            for (int i = pushes; i > 0; --i) {
                t->undo();
                QVERIFY2(summary(t) == states.at(i - 1), qPrintable(QStringLiteral("undo of ") + made.at(i)));
            }
            for (int i = 1; i <= pushes; ++i) {
                t->redo();
                QVERIFY2(summary(t) == states.at(i), qPrintable(QStringLiteral("redo of ") + made.at(i)));
            }
        }
    }
};

VOK_SANDBOXED_TEST_MAIN(TestRandomEdits)
#include "test_randomedits.moc"
