// Random edits through the tool window, checked against the one property
// that every edit must keep: undoing everything gives back the file as it was
// loaded, and redoing everything gives back the file as it was after the
// edits. A summary of the document is recorded after every push as well, so a
// failing undo or redo is pinned to the edit that made its command.
//
// A failure names the file, the seed and the step; run the test with
// VOK_RANDOMEDITS_SEED=<seed> (and optionally VOK_RANDOMEDITS_STEPS=<n>) to
// replay that one sequence with a trace of every operation.
#include "vokgui.h"
#include "undocommands.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSet>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QTextStream>
#include <QtTest>

#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

namespace {

// Every field of the document that the saved text shows, and whether each
// wave is shown. Much cheaper than saving, so it can follow every step.
QByteArray summary(const VokGUI& gui)
{
    const WaveformData* doc = gui.document();
    QByteArray out;
    QTextStream s(&out);
    s << doc->masterClockMult << ' ' << doc->smallestUnit << ' ' << doc->autoAssign << ' ' << doc->decimals << ' '
      << doc->endTime << '\n';
    for (const WaveData* w : doc->waves) {
        s << w->name << (w->visible ? "" : " hidden") << " {" << w->group << ' ' << w->polarity << ' ' << w->waveType
          << ' ' << w->offset << ' ' << w->formatValue << ' ' << w->formatRatio << ' ' << w->isPattern << ' '
          << w->isBus << ' ' << w->busWidth << "} =";
        for (const Pattern* p : w->patterns)
            s << (p->forever ? " (" : " ") << p->value.c_str() << ' ' << p->duration;
        s << '\n';
    }
    s.flush();
    return out;
}

// The first line where two texts part, for the failure message.
QString firstDifference(const QByteArray& expected, const QByteArray& actual)
{
    const QList<QByteArray> a = expected.split('\n');
    const QList<QByteArray> b = actual.split('\n');
    for (qsizetype i = 0; i < qMax(a.size(), b.size()); ++i) {
        const QByteArray x = a.value(i), y = b.value(i);
        if (x != y)
            return QStringLiteral("line %1\n  expected: %2\n  actual:   %3")
                .arg(i + 1)
                .arg(QString::fromUtf8(x), QString::fromUtf8(y));
    }
    return QStringLiteral("(no line differs)");
}

class RandomEditor
{
public:
    RandomEditor(VokGUI& gui, quint32 seed, bool trace) : gui_(gui), rng_(seed), trace_(trace)
    {
        // Moves hold their wave by pointer; see move().
        for (WaveData* wave : std::as_const(gui.document()->waves))
            loaded_.insert(wave);
    }

    // Applies one random operation and returns its description and the
    // number of commands that it must have pushed.
    QString step(int& expectedPushes)
    {
        expectedPushes = 0;
        for (;;) {
            QString what;
            const int pick = int(rng_.bounded(100));
            bool done;
            if (pick < 12)
                done = extend(what, expectedPushes);
            else if (pick < 22)
                done = clear(what, expectedPushes);
            else if (pick < 30)
                done = cut(what, expectedPushes);
            else if (pick < 40)
                done = copy(what, expectedPushes);
            else if (pick < 54)
                done = paste(what, expectedPushes);
            else if (pick < 58)
                done = duplicate(what, expectedPushes);
            else if (pick < 63)
                done = hide(what, expectedPushes);
            else if (pick < 68)
                done = show(what, expectedPushes);
            else if (pick < 78)
                done = move(what, expectedPushes);
            else if (pick < 86)
                done = forever(what, expectedPushes);
            else if (pick < 93)
                done = changeType(what, expectedPushes);
            else
                done = changeOffset(what, expectedPushes);
            if (done) {
                if (trace_)
                    qInfo().noquote() << what;
                return what;
            }
        }
    }

private:
    int rows() const { return gui_.waveList()->itemModel()->rowCount(); }

    // Picks a row of the name list as a click on it would: the row becomes
    // current and its wave the active wave.
    WaveData* pickRow(int& row)
    {
        if (rows() == 0)
            return nullptr;
        row = int(rng_.bounded(rows()));
        WaveData* wave = gui_.waveList()->waveAt(row);
        const QModelIndex index = gui_.waveList()->itemModel()->index(row, 0);
        gui_.waveList()->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        gui_.setActiveWave(wave);
        gui_.selection().clear();
        return wave;
    }

