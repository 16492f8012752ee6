// BigInteger against GMP's own arithmetic on random values of every bus
// width the editor can make, and beyond.
#include "biginteger.h"

#include <QTest>

#include <gmpxx.h>

#include <algorithm>
#include <cctype>

using namespace kesu::toolvok;

class TestBigInteger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // For each width: 0, 1, all ones, one past them, a random value of at
    // most and one of exactly that width, from a fixed seed.
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
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("radix");
        QTest::newRow("empty") << QByteArray("") << 16;
        QTest::newRow("G in hex") << QByteArray("G") << 16;
        QTest::newRow("inner blank") << QByteArray("1 2") << 10;
        QTest::newRow("leading blank") << QByteArray(" 12") << 10;
        QTest::newRow("minus sign") << QByteArray("-5") << 10;
        QTest::newRow("plus sign") << QByteArray("+5") << 10;
        QTest::newRow("0x prefix") << QByteArray("0x1F") << 16;
        QTest::newRow("2 in binary") << QByteArray("0102") << 2;
        QTest::newRow("8 in octal") << QByteArray("78") << 8;
        QTest::newRow("high impedance") << QByteArray("-2") << 16;
    }
    void rejectsTextThatIsNoNumber()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, radix);
        const BigInteger b(text.toStdString(), radix);
        QVERIFY(!b.isNumber() && !b.isValid(64) && !b.bitAt(0));
        // The text is handed back as it came, so callers can show it unchanged.
        for (const int r : {2, 8, 10, 16})
            QCOMPARE(b.toString(r), text.toStdString());
    }
};

QTEST_GUILESS_MAIN(TestBigInteger)
#include "test_biginteger.moc"
