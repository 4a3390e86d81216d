#include "ZAXHostChecksum.h"

#include <QByteArray>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

#include <zlib.h>

class tst_ZAXHostChecksum : public QObject
{
    Q_OBJECT

private slots:
    void isThatOfKnownBytes();
    void isThatOfZlibForEveryLength();
    void everyBitCounts();
};

namespace {

QByteArray RandomBytes(int size)
{
    QRandomGenerator random(static_cast<quint32>(size));
    QByteArray bytes(size, Qt::Uninitialized);
    std::ranges::generate(bytes, [&] { return static_cast<char>(random.generate()); });
    return bytes;
}

} // namespace

void tst_ZAXHostChecksum::isThatOfKnownBytes()
{
    QCOMPARE(ZAXHostChecksum::Of({}), 0u);
    QCOMPARE(ZAXHostChecksum::Of("123456789"), 0xcbf43926u);
    QCOMPARE(ZAXHostChecksum::Of(QByteArray("123456789").repeated(100)), 0x09fd0fd7u);
}

void tst_ZAXHostChecksum::isThatOfZlibForEveryLength()
{
    const QByteArray bytes = RandomBytes(1100);
    const auto* const first = reinterpret_cast<const Bytef*>(bytes.constData());
    for (int start : {0, 1, 3, 8, 15}) {
        for (int size = 0; size < 1000; ++size)
            QCOMPARE(ZAXHostChecksum::Of(QByteArrayView(bytes).sliced(start, size)),
                     quint32(crc32_z(0, first + start, size_t(size))));
    }
}

void tst_ZAXHostChecksum::everyBitCounts()
{
    QByteArray bytes = RandomBytes(333);
    const quint32 whole = ZAXHostChecksum::Of(bytes);
    for (qsizetype bit = 0; bit < 8 * bytes.size(); ++bit) {
        const char flip = static_cast<char>(1 << bit % 8);
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ flip);
        QVERIFY(ZAXHostChecksum::Of(bytes) != whole);
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ flip);
    }
    QCOMPARE(ZAXHostChecksum::Of(bytes), whole);
}

QTEST_GUILESS_MAIN(tst_ZAXHostChecksum)
#include "tst_ZAXHostChecksum.moc"