    // Selects a run of up to four neighbouring segments of a wave, as a drag
    // across them would.
    WaveData* pickRun(qsizetype& from, qsizetype& count)
    {
        int row;
        WaveData* wave = pickRow(row);
        if (!wave || wave->patterns.isEmpty())
            return nullptr;
        const qsizetype n = wave->patterns.size();
        from = rng_.bounded(n);
        count = 1 + qsizetype(rng_.bounded(qMin<qsizetype>(4, n - from)));
        gui_.selection() = wave->patterns.mid(from, count);
        return wave;
    }

    static QString runText(const WaveData* wave, qsizetype from, qsizetype count)
    {
        return QStringLiteral("%1 [%2, %3) of %4").arg(wave->name).arg(from).arg(from + count).arg(wave->patterns.size());
    }

    bool extend(QString& what, int& pushes)
    {
        int row;
        WaveData* wave = pickRow(row);
        if (!wave)
            return false;
        // Now and then a click right at the end, which adds nothing but is
        // still one undo step.
        const quint64 gap = rng_.bounded(10) == 0 ? 0 : 1 + rng_.bounded(300);
        const quint64 time = wave->getEndTime() + gap;
        what = QStringLiteral("extend %1 by %2").arg(wave->name).arg(gap);
        gui_.addEditData(time);
        pushes = 1;
        return true;
    }

    bool clear(QString& what, int& pushes)
    {
        qsizetype from, count;
        WaveData* wave = pickRun(from, count);
        if (!wave)
            return false;
        what = QStringLiteral("clear ") + runText(wave, from, count);
        gui_.clearData();
        pushes = 1;
        return true;
    }

    bool cut(QString& what, int& pushes)
    {
        qsizetype from, count;
        WaveData* wave = pickRun(from, count);
        if (!wave)
            return false;
        what = QStringLiteral("cut ") + runText(wave, from, count);
        gui_.cutData();
        pushes = 1;
        return true;
    }

    bool copy(QString& what, int& pushes)
    {
        qsizetype from, count;
        WaveData* wave = pickRun(from, count);
        if (!wave)
            return false;
        what = QStringLiteral("copy ") + runText(wave, from, count);
        gui_.copyData();
        pushes = 0;
        return true;
    }

    bool paste(QString& what, int& pushes)
    {
        const QList<Pattern*>& clip = gui_.clipboard();
        const WaveData* source = clip.isEmpty() ? nullptr : clip.first()->wave;
        auto fitsOn = [source](const WaveData* wave) {
            return source && source->isBus == wave->isBus && (!wave->isBus || source->busWidth == wave->busWidth);
        };
        // Mostly onto a wave that takes the clipboard, now and then onto any.
        qsizetype from, count;
        WaveData* wave = nullptr;
        for (int tries = rng_.bounded(4) == 0 ? 1 : 8; tries > 0; --tries) {
            wave = pickRun(from, count);
            if (wave && fitsOn(wave))
                break;
        }
        if (!wave)
            return false;
        const bool fits = fitsOn(wave);
        what = QStringLiteral("paste %1 (%2) over ").arg(clip.size()).arg(gui_.isFromCut() ? "cut" : "copied")
            + runText(wave, from, count) + (fits ? QString() : QStringLiteral(", refused"));
        gui_.pasteData();
        pushes = fits ? 1 : 0;
        return true;
    }

    bool duplicate(QString& what, int& pushes)
    {
        int row;
        WaveData* wave = pickRow(row);
        if (!wave || gui_.document()->waves.size() >= 40)
            return false;
        what = QStringLiteral("duplicate ") + wave->name;
        gui_.dupWave();
        pushes = 1;
        return true;
    }

    bool hide(QString& what, int& pushes)
    {
        if (rows() <= 2)
            return false;
        int row;
        WaveData* wave = pickRow(row);
        if (!wave)
            return false;
        what = QStringLiteral("hide ") + wave->name;
        gui_.hideWave();
        pushes = 1;
        return true;
    }

