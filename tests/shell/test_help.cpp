// Every help topic and link lands, and every command and shortcut is described.
#include "basehelp.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QDirIterator>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QToolBar>

using namespace kesu::toolvok;

namespace {

QString textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList literalsIn(const QString& text)
{
    QStringList found;
    for (const QRegularExpressionMatch& m : QRegularExpression(QStringLiteral("\"(\\w+)\"")).globalMatch(text))
        found << m.captured(1);
    return found;
}

// "page#section": the page exists and marks the section by name or id.
bool resolves(const QString& location)
{
    const QString page = location.section(QLatin1Char('#'), 0, 0);
    const QString section = location.section(QLatin1Char('#'), 1);
    const QString text = textOf(page);
    if (text.isEmpty())
        return false;
    return section.isEmpty() || text.contains(QStringLiteral("name=\"%1\"").arg(section))
        || text.contains(QStringLiteral("id=\"%1\"").arg(section));
}

void collectActions(const QList<QAction*>& actions, QList<QAction*>& out)
{
    for (QAction* a : actions) {
        if (a->isSeparator() || out.contains(a))
            continue;
        out << a;
        // The recent files are the user's documents, not commands.
        if (a->menu() && a->menu()->objectName() != QLatin1String("recentFilesMenu"))
            collectActions(a->menu()->actions(), out);
    }
}

} // namespace

class TestHelp : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // The topic of every help call in the sources (a literal, or a name defined
    // in that file), and every link of every page.
    void everyPlaceResolves_data()
    {
        QTest::addColumn<QString>("location");
        QTest::newRow("main") << BaseHelp::locationOf(QStringLiteral("WAVE_EDITOR"));
        const QRegularExpression call(QStringLiteral("(?:open\\w*HelpUrl|getWhatsThisText)\\(\\s*([^,;]*)"));
        for (const char* dir : {"host", "shell", "edit", "view"}) {
            QDirIterator files(QStringLiteral(VOK_SOURCE_DIR "/") + QLatin1String(dir), {QStringLiteral("*.cpp")});
            while (files.hasNext()) {
                const QString source = textOf(files.next());
                for (const QRegularExpressionMatch& m : call.globalMatch(source)) {
                    QStringList topics = literalsIn(m.captured(1));
                    const QString name = m.captured(1).section(QLatin1Char('('), -1).remove(QLatin1Char(')')).trimmed();
                    if (topics.isEmpty() && !name.isEmpty())
                        topics = literalsIn(QRegularExpression(QStringLiteral("\\b%1\\s*=([^;]*);").arg(name)).match(source).captured(1));
                    topics.removeDuplicates();
                    for (const QString& topic : std::as_const(topics))
                        QTest::addRow("%s %s", qPrintable(files.fileName()), qPrintable(topic)) << BaseHelp::locationOf(topic);
                }
            }
        }
        QDirIterator pages(QStringLiteral(":/help"), {QStringLiteral("*.html")});
        int count = 0;
        for (; pages.hasNext(); ++count) {
            const QString page = pages.next();
            for (const QRegularExpressionMatch& m : QRegularExpression(QStringLiteral("href=\"([^\"]*)\"")).globalMatch(textOf(page))) {
                const QString target = m.captured(1);
                QTest::addRow("%s -> %s", qPrintable(pages.fileName()), qPrintable(target))
                    << (target.startsWith(QLatin1Char('#')) ? page : QStringLiteral(":/help/")) + target;
            }
        }
        QVERIFY(count >= 17);
    }
    void everyPlaceResolves()
    {
        QFETCH(QString, location);
        QVERIFY2(resolves(location), qPrintable(location));
    }

    // Menus and tool bars of a real window against the command and shortcut pages.
    void everyCommandAndShortcutDescribed()
    {
        auto gui = toolfixture::laidOutTool();
        QList<QAction*> actions;
        // The menus' own titles are no commands.
        for (QAction* menu : gui->menuBar()->actions())
            collectActions(menu->menu()->actions(), actions);
        for (QToolBar* bar : gui->findChildren<QToolBar*>())
            collectActions(bar->actions(), actions);
        QVERIFY(actions.size() > 40);
        const QString commands = textOf(QStringLiteral(":/help/commands.html"));
        const QString shortcuts = textOf(QStringLiteral(":/help/shortcuts.html"));
        for (QAction* a : std::as_const(actions)) {
            const QString name = QString(a->text()).remove(QLatin1Char('&'));
            QVERIFY2(commands.contains(QStringLiteral("<b>%1</b>").arg(name.toHtmlEscaped())), qPrintable(name));
            // The main key; a desktop may add alternatives of its own.
            const QString keyText = a->shortcut().toString(QKeySequence::PortableText);
            const QRegularExpression entry(QStringLiteral("(>|/ )%1( /|<)").arg(QRegularExpression::escape(keyText)));
            QVERIFY2(keyText.isEmpty() || entry.match(shortcuts).hasMatch(), qPrintable(name + QLatin1Char(' ') + keyText));
        }
    }
};

VOK_SANDBOXED_TEST_MAIN(TestHelp)

#include "test_help.moc"
