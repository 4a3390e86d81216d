#include "ZAXMatRecordTable.h"

#include <QMap>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <algorithm>

using Table = ZAXMatRecordTable;

namespace {

ZAXMatDefinition Record(const QByteArray& key, const QString& name = {})
{
    ZAXMatDefinition record;
    record.SetKey(key);
    record.SetName(name);
    return record;
}

/// Inserts a record under each of \a keys, named after it.
void Fill(Table& table, const QList<QByteArray>& keys)
{
    for (const QByteArray& key : keys)
        table.Insert(key, Record(key, QString::fromLatin1(key)));
}

/// A key with the same bytes that shares them with no other.
QByteArray Unshared(const QByteArray& key)
{
    return {key.constData(), key.size()};
}

/// The names that a look-up of each of \a keys gives, "-" for a key that is not there.
QByteArray Names(const Table& table, const QList<QByteArray>& keys)
{
    QList<QByteArray> names;
    for (const QByteArray& key : keys) {
        const ZAXMatDefinition* const record = table.Find(key);
        names.append(record ? record->GetName().toLatin1() : QByteArray("-"));
    }
    return names.join(' ');
}

} // namespace

/// The table is compiled into this program, since the library keeps it to itself.
class tst_ZAXMatRecordTable : public QObject
{
    Q_OBJECT

private slots:
    void anEmptyTableHasNothing();
    void keysAndRecordsComeInTheOrderOfInsertion_data();
    void keysAndRecordsComeInTheOrderOfInsertion();
    void recordsAreFoundInAnyOrder_data();
    void recordsAreFoundInAnyOrder();
    void keysThatAreNotSharedAreFound();
    void keysAreComparedByteForByte();
    void aKeyNeedNotBeThatOfTheRecord();
    void insertingUnderAKeyReplacesItsRecord_data();
    void insertingUnderAKeyReplacesItsRecord();
    void aMissingRecordIsMadeByIndex();
    void recordsAreChangedInPlace();
    void removingPutsTheLastIntoTheGap_data();
    void removingPutsTheLastIntoTheGap();
    void removingWhatIsAbsentChangesNothing();
    void aRemovedKeyIsInsertedAgain();
    void aKeyBehindTheLastMayStandInFront();
    void keysThatWereListedStayAsTheyWere();
    void clearedItIsEmptyAndTakesRecords();
    void tablesAreSwapped();
    void anySequenceOfChangesGivesWhatAMapGives();
};

void tst_ZAXMatRecordTable::anEmptyTableHasNothing()
{
    Table table;
    QVERIFY(table.GetKeys().isEmpty());
    QVERIFY(table.GetRecords().isEmpty());
    QVERIFY(!table.Find("a"));
    QVERIFY(!table.Find(QByteArray()));
    QVERIFY(!table.Value("a").IsValid());
    QVERIFY(!table.Remove("a"));
}

void tst_ZAXMatRecordTable::keysAndRecordsComeInTheOrderOfInsertion_data()
{
    QTest::addColumn<QList<QByteArray>>("keys");
    QTest::newRow("none") << QList<QByteArray>();
    QTest::newRow("ascending") << QList<QByteArray>{"a", "b", "c"};
    QTest::newRow("descending") << QList<QByteArray>{"c", "b", "a"};
    QTest::newRow("ascending at first") << QList<QByteArray>{"b", "c", "a", "d"};
    QTest::newRow("an empty key") << QList<QByteArray>{"", "a"};
}

void tst_ZAXMatRecordTable::keysAndRecordsComeInTheOrderOfInsertion()
{
    QFETCH(const QList<QByteArray>, keys);
    Table table;
    Fill(table, keys);
    QCOMPARE(table.GetKeys(), keys);
    QCOMPARE(table.GetRecords().size(), keys.size());
    const auto keyOf = [](const ZAXMatDefinition& record) { return record.GetKey(); };
    QVERIFY(std::ranges::equal(table.GetRecords(), keys, {}, keyOf));
}

void tst_ZAXMatRecordTable::recordsAreFoundInAnyOrder_data()
{
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("as they lie") << QList<int>{0, 1, 2, 3};
    QTest::newRow("backwards") << QList<int>{3, 2, 1, 0};
    QTest::newRow("one again and again") << QList<int>{2, 2, 2};
    QTest::newRow("as they lie, twice") << QList<int>{0, 1, 2, 3, 0, 1, 2, 3};
    QTest::newRow("in order, out of it and in order again") << QList<int>{0, 1, 3, 0, 1, 2, 3, 1};
}

