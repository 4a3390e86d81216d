#include "CatalogueFolder.h"
#include "CatalogueText.h"
#include "ZAXMatJsonFileProvider.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <limits>

// What may stand in a catalogue's file, from the unusual to the hostile.

namespace {

/// A catalogue of one material with one value.
QByteArray CatalogueWith(const QByteArray& value)
{
    return CatalogueOf({MaterialText("a", "{'':{'own':" + value + "}}")});
}

/// A value of lists in each other, so many that the whole file has \a levels: the root, the record, the properties, the
/// table, and these.
QByteArray Nested(int levels)
{
    return QByteArray(levels - 4, '[') + QByteArray(levels - 4, ']');
}

/// What the file is after the provider has read and written it.
QByteArray Rewritten(CatalogueFolder& folder, const QByteArray& text)
{
    folder.Write(text);
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.Commit();
    return folder.Read();
}

QByteArray Compact(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).toJson(QJsonDocument::Compact);
}

} // namespace

class tst_catalogue_contents : public QObject
{
    Q_OBJECT

private slots:
    void aFileThatQtRefusesIsEmptyAndReported_data();
    void aFileThatQtRefusesIsEmptyAndReported();
    void aValueIsReadAndWritten_data();
    void aValueIsReadAndWritten();
    void thereIsRoomForADeepValue();
    void aValueTooDeepToBeReadIsNotWritten();
    void whatQtHasToReadAndWriteMayStandBehindTheRest();
    void ofWhatIsThereTwiceTheLastCounts_data();
    void ofWhatIsThereTwiceTheLastCounts();
    void aByteOrderMarkIsPassedOver();
    void lettersBeyondAsciiDoNotSurviveInKeys();
    void textsSurviveWhateverTheyHold_data();
    void textsSurviveWhateverTheyHold();
    void aByteOrderMarkAtTheStartOfATextIsLost();
    void numbersThatJsonDoesNotKnowAreMissing_data();
    void numbersThatJsonDoesNotKnowAreMissing();
};

void tst_catalogue_contents::aFileThatQtRefusesIsEmptyAndReported_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("why");
    const auto row = [](const char* name, const QByteArray& text, const char* why) {
        QTest::newRow(name) << text << QString::fromLatin1(why);
    };
    row("1,025 levels", CatalogueWith(Nested(1025)), "too deeply nested document");
    row("100,000 levels", QByteArray(100000, '['), "too deeply nested document");
    row("100,000 levels of objects", QByteArray("{\"a\":").repeated(100000), "too deeply nested document");
    row("larger than any double", CatalogueWith("1e400"), "illegal number");
    row("less than any double", CatalogueWith("-1e400"), "illegal number");
    row("smaller than any double", CatalogueWith("1e-400"), "illegal number");
    row("infinity", CatalogueWith("Infinity"), "illegal number");
    row("UTF-16", QByteArray("\xff\xfe{\0}\0", 6), "illegal value");
    row("half of a pair, as three bytes", CatalogueWith("'\xed\xa0\x80'"), "invalid UTF8 string");
    row("too long for its letter", CatalogueWith("'\xc0\xaf'"), "invalid UTF8 string");
    row("Latin-1", CatalogueWith("'\xe5'"), "invalid UTF8 string");
    row("zeros", QByteArray(4096, '\0'), "illegal value");
}

void tst_catalogue_contents::aFileThatQtRefusesIsEmptyAndReported()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QString, why);
    CatalogueFolder folder;
    folder.Write(text);
    ExpectWarning(QLatin1String("^Malformed .*/materials\\.json: ") + why + QLatin1String(" \\(at byte \\d+\\)$"));
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList());
    QCOMPARE(folder.Read(), text);
}

void tst_catalogue_contents::aValueIsReadAndWritten_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char* name, const QByteArray& value, const QByteArray& written) {
        QTest::newRow(name) << value << written;
    };
    row("the largest double", "1.7976931348623157e308", "1.7976931348623157e+308");
    row("the smallest double", "5e-324", "5e-324");
    row("zero by underflow of its digits", "0.00e-400", "0");
    row("negative zero", "-0.0", "0");
    row("the largest integer", "9223372036854775807", "9223372036854775807");
    row("an integer beyond", "9223372036854775808", "9223372036854776000");
    row("more digits than a double has", "0.1000000000000000055511151231257827", "0.1");
    row("a list", "[1,[2,{'a':null}]]", "[1,[2,{'a':null}]]");
    row("an object", "{'b':1,'a':[]}", "{'a':[],'b':1}");
}

