#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTest>

namespace {

/// A stored feature: "ZAXMatMaterial.v7.empty-item" is of class ZAXMatMaterial and version 7.
struct Golden
{
    explicit Golden(const QString& name) : name(name)
    {
        const QStringList parts = name.split(QLatin1Char('.'));
        className = parts.at(0).toLatin1();
        version = parts.at(1).mid(1).toInt();
    }

    QString name;
    QByteArray className;
    int version = 0;
};

/// The classes that have golden files, and which feature of GoldenDocument theirs are read into.
struct Subject
{
    const QMetaObject* type;
    quint64 id;
};

const QList<Subject> subjects{
    {&ZAXMatRoot::staticMetaObject, 10},
    {&ZAXMatMaterial::staticMetaObject, 2},
    {&ZAXMatMaterialExtension::staticMetaObject, 6},
    {&ZAXMatPackaging::staticMetaObject, 7},
    {&ZAXMatPackagingExtension::staticMetaObject, 9},
};

Subject SubjectOf(const Golden& golden)
{
    const auto found = std::ranges::find_if(
        subjects, [&](const Subject& subject) { return golden.className == subject.type->className(); });
    return found == subjects.end() ? Subject{nullptr, 0} : *found;
}

QByteArray ContentOf(const QString& name)
{
    QFile file(QDir(QLatin1String(ZAX_GOLDEN_DIR)).filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<Golden> GoldenFiles()
{
    const QStringList files = QDir(QLatin1String(ZAX_GOLDEN_DIR)).entryList({Text("*.bin")}, QDir::Files, QDir::Name);
    QList<Golden> goldens;
    for (const QString& file : files)
        goldens.append(Golden(file.chopped(4)));
    return goldens;
}

ZAXTestStored StoredIn(const Golden& golden)
{
    QDataStream data(ContentOf(golden.name + Text(".bin")));
    quint32 count = 0;
    data >> count;
    ZAXTestStored stored;
    for (quint32 i = 0; i < count; ++i) {
        quint64 id = 0;
        data >> id;
        stored.references.append(ZAXGeoGeometryRef::FromId(id));
    }
    stored.payload = data.device()->readAll();
    return stored;
}

/// The document that the golden files stand in: a material 2 with the packagings 3, 4 and 7 and the extensions 5 and
/// 6, the packaging 7 with the extensions 8 and 9, and a materials root 10 of its own.
class GoldenDocument
{
public:
    explicit GoldenDocument(const Golden& golden) : m_golden(golden)
    {
        auto* const material = m_document.Recreate<ZAXMatMaterial>(2, m_document.root);
        m_document.Recreate<ZAXMatPackaging>(3, material);
        m_document.Recreate<ZAXMatPackaging>(4, material);
        m_document.Recreate<ZAXTestAssistGas>(5, material);
        m_document.Recreate<ZAXTestPiercing>(6, material);
        auto* const packaging = m_document.Recreate<ZAXMatPackaging>(7, material);
        m_document.Recreate<ZAXTestTrim>(8, packaging);
        m_document.Recreate<ZAXTestGrain>(9, packaging);
        new ZAXMatRoot(&m_document.container, ZAXGeoGeometryRef::FromId(10));
        material->SetNestingColor(QColor(1, 2, 3));
    }

    ZAXFeatObject* GetSubject() const { return GetFeature(SubjectOf(m_golden).id); }

    void Load() const
    {
        const ZAXTestStored stored = StoredIn(m_golden);
        ZAXGeoStream stream(&m_document.container, stored.payload, stored.references);
        stream.SetVersions({{"ZAXFeatObject", 1}, {m_golden.className, m_golden.version}});
        GetSubject()->Load(stream);
        QCOMPARE(stream.GetDataStream().status(), QDataStream::Ok);
        QVERIFY(stream.GetDataStream().atEnd());
    }

    /// The label and the properties of the subject's class, one to a line.
    QStringList Describe() const
    {
        const ZAXFeatObject* const subject = GetSubject();
        const QMetaObject* const type = SubjectOf(m_golden).type;
        QStringList lines{Line(Text("label"), subject->GetLabel())};
        for (int i = type->propertyOffset(); i < type->propertyCount(); ++i)
            lines.append(Line(QLatin1String(type->property(i).name()), ToText(type->property(i).read(subject))));
        return lines;
    }

    /// The active packagings of the material, by id.
    QString DescribeActivity() const
    {
        const auto* const material = qobject_cast<ZAXMatMaterial*>(GetFeature(2));
        return Line(Text("active"), ToIds(material->GetActivePackaging()));
    }

private:
    ZAXFeatObject* GetFeature(quint64 id) const
    {
        return qobject_cast<ZAXFeatObject*>(m_document.container.GetGeometryByRef(ZAXGeoGeometryRef::FromId(id)));
    }

    static QString Line(const QString& name, const QString& value) { return (name + Text(": ") + value).trimmed(); }

    template <typename T>
    static QString ToIds(const QList<T*>& features)
    {
        QStringList ids;
        for (const T* feature : features)
            ids.append(QString::number(ZAXGeoGeometryRef(feature).GetId()));
        return ids.join(QLatin1Char(' '));
    }

    static QString ToText(const QVariant& value)
    {
        if (value.metaType() == QMetaType::fromType<QList<ZAXMatMaterialExtension*>>())
            return ToIds(value.value<QList<ZAXMatMaterialExtension*>>());
        if (value.metaType() == QMetaType::fromType<QList<ZAXMatPackagingExtension*>>())
            return ToIds(value.value<QList<ZAXMatPackagingExtension*>>());
        if (value.metaType() == QMetaType::fromType<QList<ZAXMatMaterial*>>())
            return ToIds(value.value<QList<ZAXMatMaterial*>>());
        if (value.metaType() == QMetaType::fromType<QColor>())
            return value.value<QColor>().name(QColor::HexArgb);
        if (value.metaType() == QMetaType::fromType<ZAXMatPackaging::Form>())
            return QString::number(value.toInt());
        return value.toString();
    }

    Golden m_golden;
    mutable ZAXTestDocument m_document;
};

bool IsNewest(const Golden& golden)
{
    return golden.version == ZAXGeoStream::GetCurrentVersion(SubjectOf(golden).type);
}

} // namespace

class tst_ZAXMatGolden : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everyVersionHasItsFiles_data();
    void everyVersionHasItsFiles();
    void isReadBack_data();
    void isReadBack();
    void isRewrittenByteEqual_data();
    void isRewrittenByteEqual();
    void newFeatureIsStoredAsEver_data();
    void newFeatureIsStoredAsEver();
};

void tst_ZAXMatGolden::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
}

