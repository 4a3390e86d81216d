#include "ZAXMatNestingColor.h"

#include <QSet>
#include <QTest>

class tst_ZAXMatNestingColor : public QObject
{
    Q_OBJECT

private slots:
    void lowBytesAreDrawnAsBlueGreenRed_data();
    void lowBytesAreDrawnAsBlueGreenRed();
    void everyChannelTakesAllBytes();
};

void tst_ZAXMatNestingColor::lowBytesAreDrawnAsBlueGreenRed_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::newRow("seed 1") << 1u;
    QTest::newRow("seed 2") << 2u;
    QTest::newRow("seed 77") << 77u;
}

void tst_ZAXMatNestingColor::lowBytesAreDrawnAsBlueGreenRed()
{
    QFETCH(const quint32, seed);
    QRandomGenerator generator(seed);
    QRandomGenerator same(seed);
    const quint32 first = same.generate();
    const quint32 second = same.generate();
    const quint32 third = same.generate();
    const QColor color = ZAXMatDrawNestingColor(generator);
    QCOMPARE(color.blue(), static_cast<int>(first % 256));
    QCOMPARE(color.green(), static_cast<int>(second % 256));
    QCOMPARE(color.red(), static_cast<int>(third % 256));
    QCOMPARE(color.alpha(), 255);
    // Three numbers are drawn, and no more.
    QCOMPARE(generator.generate(), same.generate());
}

void tst_ZAXMatNestingColor::everyChannelTakesAllBytes()
{
    QRandomGenerator generator(1);
    QSet<int> reds;
    QSet<int> greens;
    QSet<int> blues;
    for (int i = 0; i < 10000; ++i) {
        const QColor color = ZAXMatDrawNestingColor(generator);
        reds.insert(color.red());
        greens.insert(color.green());
        blues.insert(color.blue());
    }
    QCOMPARE(reds.size(), 256);
    QCOMPARE(greens.size(), 256);
    QCOMPARE(blues.size(), 256);
}

QTEST_GUILESS_MAIN(tst_ZAXMatNestingColor)
#include "tst_ZAXMatNestingColor.moc"
