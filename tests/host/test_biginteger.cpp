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

// Values of exactly, and of at most, each width: the random ones from a fixed
// seed, plus 0, 1 and all ones so that the edges are always there.
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
        const mpz_class ones = powerOfTwo(width) - 1;
        all.push_back({width, 0});
        all.push_back({width, 1});
        all.push_back({width, ones});
        all.push_back({width, random.get_z_bits(width)});
        all.push_back({width, random.get_z_bits(width) | (mpz_class(1) << (width - 1))});
    }
    return all;
}

QByteArray describe(const Sample& s, const std::string& text, int radix)
{
    return QByteArray("width ") + QByteArray::number(s.width) + " radix " + QByteArray::number(radix) + " text "
        + QByteArray::fromStdString(text.substr(0, 100));
}

} // namespace

class TestBigInteger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTextInEveryBusRadix();
    void writesTextInEveryRadix();
    void fitsItsWidthExactly();
    void readsEveryBit();
    void stepsWrapAtTheWidth();
    void rejectsTextThatIsNoNumber_data();
    void rejectsTextThatIsNoNumber();
};

void TestBigInteger::readsTextInEveryBusRadix()
{
    for (const Sample& s : samples()) {
        for (const int radix : {2, 8, 10, 16}) {
            std::vector<std::string> texts{s.value.get_str(radix)};
            if (radix == 16)
                texts.push_back(upper(texts.front()));
            // Bus values keep the leading zeros of their full width.
            texts.push_back("000" + texts.front());
            for (const std::string& text : texts) {
                const BigInteger b(text, radix);
                QVERIFY2(b.isNumber(), describe(s, text, radix).constData());
                QVERIFY2(b.value() == s.value, describe(s, text, radix).constData());
                QVERIFY2(b == BigInteger(s.value), describe(s, text, radix).constData());
            }
        }
    }
}

void TestBigInteger::writesTextInEveryRadix()
{
    for (const Sample& s : samples()) {
        const BigInteger b(s.value.get_str(16), 16);
        for (int radix = 2; radix <= 36; ++radix) {
            // GMP spells digits above 9 in upper case for a negative base.
            const std::string expected = s.value.get_str(-radix);
            QVERIFY2(b.toString(radix) == expected, describe(s, expected, radix).constData());
        }
        QCOMPARE(QByteArray::fromStdString(b.toString(16)), QByteArray::fromStdString(upper(s.value.get_str(16))));
    }
    QCOMPARE(BigInteger("abcdef", 16).toString(16), std::string("ABCDEF"));
    QCOMPARE(BigInteger("0", 16).toString(2), std::string("0"));
    QCOMPARE(BigInteger("00A", 16).toString(8), std::string("12"));
}

void TestBigInteger::fitsItsWidthExactly()
{
    for (int width = 1; width <= MaxWidth; ++width) {
        const mpz_class limit = powerOfTwo(width);
        const BigInteger largest(mpz_class(limit - 1).get_str(16), 16);
        const BigInteger tooLarge(limit.get_str(16), 16);
        QVERIFY2(largest.isValid(width), QByteArray::number(width).constData());
        QVERIFY2(!largest.isValid(width - 1), QByteArray::number(width).constData());
        QVERIFY2(!tooLarge.isValid(width), QByteArray::number(width).constData());
        QVERIFY2(tooLarge.isValid(width + 1), QByteArray::number(width).constData());
        QVERIFY(BigInteger("0", 16).isValid(width));
    }
    for (const Sample& s : samples()) {
        const BigInteger b(s.value.get_str(2), 2);
        QVERIFY(b.isValid(s.width));
        QCOMPARE(b.isValid(s.width - 1), s.value < powerOfTwo(s.width - 1));
    }
}

void TestBigInteger::readsEveryBit()
{
    for (const Sample& s : samples()) {
        const BigInteger b(s.value.get_str(8), 8);
        for (int bit = 0; bit < s.width + 3; ++bit) {
            const bool expected = mpz_tstbit(s.value.get_mpz_t(), static_cast<mp_bitcnt_t>(bit)) != 0;
            QVERIFY2(b.bitAt(bit) == expected,
                     (describe(s, s.value.get_str(8), 8) + " bit " + QByteArray::number(bit)).constData());
        }
        QVERIFY(!b.bitAt(-1));
    }
}

void TestBigInteger::stepsWrapAtTheWidth()
{
    for (const Sample& s : samples()) {
        const mpz_class modulus = powerOfTwo(s.width);
        const BigInteger b(s.value.get_str(16), 16);
        mpz_class up = (s.value + 1) % modulus;
        mpz_class down = s.value - 1;
        if (down < 0)
            down += modulus;
        const BigInteger next = b.plusOne(s.width);
        const BigInteger previous = b.minusOne(s.width);
        QVERIFY2(next.isNumber() && next.value() == up, describe(s, s.value.get_str(16), 16).constData());
        QVERIFY2(previous.isNumber() && previous.value() == down, describe(s, s.value.get_str(16), 16).constData());
        QVERIFY(next.isValid(s.width) && previous.isValid(s.width));
        // One step each way is the identity.
        QVERIFY(next.minusOne(s.width) == b && previous.plusOne(s.width) == b);
    }
    for (int width = 1; width <= MaxWidth; ++width) {
        const std::string ones = std::string(static_cast<size_t>(width), '1');
        QCOMPARE(BigInteger(ones, 2).plusOne(width).toString(2), std::string("0"));
        QCOMPARE(BigInteger("0", 2).minusOne(width).toString(2), ones);
        // The wrap happens at the width given, not at the value's own size.
        QCOMPARE(BigInteger(ones, 2).plusOne(width + 1).toString(2), "1" + std::string(static_cast<size_t>(width), '0'));
    }
    QCOMPARE(BigInteger("F", 16).plusOne(4).toString(16), std::string("0"));
    QCOMPARE(BigInteger("0", 16).minusOne(8).toString(16), std::string("FF"));
    QCOMPARE(BigInteger("7F", 16).plusOne(8).toString(16), std::string("80"));
}

void TestBigInteger::rejectsTextThatIsNoNumber_data()
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
    QTest::newRow("don't care") << QByteArray("-1") << 16;
    QTest::newRow("high impedance") << QByteArray("-2") << 16;
    QTest::newRow("word") << QByteArray("DonTCare") << 16;
}

void TestBigInteger::rejectsTextThatIsNoNumber()
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

QTEST_GUILESS_MAIN(TestBigInteger)
#include "test_biginteger.moc"