    bool show(QString& what, int& pushes)
    {
        QList<WaveData*> hidden;
        for (WaveData* wave : std::as_const(gui_.document()->waves)) {
            if (!wave->visible && rng_.bounded(2) == 0)
                hidden.append(wave);
        }
        if (hidden.isEmpty())
            return false;
        what = QStringLiteral("show %1 waves").arg(hidden.size());
        gui_.undoStack()->push(new ShowWaveCommand(hidden, &gui_));
        pushes = 1;
        return true;
    }

    // A drag from one row to another, as the name list pushes it. The command
    // holds its wave by pointer, while redoing a duplication adds a fresh copy
    // of the duplicate: a move of a duplicate therefore finds no wave to move
    // once the duplication was undone and redone. Only waves that were loaded
    // (and so are never replaced) are dragged; any wave may be the target.
    bool move(QString& what, int& pushes)
    {
        if (rows() < 2)
            return false;
        int from;
        WaveData* wave = pickRow(from);
        if (!loaded_.contains(wave))
            return false;
        int to = int(rng_.bounded(rows() - 1));
        if (to >= from)
            ++to;
        what = QStringLiteral("move %1 from row %2 to row %3").arg(wave->name).arg(from).arg(to);
        gui_.undoStack()->push(new moveWaveCommand(wave, from, to, &gui_));
        pushes = 1;
        return true;
    }

    // The forever box of the pulse properties: the first selected pulse
    // starts the tail, or the tail is switched off.
    //
    // Only waves without a tail get one: the command's redo re-applies the
    // new index to the wave as it then is and never clears the mark of the
    // old tail (the caller clears it on the live wave before the first push),
    // so redoing a change of an existing tail after its undo leaves the old
    // mark standing. That is how the command is meant to work.
    bool forever(QString& what, int& pushes)
    {
        int row;
        WaveData* wave = pickRow(row);
        if (!wave || wave->isPattern || wave->foreverIndex != -1 || wave->patterns.size() < 2)
            return false;
        // The box is enabled for a selection of several pulses that ends at
        // the wave's last pulse.
        const int index = int(rng_.bounded(wave->patterns.size() - 1));
        what = QStringLiteral("forever %1 from %2 of %3").arg(wave->name).arg(index).arg(wave->patterns.size());
        gui_.undoStack()->push(new ForeverCommand(wave, index, &gui_));
        pushes = 1;
        return true;
    }

    // The waveform properties view: named patterns have no type or offset to
    // change there, and a wave never becomes a named pattern in this test,
    // since that renames it for good.
    bool changeType(QString& what, int& pushes)
    {
        int row;
        WaveData* wave = pickRow(row);
        if (!wave || wave->isPattern || wave->polarity == 5)
            return false;
        const int old = wave->polarity;
        int type = int(rng_.bounded(4));
        if (type >= old)
            ++type;
        what = QStringLiteral("type of %1 from %2 to %3").arg(wave->name).arg(old).arg(type);
        wave->polarity = type;
        gui_.undoStack()->push(new NodeParaCommand(wave, old, static_cast<int>(wave->offset), &gui_));
        pushes = 1;
        return true;
    }

    // Offsets stay far below 2^31, which the command keeps in 32 bits.
    bool changeOffset(QString& what, int& pushes)
    {
        int row;
        WaveData* wave = pickRow(row);
        if (!wave || wave->isPattern || wave->polarity == 5)
            return false;
        const quint64 old = wave->offset;
        const quint64 offset = rng_.bounded(1000);
        if (offset == old)
            return false;
        what = QStringLiteral("offset of %1 from %2 to %3").arg(wave->name).arg(old).arg(offset);
        wave->offset = offset;
        gui_.undoStack()->push(new NodeParaCommand(wave, wave->polarity, static_cast<int>(old), &gui_));
        pushes = 1;
        return true;
    }

    VokGUI& gui_;
    QRandomGenerator rng_;
    bool trace_;
    QSet<const WaveData*> loaded_;
};

} // namespace

