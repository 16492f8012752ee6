// Node lists as designs' tools write them, and files that only look like one.

#include "nodelist.h"
#include "wavedata.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

using namespace kesu::toolvok;

namespace {

// "name:polarity" per node; every node must come out hidden.
QStringList nodesOf(const QByteArray& bytes, NodeListRead::Status& status)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    NodeListRead read = readNodeList(buffer);
    status = read.status;
    QStringList out;
    for (const WaveData* wave : read.nodes)
        out << (wave->visible ? "VISIBLE " : "") + wave->name + ':' + QString::number(wave->polarity);
    qDeleteAll(read.nodes);
    return out;
}

} // namespace

class TestNodeList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("nodes");
        QTest::addColumn<bool>("isText");
        const QByteArray longName(100000, 'n');
        QTest::newRow("empty") << QByteArray() << QStringList{} << true;
        QTest::newRow("blank lines") << QByteArray(" \n\n\t\r\n") << QStringList{} << true;
        QTest::newRow("every kind") << QByteArray("a i\nb o\nc b\nd n\ne r\n")
                                    << QStringList{"a:0", "b:1", "c:2", "d:3", "e:4"} << true;
        QTest::newRow("CR LF, no last newline") << QByteArray("clk i\r\nq[0] o\r\nrst r")
                                                << QStringList{"clk:0", "q[0]:1", "rst:4"} << true;
        QTest::newRow("padding and extra parts") << QByteArray("  clk   i  extra 7 \n\tq o\t\n")
                                                 << QStringList{"clk:0", "q:1"} << true;
        QTest::newRow("tab between name and kind") << QByteArray("clk\ti\nq o\n") << QStringList{"q:1"} << true;
        QTest::newRow("missing kind") << QByteArray("lonely\n  alone  \nq o\n") << QStringList{"q:1"} << true;
        QTest::newRow("unknown and upper-case letters")
            << QByteArray("x z\ny R\nw in\nv I\n") << QStringList{"x:3", "y:3", "w:3", "v:3"} << true;
        QTest::newRow("same node twice") << QByteArray("a i\na o\n") << QStringList{"a:0", "a:1"} << true;
        QTest::newRow("UTF-8 name") << QByteArray("t\xc3\xa4kt i\n") << QStringList{QString::fromUtf8("t\xc3\xa4kt:0")}
                                    << true;
        QTest::newRow("very long name") << longName + " o\n" << QStringList{QString::fromLatin1(longName) + ":1"}
                                        << true;
        QTest::newRow("NUL byte") << QByteArray("a i\n\0b o\n", 9) << QStringList{} << false;
        QTest::newRow("not UTF-8") << QByteArray("a i\n\xff\xfe o\n") << QStringList{} << false;
    }
    void reads()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, nodes);
        QFETCH(bool, isText);
        NodeListRead::Status status;
        QCOMPARE(nodesOf(bytes, status), nodes);
        QCOMPARE(status == NodeListRead::Read, isText);
    }

    // A megabyte of noise is refused whole; printable noise is read line by
    // line, and every node it yields is a name and a known kind.
    void noise()
    {
        QRandomGenerator random(7);
        QByteArray bytes(1 << 20, Qt::Uninitialized);
        random.fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
        NodeListRead::Status status;
        QVERIFY(nodesOf(bytes, status).isEmpty());
        QCOMPARE(status, NodeListRead::NotText);

        for (char& c : bytes)
            c = " \n\r\tabio"[quint8(c) % 8];
        const QStringList nodes = nodesOf(bytes, status);
        QCOMPARE(status, NodeListRead::Read);
        QVERIFY(nodes.size() > 1000);
        for (const QString& node : nodes)
            QVERIFY2(!node.contains(' ') && QStringLiteral("01234").contains(node.back()), qPrintable(node));
    }
};

QTEST_GUILESS_MAIN(TestNodeList)
#include "test_nodelist.moc"