void tst_catalogue_contents::aValueIsReadAndWritten()
{
    QFETCH(const QByteArray, value);
    QFETCH(const QByteArray, written);
    CatalogueFolder folder;
    const QByteArray once = Rewritten(folder, CatalogueWith(value));
    QVERIFY2(Compact(once).contains("{\"own\":" + Json(written) + '}'), once);
    QCOMPARE(Rewritten(folder, once), once);
}

void tst_catalogue_contents::thereIsRoomForADeepValue()
{
    CatalogueFolder folder;
    const QByteArray text = CatalogueWith(Nested(1024));
    const QByteArray once = Rewritten(folder, text);
    QCOMPARE(Compact(once), Compact(text));
    QCOMPARE(Rewritten(folder, once), once);
}

void tst_catalogue_contents::aValueTooDeepToBeReadIsNotWritten()
{
    CatalogueFolder folder;
    const QByteArray text = CatalogueOf({MaterialText("k")});
    folder.Write(text);
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.GetMaterial("k");
    QVariant deep;
    for (int level = 0; level < 1025; ++level)
        deep = QVariantList{deep};
    material.SetValue("own", deep);
    QVERIFY(provider.Update(material));
    ExpectWarning(QLatin1String("^Cannot write .*/materials\\.json: too deeply nested document$"));
    provider.Commit();
    QCOMPARE(folder.Read(), text);
    QVERIFY(provider.GetMaterial("k").IsDefined("own"));
}

void tst_catalogue_contents::whatQtHasToReadAndWriteMayStandBehindTheRest()
{
    // By then pieces of the file have been read or written without it.
    constexpr int recordCount = 3000;
    QByteArrayList members;
    for (int i = 0; i < recordCount; ++i)
        members.append(MaterialText(QByteArray::number(10000 + i), "{'':{'comment':'" + QByteArray(200, 'x') + "'}}"));
    members.append(MaterialText("z", "{'':{'own':[1,{'a':1e2}]}}"));
    const QByteArray text = CatalogueOf(members);
    CatalogueFolder folder;
    const QByteArray once = Rewritten(folder, text);
    QCOMPARE(once, QJsonDocument::fromJson(once).toJson());
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys().size(), recordCount + 1);
    QCOMPARE(provider.GetMaterial("10000").GetValue("comment").toString().size(), 200);
    QCOMPARE(QJsonValue::fromVariant(provider.GetMaterial("z").GetValue("own")),
             QJsonValue(QJsonArray{1, QJsonObject{{QLatin1String("a"), 100}}}));
}

void tst_catalogue_contents::ofWhatIsThereTwiceTheLastCounts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("same");
    const auto row = [](const char* name, const QByteArray& text, const QByteArray& same) {
        QTest::newRow(name) << Json(text) << Json(same);
    };
    row("a record", "{'a':{'key':'1'},'b':{'key':'2'},'a':{'key':'3'}}", "{'a':{'key':'3'},'b':{'key':'2'}}");
    row("a member", "{'a':{'key':'1','name':'x','key':'2'}}", "{'a':{'key':'2','name':'x'}}");
    row("the properties", "{'a':{'key':'1','properties':{'':{'x':1}},'properties':{'':{'y':2}}}}",
        "{'a':{'key':'1','properties':{'':{'y':2}}}}");
    row("a table", "{'a':{'key':'1','properties':{'':{'x':1},'':{'y':2}}}}",
        "{'a':{'key':'1','properties':{'':{'y':2}}}}");
    row("a property", "{'a':{'key':'1','properties':{'':{'x':1,'y':2,'x':3}}}}",
        "{'a':{'key':'1','properties':{'':{'x':3,'y':2}}}}");
}

void tst_catalogue_contents::ofWhatIsThereTwiceTheLastCounts()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QByteArray, same);
    CatalogueFolder folder;
    const QByteArray expected = Rewritten(folder, same);
    QVERIFY(Compact(expected) != "{}");
    QCOMPARE(Rewritten(folder, text), expected);
}