class TestRandomEdits : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void undoRedoRestoresText_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<int>("steps");

        const QByteArray fixed = qgetenv("VOK_RANDOMEDITS_SEED");
        bool stepsOk = false;
        const int steps = qEnvironmentVariableIntValue("VOK_RANDOMEDITS_STEPS", &stepsOk);
        QList<quint32> seeds{1, 2, 3, 20240611};
        if (!fixed.isEmpty())
            seeds = {fixed.toUInt()};
        for (const char* file : {"counter.wdl", "cpu_bus.wdl"}) {
            for (quint32 seed : seeds) {
                QTest::addRow("%s seed %u", file, seed)
                    << QString::fromLatin1(file) << seed << (stepsOk ? steps : 300);
            }
        }
    }

    void undoRedoRestoresText()
    {
        QFETCH(QString, file);
        QFETCH(quint32, seed);
        QFETCH(int, steps);
        QVERIFY(m_dir.isValid());
        const QString path = m_dir.filePath(file);
        QVERIFY(copyWritable(exampleFile(file), path));

        QString project;
        VokGUI gui(nullptr, QStringList{path}, project, true);
        QVERIFY(gui.initialize());
        QVERIFY(!gui.document()->waves.isEmpty());
        gui.action(VokGUI::ActEditMode)->setChecked(true);
        QCOMPARE(gui.mode(), int(VokGUI::ModeEdit));
        QUndoStack* stack = gui.undoStack();
        QCOMPARE(stack->count(), 0);

        const bool trace = !qEnvironmentVariableIsEmpty("VOK_RANDOMEDITS_SEED");
        const QString replay = QStringLiteral("%1, seed %2 (replay: VOK_RANDOMEDITS_SEED=%2)").arg(file).arg(seed);

        // states[i]: the document with i commands on the stack; made[i]: the
        // operation that pushed command i.
        const QByteArray original = savedText(gui);
        QList<QByteArray> states{summary(gui)};
        QStringList made{QString()};
        RandomEditor editor(gui, seed, trace);
        for (int step = 0; step < steps; ++step) {
            int expected = 0;
            const int before = stack->count();
            const QString what = editor.step(expected);
            const QString where = QStringLiteral("%1, step %2: %3").arg(replay).arg(step).arg(what);
            QVERIFY2(stack->count() == before + expected && stack->index() == stack->count(),
                     qPrintable(QStringLiteral("%1: %2 commands pushed, %3 expected")
                                    .arg(where).arg(stack->count() - before).arg(expected)));
            if (expected) {
                states.append(summary(gui));
                made.append(where);
            }
        }
        const int pushes = stack->count();
        QCOMPARE(pushes, states.size() - 1);
        const QByteArray edited = savedText(gui);

        // Twice: a command that was undone and redone must undo as well as it
        // did the first time.
        for (int round = 1; round <= 2; ++round) {
            for (int i = pushes; i > 0; --i) {
                QCOMPARE(stack->index(), i);
                gui.undo();
                const QByteArray now = summary(gui);
                QVERIFY2(now == states.at(i - 1),
                         qPrintable(QStringLiteral("undo (round %1) of %2 leaves another document: %3")
                                        .arg(round).arg(made.at(i), firstDifference(states.at(i - 1), now))));
            }
            QVERIFY(!stack->canUndo());
            const QByteArray undone = savedText(gui);
            QVERIFY2(undone == original, qPrintable(QStringLiteral("%1, undo all (round %2): %3")
                                                        .arg(replay).arg(round).arg(firstDifference(original, undone))));

            for (int i = 1; i <= pushes; ++i) {
                gui.redo();
                QCOMPARE(stack->index(), i);
                const QByteArray now = summary(gui);
                QVERIFY2(now == states.at(i),
                         qPrintable(QStringLiteral("redo (round %1) of %2 leaves another document: %3")
                                        .arg(round).arg(made.at(i), firstDifference(states.at(i), now))));
            }
            QVERIFY(!stack->canRedo());
            const QByteArray redone = savedText(gui);
            QVERIFY2(redone == edited, qPrintable(QStringLiteral("%1, redo all (round %2): %3")
                                                      .arg(replay).arg(round).arg(firstDifference(edited, redone))));
        }
        QVERIFY(original != edited);
    }
};

VOK_SANDBOXED_TEST_MAIN(TestRandomEdits)
#include "test_randomedits.moc"
