// The waveform file reader on small texts: every statement kind, the forms of names, attribute blocks and segment
// lists, line handling, and input that must neither crash nor hang.

#include "datatable.h"
#include "modeltestutil.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QStringEncoder>
#include <QtTest>

#include <algorithm>

using namespace kesu::toolvok;
using namespace modeltest;

static std::unique_ptr<WaveformData> loadBytes(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    auto doc = std::make_unique<WaveformData>();
    doc->loadData(buffer);
    return doc;
}

class TestReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // "mult unit auto decimals end" of a header; "group polarity type offset value ratio" of an attribute block.
    void settings_data()
    {
        addColumns<QString, QString>({"text", "fields"});
        QTest::newRow("bad number") << "%ENDTIME = x;\n%SMALLESTUNIT = 9q;\n" << "1 0 0 0 0";
        QTest::newRow("keyword prefix") << "%DECIMALS_SHOWN = 4;\n" << "1 12 0 4 1000";
        QTest::newRow("case sensitive") << "%endtime = 7;\n%Decimals = 3;\n" << "1 12 0 0 1000";
        QTest::newRow("all-ones end") << "%ENDTIME = 18446744073709551615;\n" << "1 12 0 0 18446744073709551615";
        QTest::newRow("split over lines") << "%END\nTIME = 12\n34;\n" << "1 12 0 0 1234";
        QTest::newRow("C T RZ") << "{C T Default RZ 25 7 -3}" << "3 3 2 25 7 -3";
        QTest::newRow("first letters only") << "{Bx Input Whatever RC 3 4 5}" << "2 0 4 3 4 5";
        QTest::newRow("unknown letters") << "{Z X Default nrz 1 2 3}" << "0 3 0 1 2 3";
        QTest::newRow("two blanks shift") << "{A  I Default NRZ 7 1 50}" << "1 3 0 0 7 1";
        QTest::newRow("bad numbers") << "{A I Default NRZ x 1y z}" << "1 0 1 0 0 0";
        QTest::newRow("extremes") << "{A I Default NRZ 18446744073709551615 18446744073709551614 -32768}"
                                  << "1 0 1 18446744073709551615 18446744073709551614 -32768";
        QTest::newRow("padded") << "{   G G Default RC 1 2 3   }" << "7 4 4 1 2 3";
    }
    void settings()
    {
        QFETCH(QString, text);
        auto doc = load(text.startsWith('{') ? "w " + text + " = 1 5;\n" : text);
        const WaveData* w = doc->waves.value(0);
        QTEST(w ? QStringLiteral("%1 %2 %3 %4 %5 %6").arg(w->group).arg(w->polarity).arg(w->waveType).arg(w->offset)
                      .arg(w->formatValue).arg(w->formatRatio)
                : QStringLiteral("%1 %2 %3 %4 %5").arg(doc->masterClockMult).arg(doc->smallestUnit).arg(doc->autoAssign)
                      .arg(doc->decimals).arg(doc->endTime),
              "fields");
        QVERIFY(!w || (!w->isBus && !w->isPattern && doc->waves.size() == 1));
    }

    void statementKinds()
    {
        auto doc = load("a = 0 10;\n$p { A } = 0 10;\n$q } = 1 1;\nw" + Attr + "0 1 = 2;\n"
                        "v { A I Default NRZ 0 1 50 } 0 10;\nu A I Default NRZ 0 1 50 } = 0 10;\n"
                        "%ENDTIME = 77;\nok" + Attr + "0 10 1;\n$p = 1 5 0 2;\n$e = ;\n");
        QStringList got{QString::number(doc->endTime)};
        for (const WaveData* w : std::as_const(doc->waves))
            got << QString("%1%2 %3=%4").arg(w->isPattern ? "pattern " : "", w->name).arg(w->polarity).arg(segments(w));
        // "ok": a value without duration is dropped.
        QCOMPARE(got.join('|'), QString("77|ok 0=0:10|pattern $p 5=1:5 0:2|pattern $e 5="));
        QCOMPARE(WaveformData::parseValues(QString::fromUtf8("\u3000a\u00a0 (b c)#2\u2029 d")),
                 QStringList({"a", "(b c)#2", "d"}));
    }

    // Segment lists, repeats and references to named patterns; "(" marks the forever tail in the expectation.
    void segmentLists_data()
    {
        addColumns<QString, QString>({"text", "expected"});
        const QString w = "w" + Attr, b = "b[7:0]" + Attr, b2 = "b[1:0]" + Attr;
        QTest::newRow("single values") << w + "0 1 1 1 2 1 3 1 0 1;\n" << "0:1 1:1 -1:1 -2:1 0:1";
        QTest::newRow("single merges") << w + "0 10 0 5 2 1 2 2;\n" << "0:15 -1:3";
        QTest::newRow("merged byte for byte") << w + "1 10 01 5 01 -3;\n" << "1:10 01:2";
        QTest::newRow("bus words in a single") << w + "HighZ 5 HighZ 5 DonTCare 1;\n" << "HighZ:10 DonTCare:1";
        QTest::newRow("bus values") << b + "DonTCare 1 HighZ 1 2 1 3 1 ff 1;\n" << "-1:1 -2:1 2:1 3:1 ff:1";
        QTest::newRow("bus keeps equal values") << b + "7 10 7 5 HighZ 1 HighZ 2;\n" << "7:10 7:5 -2:3";
        QTest::newRow("bus don't care melts") << b + "3 1 DonTCare 10 DonTCare 5;\n" << "3:1 -1:15";
        QTest::newRow("zero durations dropped") << w + "1 0 0 5 1 x 0 3;\n" << "0:8";
        QTest::newRow("negative duration") << w + "1 -5 0 4;\n" << "1:-5 0:4";
        QTest::newRow("64-bit duration kept in 32") << w + "1 4294967301;\n" << "1:5";
        QTest::newRow("#3") << w + "(1 5 0 5)#3;\n" << "1:5 0:5 1:5 0:5 1:5 0:5";
        QTest::newRow("melting") << w + "0 2 (1 5)#100000000 1 1;\n" << "0:2 1:500000001";
        QTest::newRow("factor, blank, #") << w + "(1 5 0 5)*3 #2;\n" << "1:15 0:15 1:15 0:15";
        QTest::newRow("bare #") << w + "(1 5 0 5)#;\n" << "";
        QTest::newRow("#0") << w + "(1 5 0 5)#0;\n" << "";
        QTest::newRow("##") << w + "(1 5 0 5)##;\n" << "(1:5 0:5";
        QTest::newRow("*2##") << w + "2 10 (1 5 0 5)*2##;\n" << "-1:10 (1:10 0:10";
        QTest::newRow("## merged away") << w + "1 10(1 5 0 5)##;\n" << "1:15 0:5";
        QTest::newRow("group merges both sides") << w + "0 10 (1 5)#2 1 5;\n" << "0:10 1:15";
        QTest::newRow("nested") << w + "((1 1 0 1)#2 1 3)#2;\n" << "1:1 0:1 1:1 0:1 1:4 0:1 1:1 0:1 1:3";
        QTest::newRow("bus group") << b2 + "(3 1 3 1 HighZ 2)#2;\n" << "3:1 3:1 -2:2 3:1 3:1 -2:2";
        QTest::newRow("reversed") << "$p = 1 5 0 2;\n" + w + "$p 1 1;\n" << "0:2 1:5 1:1";
        QTest::newRow("defined later") << w + "1 1 $q;\n$q = 1 1 0 2 1 3;\n" << "1:1 1:3 0:2 1:1";
        QTest::newRow("first of two definitions") << "$p = 1 5;\n$p = 0 7;\n" + w + "1 1 $p;\n" << "1:1 1:5";
        QTest::newRow("unknown removed with what merged into it") << w + "1 3 $nope 0 2;\n" << "1:3";
        QTest::newRow("unknown starting the forever tail") << b2 + "5 1 ($nope 7 1 8 1)##;\n" << "5:1 (7:1 8:1";
        QTest::newRow("merged into previous 0") << "$p = 1 5 0 2;\n" + w + "0 10 $p 1 4;\n" << "0:11 1:4 0:2";
        QTest::newRow("seams melt") << w + "(1 1 0 1 1 1)#3;\n" << "1:1 0:1 1:2 0:1 1:2 0:1 1:1";
        QTest::newRow("bus seams") << b2 + "(HighZ 1 3 1 HighZ 1)#2;\n" << "-2:1 3:1 -2:2 3:1 -2:1";
        QTest::newRow("melted references repeated") << "$p = 1 5 0 2;\n" + w + "(0 1 $p)#3;\n" << "0:6 0:2 0:2 0:2";
        QTest::newRow("in repeated group") << "$p = 0 3 1 2;\n" + w + "(1 1 $p)#2;\n" << "1:1 1:2 0:3 1:1 1:2 0:3";
        // Reserved words and digits of the other kind of wave become what a saved file gives back.
        QTest::newRow("pattern words into a bus") << "$p = HighZ 1 DonTCare 2 2 3;\n" + b2 + "$p;\n" << "-1:3 -1:2 -2:1";
        QTest::newRow("pattern digits into a signal") << "$p[1:0] = 2 1 3 2 HighZ 3;\n" + w + "$p[1:0];\n" << "-2:3 -2:2 -1:1";
        QTest::newRow("pattern of patterns") << "$a = 1 1 0 1;\n$b = $a 1 5;\n" + w + "$b;\n" << "1:5 1:1 0:1";
        QTest::newRow("in forever tail") << "$p = 1 5 0 2;\n" + w + "1 1($p 1 4)##;\n" << "1:1 0:2 (1:5 1:4";
        // Equal to the segment before it, the tail's start melts into it, as it does in the saved file.
        QTest::newRow("starts a forever tail") << "$p = 1 5;\n" + w + "1 1($p 1 2 0 2)##;\n" << "1:8 0:2";
        // The placeholder is a "0": a "0" after it melts into it and is lost.
        QTest::newRow("melts into placeholder") << "$p = 1 5 0 2;\n" + w + "1 1($p 0 4)##;\n" << "1:1 0:2 (1:5";
    }
    void segmentLists()
    {
        QFETCH(QString, text); QFETCH(QString, expected);
        auto doc = load(text);
        const WaveData* w = *std::find_if(doc->waves.begin(), doc->waves.end(), [](auto* v) { return !v->isPattern; });
        QCOMPARE(segments(w), expected);
        for (const Pattern* p : w->patterns)
            QCOMPARE(p->wave, w);
        QCOMPARE(w->foreverIndex, int(expected.indexOf('(') < 0 ? -1 : expected.left(expected.indexOf('(')).count(' ')));
        if (text.contains('$'))
            return;
        // One statement compiled on its own, and its list read as a group body, read alike.
        WaveformData single;
        single.CompilerLine(text.trimmed());
        QCOMPARE(segments(single.waves.first()), expected);
        if (text.contains("##"))
            return;   // a group body has no forever tail
        QList<Pattern*> body;
        single.processSubPattern(text.section(" = ", 1).chopped(2), body, single.waves.first());
        auto wave = makeWave("x", "", 0, single.waves.first()->isBus);
        for (Pattern* p : std::as_const(body)) {
            if (!wave->addData(p))
                delete p;
        }
        QCOMPARE(segments(wave.get()), expected);
        QVERIFY(!single.loadError.isSet());
    }

    // Line ends, blanks, byte order marks and other encodings, as raw bytes read from a device or as text.
    void rawText_data()
    {
        addColumns<QByteArray, bool, QByteArray>({"bytes", "asText", "expected"});
        const QByteArray a = " { A I Default NRZ 0 1 50 } = ", w1 = "w1" + a + "0 1;\n", w2 = "w2" + a + "1 1;\n";
        const QByteArray bom = "\xEF\xBB\xBF";
        auto crlf = [](QByteArray b) { return b.replace("\n", "\r\n"); };
        QTest::newRow("continuation joins") << "w" + a + "0 1\n0 1 5;\n" << true << QByteArray("w=0:10 1:5");
        QTest::newRow("continuation after blank") << "w" + a + "0 1\n 1 5;\n" << true << QByteArray("w=0:1 1:5");
        QTest::newRow("empty line ends the file") << w1 + "\n" + w2 << true << QByteArray("w1=0:1");
        QTest::newRow("empty line inside") << "w" + a + "0 1\n\n 1 1;\n" + w2 << true << QByteArray("");
        QTest::newRow("blank line goes on") << w1 + "   \t\n" + w2 << true << QByteArray("w1=0:1|w2=1:1");
        // The "1;" after "; " reads as a failed duration.
        QTest::newRow("; then blanks") << "w" + a + "0 1; \n 1 1;\n" << true << QByteArray("w=1:1");
        QTest::newRow("no final line feed") << w1 + w2 + "w3" + a + "0 1" << true << QByteArray("w1=0:1|w2=1:1");
        QTest::newRow("CR LF") << crlf(w1 + "w2" + a + "0 1\n 1 1;\n") << false << QByteArray("w1=0:1|w2=0:1 1:1");
        QTest::newRow("CR LF empty line") << crlf(w1 + "\n" + w2) << true << QByteArray("w1=0:1");
        QTest::newRow("tabs") << QByteArray("w\t{ A I Default NRZ 0 1 50 }\t=\t0\t5\t1\t5\r\n\t0 7;\r\n") << true
                              << QByteArray("w=0:5 1:5 0:7");
        // Only one CR comes off a line end; "5\r1" is a failed duration.
        QTest::newRow("two CRs") << "w" + a + "1 5;\r\r\n" << true << QByteArray("");
        QTest::newRow("CR inside") << "w" + a + "0 5\r1 5 1 2;\n" << true << QByteArray("w=5:1");
        // No-break and ideographic spaces fall away around names and tokens; only blank and tab separate. Other
        // non-ASCII stays, as UTF-8.
        QTest::newRow("unicode") << "gr\xC3\xB6\xC3\x9F" "e\xC2\xA0 { A I Default NRZ 0 1 50 } =\xC2\xA0\xC2\xA0" "1 5"
                                    "\xE3\x80\x80 0\xE2\x80\xA8 5;\n\xCE\xB4[1:0]" + a + "\xC3\xA9 3 \xC2\xA0\xC3\xA4\xC2\xA0 4;\n"
                                 << true << QByteArray("gr%C3%B6%C3%9Fe=1:5 0:5|%CE%B4[1:0]{%CE%B4[1],%CE%B4[0]}=%C3%A9:3 %C3%A4:4");
        // Each broken byte reads as U+FFFD, without swallowing the ASCII after it or reaching into the next line.
        QTest::newRow("broken UTF-8") << "b[1:0]" + a + "\xFF 5 \xE2\x82;7 6 c\xC3 1;\nw" + a + "1 5 \xE2\x82\n;\n" << false
                                      << QByteArray("b[1:0]{b[1],b[0]}=%EF%BF%BD:5 %EF%BF%BD%EF%BF%BD;7:6 c%EF%BF%BD:1|w=1:5");
        // A device drops two marks in front (the decoder's and the reader's); text one; a mark after the start is an
        // ordinary character.
        QTest::newRow("marks, device") << bom + bom + bom + "w" + a + "1 5;\n" << false << QByteArray("%EF%BB%BFw=1:5");
        QTest::newRow("marks, text") << bom + bom + bom + "w" + a + "1 5;\n" << true << QByteArray("%EF%BB%BFw=1:5");
        for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE, QStringConverter::Utf32LE,
                                    QStringConverter::Utf32BE}) {
            QStringEncoder encode(encoding, QStringEncoder::Flag::WriteBom);
            QTest::newRow(QStringConverter::nameForEncoding(encoding)) << QByteArray(encode(QString::fromUtf8(bom + w1 + w2)))
                                                                       << false << QByteArray("w1=0:1|w2=1:1");
        }
        QTest::newRow("mark in a token") << "b[1:0]" + a + "1 1 " + bom + "2 3;\n" << true
                                         << QByteArray("b[1:0]{b[1],b[0]}=1:1 %EF%BB%BF2:3");
    }
    void rawText()
    {
        QFETCH(QByteArray, bytes); QFETCH(bool, asText);
        // Text decoding drops one leading mark of its own.
        auto doc = asText ? load(QString::fromUtf8(bytes)) : loadBytes(bytes);
        QByteArrayList waves;
        for (const WaveData* w : std::as_const(doc->waves)) {
            QByteArrayList segs;   // as bytes: a value's leading byte order mark stays
            for (const Pattern* p : w->patterns)
                segs << QByteArray::fromStdString(p->value) + ':' + QByteArray::number(p->duration);
            waves << w->name.toUtf8() + (w->isBus ? '{' + w->elements.join(',').toUtf8() + '}' : QByteArray()) + '=' + segs.join(' ');
        }
        QTEST(waves.join('|').toPercentEncoding(" :;,|={}[]"), "expected");
    }

    void longLinesAndManyLines()
    {
        // One line far longer than the reader's buffer, then a statement over many lines, from a device and from text
        // alike.
        const int count = 300000;
        QByteArray bytes = "w { A I Default NRZ 0 1 50 } =";
        QStringList w, b;
        for (int i = 0; i < count; ++i) {
            bytes += QByteArray(i % 2 ? " 1 " : " 0 ") + QByteArray::number(1 + i % 1000);
            w << QString("%1:%2").arg(i % 2).arg(1 + i % 1000);
        }
        bytes += ";\nb[3:0] { A I Default NRZ 0 1 50 } =";
        for (int i = 0; i < count; ++i) {
            bytes += (i % 10 == 0 ? "\n " : " ") + QByteArray::number(i % 16, 16) + " " + QByteArray::number(i + 1);
            b << QString("%1:%2").arg(i % 16, 0, 16).arg(i + 1);
        }
        bytes += ";\n";
        for (const auto& doc : {loadBytes(bytes), load(QString::fromLatin1(bytes))}) {
            QStringList waves;
            for (const WaveData* wave : std::as_const(doc->waves))
                waves << segments(wave);
            QCOMPARE(waves, QStringList({w.join(' '), b.join(' ')}));
        }
    }

    // What a file asks for is laid down at the cost of what it yields, and what goes beyond a limit says where and why.
    // "name:count:first" per wave, then "|line N: reason" when the file was not read whole.
    void limits_data()
    {
        addColumns<QString, QString>({"text", "outcome"});
        const QString w = "w" + Attr, v = "v" + Attr;
        const QString budget = "the file lays down more than 67108864 segments, repeats and pattern references counted";
        const QString melt = "equal segments here melt into one longer than 2147483647 time units";
        const QString deep = "groups nest deeper than 256 levels";
        QTest::newRow("a repeat melts into one") << w + "(1 5)#100000000;\n" << "w:1:1/500000000";
        QTest::newRow("the longest melted repeat") << w + "(0 1)#2147483647 1 1;\n" << "w:2:0/2147483647";
        QTest::newRow("two waves of repeats") << w + "(1 1 0 1)#30000;\n" + v + "(1 1 0 1)#30000;\n" << "w:60000:1/1 v:60000:1/1";
        QTest::newRow("plain around nested repeats")
            << w + QString(40, '(') + QString(15, '(') + "1 1 0 1" + QString(")#2").repeated(15) + QString(40, ')') + ";\n"
            << "w:65536:1/1";
        QTest::newRow("60 nested repeats") << w + QString(60, '(') + "1 1 0 1" + QString(")#2").repeated(60) + ";\n"
                                           << "w:0|line 1: " + budget;
        QTest::newRow("60 nested melting") << w + QString(60, '(') + "1 1" + QString(")#2").repeated(60) + ";\n"
                                           << "w:0|line 1: " + melt;
        QTest::newRow("many repeats") << w + "((((1 1 0 1)#1000)#1000)#1000)#1000;\n" << "w:0|line 1: " + budget;
        QTest::newRow("huge repeat, huge factor") << w + "(1 5 0 5)*2147483647#9223372036854775807;\n" << "w:0|line 1: " + budget;
        QTest::newRow("factors multiplied") << w + "((1 5)*65536)*65536;\n"
                                            << "w:0|line 1: the factors of nested groups multiply beyond 2147483647";
        QTest::newRow("a factor too large") << w + "0 1 (1 5)*1000000000;\n"
                                            << "w:1:0/1|line 1: a duration times its group's factor exceeds 2147483647 time units";
        QTest::newRow("the line of a long statement") << w + "0 1\n 1 1\n (1 1 0 1)#99999999;\n" << "w:2:0/1|line 3: " + budget;
        QTest::newRow("65 nested groups") << w + QString(65, '(') + "1 1" + QString(65, ')') + ";\n" << "w:1:1/1";
        QTest::newRow("257 nested groups") << w + QString(257, '(') + "1 1" + QString(257, ')') + ";\n" << "w:0|line 1: " + deep;
        QTest::newRow("unclosed groups") << w + QString(200000, '(') + ";\n" << "w:0|line 1: " + deep;
        QTest::newRow("stray closings") << w + "0 1 " + QString(100000, ')') + " 1 1 (1 1);\n"
                                        << "w:1:0/1|line 1: a \")\" here closes no group";
        QTest::newRow("a hash after a value") << w + "0 1 1 #2 (1 1);\n" << "w:1:0/1|line 1: a \"#\" here follows no group";
        QTest::newRow("a value of a hash") << w + "0 1 #1 2;\n" << "w:1:0/1|line 1: a \"#\" here follows no group";
        QTest::newRow("a bus too wide") << "d[0:65536]" + Attr + "0 1;\n"
                                        << "|line 1: d[0:65536] declares a bus of 65537 bits; the widest bus read has 65536";
        QTest::newRow("200 wide buses") << QString("d[0:65535]" + Attr + "0 1;\n").repeated(200)
                                        << QString(" d[0:65535]:1:0/1").repeated(16).mid(1)
                + "|line 17: the buses of the file declare more than 1048576 bits in all";
        QTest::newRow("80000 references in a group") << "$p = 1 1 0 1;\n" + w + "(" + QString("$p ").repeated(80000) + ");\n"
                                                     << "w:80001:0/1";
        QTest::newRow("references beyond the limit") << "$p = (1 1 0 1)#1000000;\n" + w + "($p 1 1)#40;\n"
                                                     << "w:80:0/1|line 2: " + budget;
        QTest::newRow("a reference beside its equal beyond 32 bits") << "$p = 1 2000000000;\n" + w + "1 2000000000 $p;\n" + v + "1 1;\n"
                                                                  << "w:1:1/2000000000|line 2: " + melt;
        QTest::newRow("millions of references melt") << "$p = 1 1;\n" + w + "0 1 ($p)#6000000;\n" << "w:1:0/6000001";
        QTest::newRow("self reference") << "$p = 1 1 0 1 " + QString("$p 0 1 ").repeated(40) + ";\n" << "|line 1: " + budget;
        QTest::newRow("text after an empty line") << w + "1 1;\n\n" + v + "0 1;\n"
                                                  << "w:1:1/1|line 2: the reading stops at this empty line, but text follows it";
        QTest::newRow("blank lines at the end") << w + "1 1;\n\n \n\n" << "w:1:1/1";
        QTest::newRow("unfinished statement") << w + "1 1;\n" + v + "0 1\n 1 2" << "w:1:1/1|line 2: the file ends inside this statement: its \";\" is missing";
    }
    void limits()
    {
        QFETCH(QString, text); QFETCH(QString, outcome);
        for (const bool device : {false, true}) {
            auto doc = device ? loadBytes(text.toUtf8()) : load(text);
            QStringList waves;
            for (const WaveData* w : std::as_const(doc->waves)) {
                if (!w->isPattern)
                    waves << QString("%1:%2").arg(w->name).arg(w->patterns.size())
                            + (w->patterns.isEmpty() ? QString() : ":" + segments(w).section(' ', 0, 0).replace(':', '/'));
            }
            const QString got = waves.join(' ') + (doc->loadError.isSet() ? "|" + doc->loadError.text() : QString());
            QVERIFY2(got == outcome, qPrintable(got.left(400)));
        }
    }

    // A device that fails part way: what came before stays, and the line being read is named.
    void failingDevice()
    {
        struct Failing : QBuffer {
            qint64 readData(char* data, qint64 max) override
            {
                const qint64 n = QBuffer::readData(data, max);
                return n ? n : (setErrorString("the disk went away"), -1);
            }
        };
        Failing device;
        device.setData(("w" + Attr + "1 5;\nv" + Attr + "0 1\n 1 1").toUtf8());
        device.open(QIODevice::ReadOnly);
        WaveformData doc;
        doc.loadData(device);
        QCOMPARE(doc.waves.size(), 1);
        QCOMPARE(doc.loadError.text(), QString("line 3: the file could not be read: the disk went away"));
    }

    void hostileInput()
    {
        QElapsedTimer timer;
        timer.start();
        QRandomGenerator random(20240611);
        const char alphabet[] = "(){}[]=;$#*%:,.  \n\r\t01239AZaz-";
        for (int round = 0; round < 300; ++round) {
            QByteArray bytes(1 + random.bounded(3000), Qt::Uninitialized);
            for (char& c : bytes)
                c = random.bounded(2) ? alphabet[random.bounded(int(sizeof alphabet - 1))] : char(random.bounded(256));
            auto doc = loadBytes(bytes);
            for (const WaveData* w : std::as_const(doc->waves))
                QVERIFY(w->foreverIndex == -1 || (w->foreverIndex >= 0 && w->foreverIndex < w->patterns.size()));
        }

        // Generous for sanitizer builds; a quadratic or unbounded reader takes minutes.
        QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestReader)
#include "test_reader.moc"