void tst_ZAXMatRecordTable::recordsAreFoundInAnyOrder()
{
    QFETCH(const QList<int>, order);
    Table table;
    Fill(table, {"a", "b", "c", "d"});
    const QList<QByteArray> keys = table.GetKeys();
    for (const int position : order)
        QCOMPARE(table.Find(keys.at(position)), &table.GetRecords().at(position));
}

void tst_ZAXMatRecordTable::keysThatAreNotSharedAreFound()
{
    Table table;
    Fill(table, {"a", "b", "c"});
    QCOMPARE(Names(table, {Unshared("a"), Unshared("b"), Unshared("c")}), QByteArray("a b c"));
}

void tst_ZAXMatRecordTable::keysAreComparedByteForByte()
{
    Table table;
    Fill(table, {"a", "ab", QByteArray("a\0b", 3)});
    QCOMPARE(Names(table, {"A", "a", "abc", "ab", QByteArray("a\0b", 3), QByteArray("a\0", 2)}),
             QByteArray("- a - ab a\0b -", 14));
    // The beginning of a listed key has its address, yet it is another.
    const QByteArray second = table.GetKeys().at(1);
    const QByteArray beginning = QByteArray::fromRawData(second.constData(), 1);
    QCOMPARE(Names(table, {"a", beginning}), QByteArray("a a"));
}

void tst_ZAXMatRecordTable::aKeyNeedNotBeThatOfTheRecord()
{
    Table table;
    table.Insert("a", ZAXMatDefinition());
    QVERIFY(table.Find("a"));
    QVERIFY(!table.Find("a")->IsValid());
    QVERIFY(!table.Find(QByteArray()));
}

void tst_ZAXMatRecordTable::insertingUnderAKeyReplacesItsRecord_data()
{
    QTest::addColumn<QList<QByteArray>>("keys");
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("the first") << QList<QByteArray>{"a", "b", "c"} << QByteArray("a");
    QTest::newRow("the last") << QList<QByteArray>{"a", "b", "c"} << QByteArray("c");
    QTest::newRow("out of order") << QList<QByteArray>{"c", "a", "b"} << QByteArray("a");
    QTest::newRow("the only one") << QList<QByteArray>{"a"} << QByteArray("a");
}

void tst_ZAXMatRecordTable::insertingUnderAKeyReplacesItsRecord()
{
    QFETCH(const QList<QByteArray>, keys);
    QFETCH(const QByteArray, key);
    Table table;
    Fill(table, keys);
    table.Insert(key, Record(key, QStringLiteral("new")));
    QCOMPARE(table.GetKeys(), keys);
    QCOMPARE(table.GetRecords().size(), keys.size());
    QCOMPARE(table.Value(key).GetName(), QStringLiteral("new"));
}

void tst_ZAXMatRecordTable::aMissingRecordIsMadeByIndex()
{
    Table table;
    Fill(table, {"b"});
    QCOMPARE(table["b"].GetName(), QStringLiteral("b"));
    QVERIFY(!table["a"].IsValid());
    QCOMPARE(table.GetKeys(), (QList<QByteArray>{"b", "a"}));
}

void tst_ZAXMatRecordTable::recordsAreChangedInPlace()
{
    Table table;
    Fill(table, {"a", "b"});
    const ZAXMatDefinition copy = table.Value("a");
    table.Find("a")->SetName(QStringLiteral("new"));
    for (ZAXMatDefinition& record : table)
        record.SetType(ZAXMatDefinition::Packaging);
    QCOMPARE(Names(table, {"a", "b"}), QByteArray("new b"));
    QCOMPARE(table.Value("b").GetType(), ZAXMatDefinition::Packaging);
    QCOMPARE(copy.GetName(), QStringLiteral("a"));
}

void tst_ZAXMatRecordTable::removingPutsTheLastIntoTheGap_data()
{
    QTest::addColumn<bool>("isLookedUpBefore");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QList<QByteArray>>("left");
    for (const bool isLookedUpBefore : {false, true}) {
        const QByteArray suffix = isLookedUpBefore ? ", after a look-up" : "";
        QTest::newRow("the first" + suffix) << isLookedUpBefore << QByteArray("a") << QList<QByteArray>{"c", "b"};
        QTest::newRow("the middle" + suffix) << isLookedUpBefore << QByteArray("b") << QList<QByteArray>{"a", "c"};
        QTest::newRow("the last" + suffix) << isLookedUpBefore << QByteArray("c") << QList<QByteArray>{"a", "b"};
    }
}

void tst_ZAXMatRecordTable::removingPutsTheLastIntoTheGap()
{
    QFETCH(const bool, isLookedUpBefore);
    QFETCH(const QByteArray, key);
    QFETCH(const QList<QByteArray>, left);
    Table table;
    Fill(table, {"a", "b", "c"});
    QCOMPARE(table.Find("c") != nullptr && isLookedUpBefore, isLookedUpBefore);
    QVERIFY(table.Remove(key));
    QCOMPARE(table.GetKeys(), left);
    QVERIFY(!table.Find(key));
    QCOMPARE(Names(table, left), left.join(' '));
    QVERIFY(!table.Remove(key));
}

