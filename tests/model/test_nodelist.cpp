// Node lists as designs' tools write them, and files that only look like one.

#include "datatable.h"
#include "nodelist.h"
#include "wavedata.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

using namespace kesu::toolvok;

namespace {

// "name:polarity" per node, "!" for a node not hidden; "NOT TEXT" for a refused file.
QStringList nodesOf(QByteArray bytes, qint64 limit = MaxNodeListBytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const NodeListRead read = readNodeList(buffer, limit);
    QStringList out;
    for (const WaveData* wave : read.nodes)
        out << (wave->visible ? "!" : "") + wave->name + ':' + QString::number(wave->polarity);
    qDeleteAll(read.nodes);
    return read.status == NodeListRead::Read ? out : QStringList{read.status == NodeListRead::NotText ? "NOT TEXT" : "TOO LARGE"};
}

} // namespace

class TestNodeList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        addColumns<QByteArray, QStringList>({"bytes", "nodes"});
        const QByteArray longName(100000, 'n');
        QTest::newRow("empty") << QByteArray() << QStringList{};
        QTest::newRow("every kind") << QByteArray("a i\nb o\nc b\nd n\ne r\n") << QStringList{"a:0", "b:1", "c:2", "d:3", "e:4"};
        QTest::newRow("CR LF, no last newline") << QByteArray("clk i\r\nq[0] o\r\nrst r")
                                                << QStringList{"clk:0", "q[0]:1", "rst:4"};
        QTest::newRow("padding, extra parts") << QByteArray("  clk   i  x 7 \n\tq o\t\n") << QStringList{"clk:0", "q:1"};
        QTest::newRow("tab between name and kind") << QByteArray("clk\ti\nq o\n") << QStringList{"q:1"};
        QTest::newRow("missing kind, blank lines") << QByteArray("lonely\n  alone  \n\n\t\r\nq o\n") << QStringList{"q:1"};
        QTest::newRow("unknown and upper-case letters") << QByteArray("x z\ny R\nw in\nv I\n")
                                                        << QStringList{"x:3", "y:3", "w:3", "v:3"};
        QTest::newRow("UTF-8 and very long names") << "t\xc3\xa4kt i\n" + longName + " o\n"
                                                   << QStringList{QString::fromUtf8("t\xc3\xa4kt:0"), longName + ":1"};
        QTest::newRow("NUL byte") << QByteArray("a i\n\0b o\n", 9) << QStringList{"NOT TEXT"};
        QTest::newRow("not UTF-8") << QByteArray("a i\n\xff\xfe o\n") << QStringList{"NOT TEXT"};
    }
    void reads()
    {
        QFETCH(QByteArray, bytes);
        QTEST(nodesOf(bytes), "nodes");
    }

    // Binary noise is refused whole; printable noise yields only names of known kinds.
    void noise()
    {
        QByteArray bytes(1 << 20, Qt::Uninitialized);
        QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
        QCOMPARE(nodesOf(bytes), QStringList{"NOT TEXT"});
        QCOMPARE(nodesOf(QByteArray(11, 'a'), 10), QStringList{"TOO LARGE"});
        QCOMPARE(nodesOf("a i\nb o\n", 8), (QStringList{"a:0", "b:1"}));
        for (char& c : bytes)
            c = " \n\r\tabio"[quint8(c) % 8];
        const QStringList nodes = nodesOf(bytes);
        QVERIFY(nodes.size() > 1000);
        for (const QString& node : nodes)
            QVERIFY2(QRegularExpression("^[^ !][^ ]*:[0-4]$").match(node).hasMatch(), qPrintable(node));
    }
};

QTEST_GUILESS_MAIN(TestNodeList)
#include "test_nodelist.moc"
