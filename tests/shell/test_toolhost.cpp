#include "toolhost.h"
#include "vokgui.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "modalanswerer.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

using namespace kesu::toolvok;
using namespace toolfixture;

namespace {
// Lets windows closed with delete-on-close actually go.
void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

class TestToolHost : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;
    QString m_project;
    int m_made = 0;

    ToolHost::Factory hostedTools()
    {
        return [this](const QStringList& files) -> BasGUITool* {
            ++m_made;
            auto* tool = new VokGUI(nullptr, files, m_project, false);
            tool->initialize();
            tool->resize(800, 500);
            return tool;
        };
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
        m_made = 0;
    }

    void cleanup()
    {
        QVERIFY(!QApplication::activeModalWidget());
    }

    void newAndOpenBringFurtherWindows()
    {
        ToolHost host(hostedTools());
        QSignalSpy raised(&host, &ToolHost::toolRaised);
        const int n = VokGUI::untitledCounter();

        auto* first = qobject_cast<VokGUI*>(host.open({}));
        QVERIFY(first);
        QVERIFY(!first->isStandalone());
        QVERIFY(first->isVisible());
        QCOMPARE(first->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n));

        // New: the document stays, a second window brings the new one, and
        // nothing is asked (the first one is not being closed).
        {
            ModalAnswerer answerer({});
            first->sharedAction(QStringLiteral("new"))->trigger();
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
        }
        QCOMPARE(host.tools().size(), 2);
        auto* second = qobject_cast<VokGUI*>(host.tools().at(1));
        QVERIFY(second);
        QVERIFY(second->isVisible());
        QCOMPARE(second->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n + 1));
        QCOMPARE(first->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n));
        QCOMPARE(second->pos(), first->pos() + QPoint(30, 30));

        // Open: the chosen file comes up in a third window.
        {
            ModalAnswerer answerer({choose(m_file)});
            first->fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
        }
        QCOMPARE(host.tools().size(), 3);
        auto* shown = qobject_cast<VokGUI*>(host.toolFor(m_file));
        QVERIFY(shown);
        QCOMPARE(shown->fullFileName(), m_file);
        QCOMPARE(shown->windowTitle(), QStringLiteral("Waveform Editor - ") + m_file);
        QCOMPARE(formatWaveform(*shown->document()), writerTextOfFile(m_file));
        QVERIFY(first->fullFileName().isEmpty());

        // The same file again, asked for from another window: the window that
        // shows it comes to the front, and no second copy opens.
        second->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(second));
        {
            ModalAnswerer answerer({choose(m_file)});
            second->sharedAction(QStringLiteral("open"))->trigger();
            VERIFY_ANSWERED(answerer);
        }
        QCOMPARE(host.tools().size(), 3);
        QCOMPARE(raised.size(), 1);
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(shown));

        // Other spellings of the same file find it too.
        QCOMPARE(host.open({QLatin1Char('"') + m_file + QLatin1Char('"')}), shown);
        const QString link = m_dir.filePath(QStringLiteral("link.wdl"));
        QVERIFY(QFile::link(m_file, link));
        QCOMPARE(host.open({link}), shown);
        QCOMPARE(host.tools().size(), 3);

        // Minimised, it is brought back.
        shown->showMinimized();
        QCOMPARE(host.open({m_file}), shown);
        QVERIFY(!shown->isMinimized());
    }

    void closedWindowsGo()
    {
        ToolHost host(hostedTools());
        QSignalSpy last(&host, &ToolHost::lastToolClosed);
        QPointer<BasGUITool> named = host.open({m_file});
        QPointer<BasGUITool> untitled = host.open({});
        QVERIFY(named && untitled);

        // Unmodified and named, it closes without a question and is deleted.
        {
            ModalAnswerer answerer({});
            QVERIFY(named->close());
            VERIFY_ANSWERED(answerer);
            QVERIFY(answerer.seen.isEmpty());
        }
        flushDeletes();
        QVERIFY(named.isNull());
        QCOMPARE(host.tools().size(), 1);
        QVERIFY(!host.toolFor(m_file));

        // A file whose window went opens in a new one.
        QPointer<BasGUITool> again = host.open({m_file});
        QVERIFY(again);
        QCOMPARE(host.tools().size(), 2);
        {
            ModalAnswerer answerer({});
            QVERIFY(again->close());
            VERIFY_ANSWERED(answerer);
        }
        flushDeletes();
        QVERIFY(again.isNull());

        // Cancel on the save question keeps the window, and the host keeps it.
        {
            ModalAnswerer answerer({press(QMessageBox::Cancel)});
            QVERIFY(!untitled->close());
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
        }
        flushDeletes();
        QVERIFY(untitled);
        QVERIFY(untitled->isVisible());
        QCOMPARE(host.tools().size(), 1);

        // The last window going ends the session.
        {
            ModalAnswerer answerer({press(QMessageBox::No)});
            QVERIFY(untitled->close());
            VERIFY_ANSWERED(answerer);
        }
        flushDeletes();
        QVERIFY(untitled.isNull());
        QVERIFY(host.tools().isEmpty());
        QCOMPARE(last.size(), 1);
    }

    void hostTakesItsWindowsAlong()
    {
        QPointer<BasGUITool> a, b;
        {
            ToolHost host(hostedTools());
            a = host.open({m_file});
            b = host.open({});
            QVERIFY(a && b);
        }
        QVERIFY(a.isNull());
        QVERIFY(b.isNull());

        // A factory that cannot make a tool opens nothing.
        ToolHost empty([](const QStringList&) -> BasGUITool* { return nullptr; });
        QVERIFY(!empty.open({m_file}));
        QVERIFY(empty.tools().isEmpty());
    }

    void commandLineOffersHosting()
    {
        QProcess process;
        process.start(QStringLiteral(VOK_EDITOR_PATH), {QStringLiteral("--help")});
        QVERIFY(process.waitForStarted());
        if (!process.waitForFinished(20000)) {
            process.kill();
            process.waitForFinished();
            QFAIL("waveform-editor --help did not finish");
        }
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        const QString help = QString::fromLocal8Bit(process.readAllStandardOutput());
        QVERIFY2(help.contains(QStringLiteral("--hosted")), qPrintable(help));
        QVERIFY2(help.contains(QStringLiteral("New and Open open further windows")), qPrintable(help));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestToolHost)

#include "test_toolhost.moc"
