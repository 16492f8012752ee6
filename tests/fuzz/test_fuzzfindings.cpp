// Replays the inputs the fuzz targets once failed on (tests/fuzz/TARGET/).
#include "datatable.h"
#include "files.h"
#include "fuzzchecks.h"

#include <QDir>
#include <QtTest>

class TestFuzzFindings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void finding_data()
    {
        addColumns<QString, QString>({"target", "path"});
        const QDir root(QStringLiteral(VOK_SOURCE_DIR "/tests/fuzz"));
        for (const QString& target : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QDir dir(root.filePath(target));
            for (const QString& name : dir.entryList(QDir::Files))
                QTest::newRow(qPrintable(target + QLatin1Char('/') + name)) << target << dir.filePath(name);
        }
    }
    void finding()
    {
        QFETCH(QString, target); QFETCH(QString, path);
        const fuzzchecks::Check check = fuzzchecks::checkNamed(target);
        QVERIFY2(check, qPrintable(QStringLiteral("no fuzz target named ") + target));
        const QByteArray bytes = testfiles::readFile(path);
        const QString fault = check(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
        QVERIFY2(fault.isEmpty(), qPrintable(fault));
    }
};

QTEST_GUILESS_MAIN(TestFuzzFindings)
#include "test_fuzzfindings.moc"
