// A tool window killed mid-edit in a child: the next start offers its copy.
#include "recoverycopy.h"
#include "vokgui.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

class TestRecovery : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_project;

private Q_SLOTS:
    void initTestCase()
    {
        // The program's data folder, where the child leaves its copies.
        QApplication::setApplicationName(QStringLiteral("waveform-editor"));
        QApplication::setOrganizationName(QStringLiteral("Vostranelle"));
    }

    void killedMidEdit_data()
    {
        QTest::addColumn<bool>("untitled");
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("answer");   // 0: no offer
        QTest::newRow("named, restore") << false << "crash" << int(QMessageBox::Yes);
        QTest::newRow("named, discard") << false << "crash" << int(QMessageBox::No);
        QTest::newRow("untitled, restore") << true << "crash" << int(QMessageBox::Yes);
        QTest::newRow("named, clean quit") << false << "clean" << 0;
    }
    void killedMidEdit()
    {
        QFETCH(bool, untitled);
        QFETCH(QString, end);
        QFETCH(int, answer);
        const QString file = m_dir.filePath(QStringLiteral("counter.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), file));
        const QByteArray original = readFile(file);

        QProcess child;
        child.start(QStringLiteral(VOK_RECOVERYCHILD_PATH), {untitled ? QStringLiteral("-") : file, end});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus() == QProcess::CrashExit, end == QLatin1String("crash"));
        const QByteArray edited = child.readAllStandardOutput();
        QVERIFY(edited.contains("%ENDTIME"));
        QCOMPARE(readFile(file), original);

        QList<Answer> answers;
        if (answer)
            answers << press(QMessageBox::StandardButton(answer));
        ModalAnswerer answerer(answers);
        const QDateTime started = QDateTime::currentDateTime();
        const auto gui = laidOutTool();
        VERIFY_ANSWERED(answerer);
        if (!answer) {
            QVERIFY(answerer.seen.isEmpty());
            QVERIFY(QDir(RecoveryCopy::folder()).isEmpty());
            return;
        }
        const QString text = answerer.seen.value(0).text;
        QVERIFY2(text.contains(untitled ? QStringLiteral("\"Untitled 1\"") : '"' + file + '"'), qPrintable(text));
        const QDateTime written =
            QDateTime::fromString(text.section(QStringLiteral(" kept at "), 1).chopped(1), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        QVERIFY2(written.isValid() && written.secsTo(started) >= 0 && written.secsTo(started) < 60, qPrintable(text));

        const bool restored = answer == QMessageBox::Yes;
        QCOMPARE(savedText(*gui), restored ? edited : formatWaveform(WaveformData()));
        QCOMPARE(gui->isModified(), restored);
        QCOMPARE(gui->fullFileName(), restored && !untitled ? file : QString());
        // Nothing is offered twice.
        ModalAnswerer none({});
        const auto next = laidOutTool();
        QVERIFY(none.seen.isEmpty());
        QCOMPARE(QDir(RecoveryCopy::folder()).entryList({"*.json"}).size(), restored ? 1 : 0);
        if (restored && !untitled) {   // saved, the copy goes
            QVERIFY(gui->onSave());
            QCOMPARE(readFile(file), edited);
            QVERIFY(QDir(RecoveryCopy::folder()).entryList({"*.json"}).isEmpty());
        }
    }

    // A copy is written no sooner and no more often than the interval after a change.
    void interval()
    {
        int written = 0;
        RecoveryCopy copy([&written] { ++written; return RecoveryCopy::Document{{}, QStringLiteral("t"), {}, "x"}; },
                          nullptr);
        copy.setInterval(300);
        copy.changed();
        QTest::qWait(100);
        copy.changed();
        QCOMPARE(written, 0);
        QTRY_COMPARE(written, 1);
        copy.changed();
        QTest::qWait(100);
        QCOMPARE(written, 1);
        QTRY_COMPARE(written, 2);
        copy.discard();
        QVERIFY(QDir(RecoveryCopy::folder()).entryList(QDir::Files).isEmpty());
    }
};

VOK_SANDBOXED_TEST_MAIN(TestRecovery)

#include "test_recovery.moc"