void tst_catalogue_contents::aByteOrderMarkIsPassedOver()
{
    CatalogueFolder folder;
    const QByteArray text = CatalogueWith("1");
    const QByteArray expected = Rewritten(folder, text);
    QVERIFY(Compact(expected).contains("{\"own\":1}"));
    QCOMPARE(Rewritten(folder, "\xef\xbb\xbf" + text), expected);
}

void tst_catalogue_contents::lettersBeyondAsciiDoNotSurviveInKeys()
{
    CatalogueFolder folder;
    folder.Write(CatalogueOf({MaterialText("å"), PackagingText("p", "å"), MaterialText("€")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(provider.GetMaterial("\xe5").IsValid());
    QCOMPARE(provider.GetPackagingKeys("\xe5"), QByteArrayList{"p"});
    // What Latin-1 has no letter for.
    QVERIFY(provider.GetMaterial("?").IsValid());
    QVERIFY(!provider.GetMaterial("å").IsValid());
    provider.Commit();
    const QJsonObject written = QJsonDocument::fromJson(folder.Read()).object();
    QCOMPARE(written.keys(), (QStringList{QLatin1String("?"), QLatin1String("p"), QString(QChar(0xfffd))}));
    // From then on both are the same, and the one that stands last in the file counts.
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"?"});
    QCOMPARE(provider.GetMaterial("?").GetName(), QString::fromUtf8("Material å"));
    QCOMPARE(provider.GetPackagingKeys("?"), QByteArrayList{"p"});
}

void tst_catalogue_contents::textsSurviveWhateverTheyHold_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("half of a pair") << QString(QChar(0xd800));
    QTest::newRow("the other half") << QString(QChar(0xdc00)) + QLatin1String("x");
    QTest::newRow("halves in the wrong order") << QString(QChar(0xdc00)) + QChar(0xd800);
    QTest::newRow("a pair") << QString::fromUtf8("🔩");
    QTest::newRow("a byte-order mark within") << QString(u'x') + QChar(0xfeff);
    QTest::newRow("what is no character") << QString(QChar(0xffff));
    QTest::newRow("a zero") << QString(QChar(0));
    QTest::newRow("control characters") << QString::fromLatin1("\x01\x08\x0c\r\n\t\x1f\x7f");
    QTest::newRow("quotes and slashes") << QString::fromLatin1("\"\\/'");
    QTest::newRow("a line separator") << QString(QChar(0x2028));
}

void tst_catalogue_contents::textsSurviveWhateverTheyHold()
{
    QFETCH(const QString, text);
    CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.CreateMaterial(text);
    material.SetValue("comment", text);
    material.SetValue("own", text, "Extension");
    QVERIFY(provider.Update(material));
    provider.Commit();
    const ZAXMatDefinition read = provider.GetMaterial(material.GetKey());
    QCOMPARE(read.GetName(), text);
    QCOMPARE(read.GetValue("comment"), QVariant(text));
    QCOMPARE(read.GetValue("own", "Extension"), QVariant(text));
}

void tst_catalogue_contents::aByteOrderMarkAtTheStartOfATextIsLost()
{
    // Qt writes it as it is and passes it over when it reads.
    CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray key = provider.CreateMaterial(QString(QChar(0xfeff)) + u'x').GetKey();
    provider.Commit();
    QCOMPARE(provider.GetMaterial(key).GetName(), QLatin1String("x"));
}

void tst_catalogue_contents::numbersThatJsonDoesNotKnowAreMissing_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("negative infinity") << -std::numeric_limits<double>::infinity();
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
}

void tst_catalogue_contents::numbersThatJsonDoesNotKnowAreMissing()
{
    QFETCH(const double, number);
    CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.CreateMaterial(QLatin1String("Steel"));
    material.SetValue("density", number);
    QVERIFY(provider.Update(material));
    provider.Commit();
    QVERIFY(provider.GetMaterial(material.GetKey()).GetValue("density").isNull());
    QCOMPARE(provider.GetMaterial(material.GetKey()).GetName(), QLatin1String("Steel"));
}

QTEST_GUILESS_MAIN(tst_catalogue_contents)
#include "tst_catalogue_contents.moc"
