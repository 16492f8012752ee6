// Random documents read back from the file they were generated with and from what the writer makes of them.
// VOK_GENERATED_SEED and VOK_GENERATED_COUNT replay a failure (the message names both).
#include "modeltestutil.h"
#include "random_document.h"
#include "wavewriter.h"

#include <QtTest>

using namespace kesu::toolvok;

// Every field the file carries, as text: cheaper than JSON, which under the sanitizers would cost most of the run.
static QString fields(const WaveformData& doc)
{
    QString text = QStringLiteral("%1 %2 %3 %4 %5\n").arg(doc.masterClockMult).arg(doc.smallestUnit)
                       .arg(doc.autoAssign).arg(doc.decimals).arg(doc.endTime);
    for (const WaveData* w : doc.waves) {
        text += QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8 %9 ").arg(w->name).arg(w->group).arg(w->polarity)
                    .arg(w->spareInt).arg(w->waveType).arg(w->offset).arg(w->formatValue).arg(w->formatRatio)
                    .arg(w->foreverIndex)
            + QStringLiteral("%1%2%3 %4 [%5]").arg(w->isBus).arg(w->isPattern).arg(w->visible).arg(w->busWidth)
                    .arg(w->elements.join(QLatin1Char(',')));
        text += ' ' + modeltest::segments(w) + '\n';
    }
    return text;
}

// Every kind of wave turns up hundreds of times in 2,000 documents; the sanitizers make each ten times dearer.
#ifdef __SANITIZE_ADDRESS__
constexpr int DefaultCount = 2000;
#else
constexpr int DefaultCount = 10000;
#endif

class TestGenerated : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readBackEqual()
    {
        const quint64 first = qEnvironmentVariableIsSet("VOK_GENERATED_SEED")
            ? qgetenv("VOK_GENERATED_SEED").toULongLong() : 20261125;
        const int count = qEnvironmentVariableIsSet("VOK_GENERATED_COUNT")
            ? qEnvironmentVariableIntValue("VOK_GENERATED_COUNT") : DefaultCount;
        for (quint64 seed = first; seed < first + quint64(count); ++seed) {
            const RandomDocument generated = makeRandomDocument(seed);
            const QString expected = fields(*generated.document);
            const QByteArray written = formatWaveform(*generated.document);
            for (const QByteArray& text : {generated.text, written}) {
                WaveformData read;
                read.loadText(QString::fromUtf8(text));
                if (read.loadError.isSet() || fields(read) != expected)
                    QFAIL(qPrintable(QStringLiteral("seed %1 (VOK_GENERATED_SEED=%1 VOK_GENERATED_COUNT=1), %2 %3:\n%4")
                                         .arg(seed)
                                         .arg(text == written ? "as written" : "as generated", read.loadError.text(),
                                              QString::fromUtf8(text))));
            }
        }
        qInfo("%d generated documents read back equal, from seed %llu", count, qulonglong(first));
    }
};

QTEST_GUILESS_MAIN(TestGenerated)
#include "test_generated.moc"
