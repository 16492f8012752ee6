// Times and bus values to and from text, and the big numbers behind bus values against GMP.

#include "biginteger.h"
#include "datatable.h"
#include "modeltestutil.h"
#include "timetext.h"

#include <QtTest>

#include <gmpxx.h>

#include <algorithm>
#include <cctype>
#include <utility>

using namespace kesu::toolvok;
using namespace modeltest;

// Out of range: refused, whatever the count that comes with the refusal.
static constexpr quint64 Unchecked = 0xDEADBEEF;

class TestTimeText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A tick count as shown ("ticks": without a unit, "time": with it), or a bus value's hex in a radix.
    void shown_data()
    {
        addColumns<QString, QString, int, int, QString>({"kind", "value", "unitOrWidth", "decimalsOrRadix", "expected"});
        QTest::newRow("1,000") << "ticks" << "1000" << 12 << 0 << "1,000";
        QTest::newRow("unknown unit") << "time" << "42" << 7 << 0 << "42";
        QTest::newRow("1.5 ns") << "time" << "15" << 9 << 1 << "1.5 ns";
        QTest::newRow("0.001") << "ticks" << "1" << 12 << 3 << "0.001";
        QTest::newRow("1,234,567.89 ps") << "time" << "1234567890" << 12 << 3 << "1,234,567.89 ps";
        QTest::newRow("five decimals round") << "ticks" << "123456" << 12 << 5 << "1.235";
        QTest::newRow("largest") << "ticks" << QString::number(NoTime) << 12 << 0 << "18,446,744,073,709,551,616";
        QTest::newRow("1 binary padded") << "bus" << "1" << 4 << 0 << "0001";
        QTest::newRow("1 octal unpadded") << "bus" << "1" << 12 << 1 << "1";
        QTest::newRow("1 hex unpadded") << "bus" << "01" << 8 << 3 << "1";
        QTest::newRow("ff binary wide") << "bus" << "ff" << 12 << 0 << "000011111111";
        QTest::newRow("wider than width") << "bus" << "ff" << 4 << 0 << "11111111";
        QTest::newRow("0 width 0") << "bus" << "0" << 0 << 1 << "0";
        QTest::newRow("69 bits decimal") << "bus" << "1FFFFFFFFFFFFFFFFF" << 69 << 2 << "590295810358705651711";
        QTest::newRow("69 bits octal") << "bus" << "1FFFFFFFFFFFFFFFFF" << 69 << 1 << "77777777777777777777777";
    }
    void shown()
    {
        QFETCH(QString, kind); QFETCH(QString, value); QFETCH(int, unitOrWidth); QFETCH(int, decimalsOrRadix);
        QTEST(kind == "bus" ? TimeText::busValueString(value.toStdString(), unitOrWidth, decimalsOrRadix)
                            : TimeText::timeString(value.toULongLong(), kind == "time", unitOrWidth, decimalsOrRadix),
              "expected");
    }

    void parseTime_data()
    {
        // A time of no whole ticks is refused with the truncated count; no number at all gives 0.
        addColumns<QString, int, int, quint64, bool>({"text", "unit", "decimals", "expected", "ok"});
        QTest::newRow("1.1 ns exact") << "1.1 ns" << 12 << 0 << quint64(1100) << true;
        QTest::newRow("1 ms in ms") << "1 ms" << 3 << 0 << quint64(1) << true;
        QTest::newRow("1 ps in ns") << "1 ps" << 9 << 0 << quint64(0) << false;
        QTest::newRow("1.5 ps whole ps") << "1.5 ps" << 12 << 0 << quint64(1) << false;
        QTest::newRow("1.5 ps, 3 decimals") << "1.5 ps" << 12 << 3 << quint64(1500) << true;
        QTest::newRow("2.0005 ns") << "2.0005 ns" << 12 << 0 << quint64(2000) << false;
        QTest::newRow("padded") << "  2 ns  " << 12 << 0 << quint64(2000) << true;
        QTest::newRow("bare is ticks") << "1500" << 9 << 0 << quint64(1500) << true;
        QTest::newRow("bare fraction") << "1.5" << 12 << 0 << quint64(1) << false;
        QTest::newRow("exponent") << "1e3" << 12 << 0 << quint64(1000) << true;
        QTest::newRow("negative with unit") << "-2.5 ns" << 12 << 0 << quint64(0) << true;
        QTest::newRow("abc") << "abc" << 12 << 0 << quint64(0) << false;
        QTest::newRow("upper-case unit") << "5 NS" << 12 << 0 << quint64(0) << false;
        QTest::newRow("largest") << "18446744073709551615" << 12 << 0 << NoTime << true;
        QTest::newRow("one past largest") << "18446744073709551616" << 12 << 0 << Unchecked << false;
        QTest::newRow("overflow by unit") << "20,000,000,000 ms" << 12 << 0 << Unchecked << false;
        QTest::newRow("huge exponent") << "1e400" << 12 << 0 << Unchecked << false;
    }
    void parseTime()
    {
        QFETCH(QString, text); QFETCH(int, unit); QFETCH(int, decimals); QFETCH(quint64, expected); QFETCH(bool, ok);
        bool converted = !ok;
        const quint64 ticks = TimeText::parseTime(converted, text, unit, decimals);
        QTEST(converted, "ok");
        if (expected != Unchecked)
            QCOMPARE(ticks, expected);
    }

    // Every shown time, with its unit, reads back as the same tick count.
    void parseWhatIsShown()
    {
        const quint64 samples[] = {0, 1, 7, 999, 1000, 1001, 123456, 987654321, 4000000000ULL};
        for (int unit : {3, 6, 9, 12}) {
            for (int decimals : {0, 1, 2, 3}) {
                for (quint64 t : samples) {
                    const QString text = TimeText::timeString(t, true, unit, decimals);
                    bool ok = false;
                    QVERIFY2(TimeText::parseTime(ok, text, unit, decimals) == t && ok, qPrintable(text));
                }
            }
        }
    }

    // Per width: 0, 1, all ones, one past them, random values of at most and of exactly that width.
    void agreesWithGmp()
    {
        gmp_randclass random(gmp_randinit_mt);
        random.seed(0x5eed);
        for (int width = 1; width <= 300; ++width) {
            const mpz_class modulus = mpz_class(1) << width;
            for (const mpz_class& v : {mpz_class(0), mpz_class(1), mpz_class(modulus - 1), modulus,
                                       mpz_class(random.get_z_bits(width)),
                                       mpz_class(random.get_z_bits(width) | (mpz_class(1) << (width - 1)))}) {
                const QByteArray what = "width " + QByteArray::number(width) + " value "
                    + QByteArray::fromStdString(v.get_str(16).substr(0, 80));
                for (const int radix : {2, 8, 10, 16}) {
                    std::string text = v.get_str(radix);
                    // Either case, and the leading zeros of a bus value's full width.
                    if (width % 2)
                        std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::toupper(c)); });
                    const BigInteger b("000" + text, radix);
                    QVERIFY2(b.isNumber() && b.value() == v, what.constData());
                }
                const BigInteger b(v.get_str(16), 16);
                // GMP spells digits above 9 in upper case for a negative base.
                for (int radix = 2; radix <= 36; ++radix)
                    QVERIFY2(b.toString(radix) == v.get_str(-radix), what.constData());
                for (int bit = -1; bit < width + 3; ++bit)
                    QVERIFY2(b.bitAt(bit) == (bit >= 0 && mpz_tstbit(v.get_mpz_t(), mp_bitcnt_t(bit))), what.constData());
                // Steps wrap at the width given, not at the value's own size.
                const mpz_class up = (v + 1) % modulus, down = v == 0 ? mpz_class(modulus - 1) : mpz_class(v - 1);
                QVERIFY2(b.plusOne(width).value() == up && b.minusOne(width).value() == down, what.constData());
                // A value fits a width exactly when it is below 2^width.
                const int bits = v == 0 ? 0 : int(mpz_sizeinbase(v.get_mpz_t(), 2));
                QVERIFY2(b.isValid(width) == (v < modulus) && b.isValid(bits) && !b.isValid(bits - 1), what.constData());
            }
        }
    }

    void rejectsTextThatIsNoNumber_data()
    {
        addColumns<QByteArray, int>({"text", "radix"});
        // Empty, a letter beyond the radix, blanks, signs, a prefix, a digit beyond the radix, high impedance.
        for (const auto& [text, radix] : {std::pair{"", 16}, {"G", 16}, {"1 2", 10}, {" 12", 10}, {"-5", 10}, {"+5", 10},
                                          {"0x1F", 16}, {"0102", 2}, {"78", 8}, {"-2", 16}})
            QTest::addRow("'%s' in radix %d", text, radix) << QByteArray(text) << radix;
    }
    void rejectsTextThatIsNoNumber()
    {
        QFETCH(QByteArray, text); QFETCH(int, radix);
        const BigInteger b(text.toStdString(), radix);
        QVERIFY(!b.isNumber() && !b.isValid(64) && !b.bitAt(0));
        // The text is handed back as it came, so callers can show it unchanged.
        for (const int r : {2, 8, 10, 16})
            QCOMPARE(b.toString(r), text.toStdString());
    }
};

QTEST_GUILESS_MAIN(TestTimeText)
#include "test_timetext.moc"
