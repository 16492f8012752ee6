// Hosted windows: New and Open ask the host for further windows, one
// document each; a file already shown is raised instead; closed windows go.
#include "toolhost.h"
#include "vokgui.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include <QAction>
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

class TestToolHost : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_file;
    QString m_project;

    ToolHost::Factory hostedTools()
    {
        return [this](const QStringList& files) -> BasGUITool* {
            auto* tool = new VokGUI(nullptr, files, m_project, false);
            tool->initialize();
            tool->resize(800, 500);
            return tool;
        };
    }

    // Closes the window with that answer to the save question, if any, and
    // lets a deleted window actually go.
    static bool closeAnswering(BasGUITool* tool, QList<Answer> answers)
    {
        ModalAnswerer answerer(answers);
        const bool closed = tool->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return closed && answerer.problems.isEmpty() && answerer.unanswered() == 0;
    }

private Q_SLOTS:
    void init()
    {
        m_file = m_dir.filePath(QStringLiteral("counter.wdl"));
        QVERIFY(copyWritable(exampleFile(QStringLiteral("counter.wdl")), m_file));
    }

    void newAndOpenBringFurtherWindows()
    {
        ToolHost host(hostedTools());
        QSignalSpy raised(&host, &ToolHost::toolRaised);
        const int n = VokGUI::untitledCounter();
        auto* first = qobject_cast<VokGUI*>(host.open({}));
        QVERIFY(first && first->isVisible() && !first->isStandalone());
        {   // Nothing is asked: the first document is not being closed.
            ModalAnswerer answerer({choose(m_file)});
            first->sharedAction(QStringLiteral("new"))->trigger();
            first->fileOpen();
            VERIFY_ANSWERED(answerer);
            QCOMPARE(answerer.seen.size(), 1);
        }
        QCOMPARE(host.tools().size(), 3);
        auto* second = qobject_cast<VokGUI*>(host.tools().at(1));
        QCOMPARE(second->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n + 1));
        QCOMPARE(second->pos(), first->pos() + QPoint(30, 30));
        auto* shown = qobject_cast<VokGUI*>(host.toolFor(m_file));
        QVERIFY(shown && shown->isVisible());
        QCOMPARE(formatWaveform(*shown->document()), writerTextOfFile(m_file));
        QCOMPARE(first->windowTitle(), QStringLiteral("Waveform Editor - Untitled %1").arg(n));

        // The same file again, asked for from another window: its window
        // comes to the front, and no second copy opens.
        second->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(second));
        {
            ModalAnswerer answerer({choose(m_file)});
            second->sharedAction(QStringLiteral("open"))->trigger();
            VERIFY_ANSWERED(answerer);
        }
        QCOMPARE(raised.size(), 1);
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(shown));
        // Other spellings of the same file find it too; minimised, it comes back.
        const QString link = m_dir.filePath(QStringLiteral("link.wdl"));
        QVERIFY(QFile::link(m_file, link));
        shown->showMinimized();
        QCOMPARE(host.open({QLatin1Char('"') + m_file + QLatin1Char('"')}), shown);
        QCOMPARE(host.open({link}), shown);
        QVERIFY(!shown->isMinimized());
        QCOMPARE(host.tools().size(), 3);
    }

    void closedWindowsGo()
    {
        ToolHost host(hostedTools());
        QSignalSpy last(&host, &ToolHost::lastToolClosed);
        QPointer<BasGUITool> named = host.open({m_file});
        QPointer<BasGUITool> untitled = host.open({});
        // Unmodified and named, it closes without a question and is deleted;
        // its file then opens in a new window.
        QVERIFY(closeAnswering(named, {}));
        QVERIFY(named.isNull());
        QVERIFY(!host.toolFor(m_file));
        QPointer<BasGUITool> again = host.open({m_file});
        QCOMPARE(host.tools().size(), 2);
        QVERIFY(closeAnswering(again, {}));
        // Cancel on the save question keeps the window, and the host keeps it.
        QVERIFY(!closeAnswering(untitled, {press(QMessageBox::Cancel)}));
        QVERIFY(untitled && untitled->isVisible());
        QCOMPARE(host.tools().size(), 1);
        QCOMPARE(last.size(), 0);
        // The last window going ends the session.
        QVERIFY(closeAnswering(untitled, {press(QMessageBox::No)}));
        QVERIFY(untitled.isNull());
        QCOMPARE(last.size(), 1);
    }

    // Windows the host still holds go with it: the leak checker watches.
    void factoryWithoutToolOpensNothing()
    {
        ToolHost empty([](const QStringList&) -> BasGUITool* { return nullptr; });
        QVERIFY(!empty.open({m_file}));
        QVERIFY(empty.tools().isEmpty());
    }

    void commandLineOffersHosting()
    {
        QProcess process;
        process.start(QStringLiteral(VOK_EDITOR_PATH), {QStringLiteral("--help")});
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitCode(), 0);
        const QString help = QString::fromLocal8Bit(process.readAllStandardOutput());
        QVERIFY2(help.contains(QStringLiteral("--hosted")), qPrintable(help));
    }
};

VOK_SANDBOXED_TEST_MAIN(TestToolHost)

#include "test_toolhost.moc"