void tst_ZAXMatGolden::everyVersionHasItsFiles_data()
{
    QTest::addColumn<int>("newest");
    for (const Subject& subject : subjects)
        QTest::newRow(subject.type->className()) << ZAXGeoStream::GetCurrentVersion(subject.type);
}

void tst_ZAXMatGolden::everyVersionHasItsFiles()
{
    QFETCH(const int, newest);
    QSet<int> expected;
    for (int version = 1; version <= newest; ++version)
        expected.insert(version);
    QList<Golden> goldens = GoldenFiles();
    goldens.removeIf([](const Golden& golden) { return golden.className != QTest::currentDataTag(); });
    QSet<int> found;
    for (const Golden& golden : goldens)
        found.insert(golden.version);
    QCOMPARE(found, expected);
}

void tst_ZAXMatGolden::isReadBack_data()
{
    QTest::addColumn<QString>("name");
    const QList<Golden> goldens = GoldenFiles();
    for (const Golden& golden : goldens)
        QTest::newRow(qPrintable(golden.name)) << golden.name;
}

void tst_ZAXMatGolden::isReadBack()
{
    QFETCH(const QString, name);
    const GoldenDocument document{Golden(name)};
    document.Load();
    QStringList read = document.Describe();
    // References are followed once all is loaded.
    document.GetSubject()->EndStateLoad();
    read.append(document.DescribeActivity());
    const QString expected = QString::fromUtf8(ContentOf(name + Text(".txt")));
    QCOMPARE(read.join(QLatin1Char('\n')) + QLatin1Char('\n'), expected);
}

void tst_ZAXMatGolden::isRewrittenByteEqual_data()
{
    QTest::addColumn<QString>("name");
    QList<Golden> goldens = GoldenFiles();
    goldens.removeIf([](const Golden& golden) { return !IsNewest(golden); });
    for (const Golden& golden : std::as_const(goldens))
        QTest::newRow(qPrintable(golden.name)) << golden.name;
}

void tst_ZAXMatGolden::isRewrittenByteEqual()
{
    QFETCH(const QString, name);
    const GoldenDocument document{Golden(name)};
    document.Load();
    const ZAXTestStored rewritten = ZAXTestStored::From(*document.GetSubject());
    const ZAXTestStored stored = StoredIn(Golden(name));
    QCOMPARE(rewritten.payload.toHex(' '), stored.payload.toHex(' '));
    QCOMPARE(rewritten.references, stored.references);
}

void tst_ZAXMatGolden::newFeatureIsStoredAsEver_data()
{
    QTest::addColumn<QByteArray>("parentClass");
    QTest::newRow("ZAXMatMaterial") << QByteArray("ZAXMatRoot");
    QTest::newRow("ZAXMatPackaging") << QByteArray("ZAXMatMaterial");
}

void tst_ZAXMatGolden::newFeatureIsStoredAsEver()
{
    QFETCH(const QByteArray, parentClass);
    ZAXTestDocument document;
    const QHash<QByteArray, ZAXFeatObject*> parents{{"ZAXMatRoot", document.root},
                                                    {"ZAXMatMaterial", document.CreateMaterial()}};
    ZAXFeatObject* const feature =
        document.container.CreateInstance(QTest::currentDataTag(), parents.value(parentClass));
    // Only a material has a colour, and that is random.
    feature->setProperty("nestingColor", QColor(255, 0, 127));
    const QString version = QString::number(ZAXGeoStream::GetCurrentVersion(feature->metaObject()));
    const Golden golden(QLatin1String(QTest::currentDataTag()) + Text(".v") + version + Text(".as-new"));
    QCOMPARE(ZAXTestStored::From(*feature).payload.toHex(' '), StoredIn(golden).payload.toHex(' '));
}

QTEST_GUILESS_MAIN(tst_ZAXMatGolden)
#include "tst_ZAXMatGolden.moc"
