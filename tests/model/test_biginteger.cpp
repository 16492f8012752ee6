// BigInteger against GMP's own arithmetic on random values of every bus
// width the editor can make, and beyond.
#include "biginteger.h"

#include <QTest>

#include <gmpxx.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

using namespace kesu::toolvok;

namespace {

constexpr int MaxWidth = 300;

std::string upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

mpz_class powerOfTwo(int width)
{
    mpz_class p;
    mpz_ui_pow_ui(p.get_mpz_t(), 2, static_cast<unsigned long>(width));
    return p;
}

// For each width: 0, 1, all ones, a random value of at most and one of
// exactly that width, from a fixed seed.
struct Sample {
    int width;
    mpz_class value;
};

std::vector<Sample> samples()
{
    gmp_randclass random(gmp_randinit_mt);
    random.seed(0x5eed);
    std::vector<Sample> all;
    for (int width = 1; width <= MaxWidth; ++width) {
        for (const mpz_class& v : {mpz_class(0), mpz_class(1), mpz_class(powerOfTwo(width) - 1),
                                   mpz_class(random.get_z_bits(width)),
                                   mpz_class(random.get_z_bits(width) | (mpz_class(1) << (width - 1)))})
            all.push_back({width, v});
    }
    return all;
}

QByteArray describe(const Sample& s, int radix, int bit = -1)
{
    return "width " + QByteArray::number(s.width) + " radix " + QByteArray::number(radix) + " value "
        + QByteArray::fromStdString(s.value.get_str(16).substr(0, 100)) + " bit " + QByteArray::number(bit);
}

} // namespace

class TestBigInteger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTextInEveryBusRadix()
    {
        for (const Sample& s : samples()) {
            for (const int radix : {2, 8, 10, 16}) {
                const std::string text = s.value.get_str(radix);
                // Upper-case hex, and the leading zeros of a bus value's full width.
                for (const std::string& t : {text, upper(text), "000" + text}) {
                    const BigInteger b(t, radix);
                    QVERIFY2(b.isNumber() && b.value() == s.value, describe(s, radix).constData());
                }
            }
        }
    }

    void writesTextInEveryRadix()
    {
        for (const Sample& s : samples()) {
            const BigInteger b(s.value.get_str(16), 16);
            // GMP spells digits above 9 in upper case for a negative base.
            for (int radix = 2; radix <= 36; ++radix)
                QVERIFY2(b.toString(radix) == s.value.get_str(-radix), describe(s, radix).constData());
        }
    }

    void fitsItsWidthExactly()
    {
        for (int width = 1; width <= MaxWidth; ++width) {
            const mpz_class limit = powerOfTwo(width);
            const BigInteger largest(mpz_class(limit - 1).get_str(16), 16);
            const BigInteger tooLarge(limit.get_str(16), 16);
            QVERIFY2(largest.isValid(width) && !largest.isValid(width - 1), QByteArray::number(width).constData());
            QVERIFY2(!tooLarge.isValid(width) && tooLarge.isValid(width + 1), QByteArray::number(width).constData());
            QVERIFY(BigInteger("0", 16).isValid(width));
        }
    }

    void readsEveryBit()
    {
        for (const Sample& s : samples()) {
            const BigInteger b(s.value.get_str(8), 8);
            for (int bit = 0; bit < s.width + 3; ++bit) {
                const bool expected = mpz_tstbit(s.value.get_mpz_t(), static_cast<mp_bitcnt_t>(bit)) != 0;
                QVERIFY2(b.bitAt(bit) == expected, describe(s, 8, bit).constData());
            }
            QVERIFY(!b.bitAt(-1));
        }
    }

    void stepsWrapAtTheWidth()
    {
        for (const Sample& s : samples()) {
            const mpz_class modulus = powerOfTwo(s.width);
            const BigInteger b(s.value.get_str(16), 16);
            const mpz_class up = (s.value + 1) % modulus;
            const mpz_class down = s.value == 0 ? modulus - 1 : mpz_class(s.value - 1);
            const BigInteger next = b.plusOne(s.width), previous = b.minusOne(s.width);
            QVERIFY2(next.isNumber() && next.value() == up, describe(s, 16).constData());
            QVERIFY2(previous.isNumber() && previous.value() == down, describe(s, 16).constData());
        }
        // The wrap happens at the width given, not at the value's own size.
        for (int width = 1; width <= MaxWidth; ++width) {
            const std::string ones(static_cast<size_t>(width), '1');
            QCOMPARE(BigInteger(ones, 2).plusOne(width + 1).toString(2), "1" + std::string(ones.size(), '0'));
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
        QTest::newRow("trailing blank") << QByteArray("12 ") << 16;
        QTest::newRow("minus sign") << QByteArray("-5") << 10;
        QTest::newRow("plus sign") << QByteArray("+5") << 10;
        QTest::newRow("0x prefix") << QByteArray("0x1F") << 16;
        QTest::newRow("2 in binary") << QByteArray("0102") << 2;
        QTest::newRow("8 in octal") << QByteArray("78") << 8;
        QTest::newRow("A in decimal") << QByteArray("1A") << 10;
        QTest::newRow("high impedance") << QByteArray("-2") << 16;
        QTest::newRow("word") << QByteArray("DonTCare") << 16;
    }
    void rejectsTextThatIsNoNumber()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, radix);
        const BigInteger b(text.toStdString(), radix);
        QVERIFY(!b.isNumber());
        QVERIFY(!b.isValid(64));
        QVERIFY(!b.bitAt(0));
        // The text is handed back as it came, so callers can show it unchanged.
        for (const int r : {2, 8, 10, 16})
            QCOMPARE(b.toString(r), text.toStdString());
    }
};

QTEST_GUILESS_MAIN(TestBigInteger)
#include "test_biginteger.moc"