void tst_ZAXMatRecordTable::removingWhatIsAbsentChangesNothing()
{
    Table table;
    Fill(table, {"a", "b"});
    QVERIFY(!table.Remove("c"));
    QCOMPARE(table.GetKeys(), (QList<QByteArray>{"a", "b"}));
}

void tst_ZAXMatRecordTable::aRemovedKeyIsInsertedAgain()
{
    Table table;
    Fill(table, {"a", "b", "c"});
    table.Remove("a");
    table.Insert("a", Record("a", QStringLiteral("new")));
    table.Insert("d", Record("d", QStringLiteral("d")));
    QCOMPARE(table.GetKeys(), (QList<QByteArray>{"c", "b", "a", "d"}));
    QCOMPARE(Names(table, {"a", "b", "c", "d"}), QByteArray("new b c d"));
}

void tst_ZAXMatRecordTable::aKeyBehindTheLastMayStandInFront()
{
    Table table;
    Fill(table, {"a", "b", "c", "d"});
    table.Remove("a");
    QCOMPARE(table.GetKeys(), (QList<QByteArray>{"d", "b", "c"}));
    table.Insert("d", Record("d", QStringLiteral("new")));
    QCOMPARE(table.GetKeys(), (QList<QByteArray>{"d", "b", "c"}));
    QCOMPARE(Names(table, {"b", "c", "d"}), QByteArray("b c new"));
}

void tst_ZAXMatRecordTable::keysThatWereListedStayAsTheyWere()
{
    Table table;
    Fill(table, {"a", "b", "c"});
    const QList<QByteArray> keys = table.GetKeys();
    table.Remove("a");
    Fill(table, {"d"});
    QCOMPARE(keys, (QList<QByteArray>{"a", "b", "c"}));
    QCOMPARE(Names(table, keys), QByteArray("- b c"));
}

void tst_ZAXMatRecordTable::clearedItIsEmptyAndTakesRecords()
{
    Table table;
    Fill(table, {"b", "a"});
    table.Clear();
    Fill(table, {"b", "a"});
    QCOMPARE(Names(table, {"a", "b"}), QByteArray("a b"));
    table.Clear();
    QVERIFY(table.GetKeys().isEmpty());
    QVERIFY(!table.Find("a"));
    Fill(table, {"a", "b"});
    QCOMPARE(Names(table, {"a", "b"}), QByteArray("a b"));
}

void tst_ZAXMatRecordTable::tablesAreSwapped()
{
    Table a;
    Table b;
    Fill(a, {"b", "a"});
    Fill(b, {"c"});
    a.Swap(b);
    QCOMPARE(Names(a, {"a", "b", "c"}), QByteArray("- - c"));
    QCOMPARE(Names(b, {"a", "b", "c"}), QByteArray("a b -"));
    // Their order goes along: "b" is behind the last one, and there.
    b.Insert("b", Record("b", QLatin1String("new")));
    QCOMPARE(b.GetKeys(), (QList<QByteArray>{"b", "a"}));
    QCOMPARE(Names(b, {"a", "b"}), QByteArray("a new"));
}

void tst_ZAXMatRecordTable::anySequenceOfChangesGivesWhatAMapGives()
{
    QRandomGenerator random(1);
    Table table;
    QMap<QByteArray, QString> model;
    for (int step = 0; step < 20000; ++step) {
        const QByteArray key = QByteArray::number(random.bounded(40));
        const QString name = QString::number(step);
        switch (random.bounded(5)) {
        case 0:
            QCOMPARE(table.Remove(key), model.remove(key) > 0);
            break;
        case 1:
        case 2:
            table.Insert(key, Record(key, name));
            model.insert(key, name);
            break;
        case 3:
            table[key].SetName(name);
            model.insert(key, name);
            break;
        default:
            QCOMPARE(table.Value(key).GetName(), model.value(key));
        }
        if (step % 500 == 499) {
            table.Clear();
            model.clear();
        }
        const QList<QByteArray> keys = table.GetKeys();
        QCOMPARE(QSet<QByteArray>(keys.begin(), keys.end()).size(), model.size());
        QCOMPARE(keys.size(), model.size());
        for (const QByteArray& listed : keys)
            QCOMPARE(table.Value(listed).GetName(), model.value(listed));
    }
}

QTEST_GUILESS_MAIN(tst_ZAXMatRecordTable)
#include "tst_ZAXMatRecordTable.moc"
