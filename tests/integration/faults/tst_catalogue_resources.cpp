#include "CatalogueFolder.h"
#include "CatalogueText.h"
#include "SystemCalls.h"
#include "ZAXMatJsonFileProvider.h"

#include <QTest>

#include <cerrno>

// The system refuses what a catalogue needs. The other ways it may do so, such as folders and files that must not be
// written to and disks that are full, are in the tests of the provider itself.

namespace {

QByteArray First()
{
    return CatalogueOf({MaterialText("a", "{'':{'thickness':1}}"), PackagingText("p", "a")});
}

QByteArray Second()
{
    return CatalogueOf({MaterialText("b"), MaterialText("c")}) + QByteArray(40000, ' ');
}

/// Rows of the first read of Second() that fails.
void AddFailingReads()
{
    QTest::addColumn<int>("nth");
    QTest::newRow("from its start") << 0;
    QTest::newRow("from its middle") << 1;
    QTest::newRow("at its end") << 40;
}

} // namespace

class tst_catalogue_resources : public QObject
{
    Q_OBJECT

private slots:
    void aFileThatIsOpenedButNotReadLeavesTheCatalogue_data();
    void aFileThatIsOpenedButNotReadLeavesTheCatalogue();
    void aFileThatCannotBeReadAgainLeavesTheCatalogue();
    void aFileOfTheSystemThatCannotBeReadLeavesTheCatalogue();
    void aDeviceWithoutTextIsMalformed();
    void withoutFreeFileHandlesTheCatalogueStays_data();
    void withoutFreeFileHandlesTheCatalogueStays();
    void withoutFreeFileHandlesNothingIsWritten_data();
    void withoutFreeFileHandlesNothingIsWritten();
    void aDiskThatFailsLeavesTheFile_data();
    void aDiskThatFailsLeavesTheFile();
    void aFileThatCannotBeBegunAgainLeavesTheOldOne();
    void whatQtHasToWriteIsWrittenInPlaceToo();
    void aFileWrittenInPlaceThatCannotBeCutStays();
    void aFileThatCannotBeReadIsNotWrittenInPlace_data();
    void aFileThatCannotBeReadIsNotWrittenInPlace();
    void aReadThatFailsOnceGoesOn_data();
    void aReadThatFailsOnceGoesOn();
};

void tst_catalogue_resources::aFileThatIsOpenedButNotReadLeavesTheCatalogue_data()
{
    AddFailingReads();
}

void tst_catalogue_resources::aFileThatIsOpenedButNotReadLeavesTheCatalogue()
{
    QFETCH(const int, nth);
    CatalogueFolder folder;
    folder.Write(First());
    const ZAXMatJsonFileProvider provider(folder.Path());
    const QStringList before = ContentOf(provider);
    folder.Write(Second());
    ExpectWarning(QString::fromUtf8("^Cannot read .*/zax ø .*/materials\\.json: ") + SystemError(EIO) + u'$');
    {
        const SystemCalls::Failure failure(SystemCalls::Read, nth, EIO);
        QCOMPARE(ContentOf(provider), before);
    }
    QCOMPARE(provider.GetMaterialKeys().size(), 2);
}

void tst_catalogue_resources::aFileThatCannotBeReadAgainLeavesTheCatalogue()
{
    CatalogueFolder folder;
    folder.Write(First());
    const ZAXMatJsonFileProvider provider(folder.Path());
    const QStringList before = ContentOf(provider);
    // What Qt has to read is read once more, from its start.
    folder.Write(CatalogueOf({MaterialText("b")}));
    const int readOnce = [&folder] {
        const SystemCalls::Interruption counter(SystemCalls::Read, 1000, [] {});
        const ZAXMatJsonFileProvider other("other", QString(), folder.Path());
        return counter.Count();
    }();
    folder.Write(CatalogueOf({MaterialText("b", "{'':{'own':[1]}}")}));
    ExpectWarning(QString::fromUtf8("^Cannot read .*/zax ø .*/materials\\.json: ") + SystemError(EIO) + u'$');
    {
        const SystemCalls::Failure failure(SystemCalls::Read, readOnce, EIO);
        QCOMPARE(ContentOf(provider), before);
    }
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"b"});
}

void tst_catalogue_resources::aDeviceWithoutTextIsMalformed()
{
    CatalogueFolder folder;
    QVERIFY(QFile::link(QLatin1String("/dev/null"), folder.FilePath()));
    ExpectWarning(QString::fromUtf8("^Malformed .*/zax ø .*/materials\\.json: "));
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList());
}

void tst_catalogue_resources::aFileOfTheSystemThatCannotBeReadLeavesTheCatalogue()
{
    // It opens, and reading its first byte fails, even for the superuser: there is no memory at that address.
    CatalogueFolder folder;
    folder.Write(First());
    const ZAXMatJsonFileProvider provider(folder.Path());
    const QStringList before = ContentOf(provider);
    folder.Remove();
    QVERIFY(QFile::link(QLatin1String("/proc/self/mem"), folder.FilePath()));
    ExpectWarning(QString::fromUtf8("^Cannot read .*/zax ø .*/materials\\.json: ") + SystemError(EIO) + u'$');
    QCOMPARE(ContentOf(provider), before);
}

void tst_catalogue_resources::withoutFreeFileHandlesTheCatalogueStays_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("of the program") << EMFILE;
    QTest::newRow("of the system") << ENFILE;
    QTest::newRow("without memory") << ENOMEM;
}

void tst_catalogue_resources::withoutFreeFileHandlesTheCatalogueStays()
{
    QFETCH(const int, error);
    CatalogueFolder folder;
    folder.Write(First());
    const ZAXMatJsonFileProvider provider(folder.Path());
    const QStringList before = ContentOf(provider);
    folder.Write(Second());
    ExpectWarning(QString::fromUtf8("^Cannot read .*/zax ø .*/materials\\.json: ") + SystemError(error) + u'$');
    {
        const SystemCalls::Failure failure(SystemCalls::Open, 0, error);
        QCOMPARE(ContentOf(provider), before);
    }
    QCOMPARE(provider.GetMaterialKeys().size(), 2);
}

void tst_catalogue_resources::withoutFreeFileHandlesNothingIsWritten_data()
{
    withoutFreeFileHandlesTheCatalogueStays_data();
    QTest::newRow("on a full disk") << ENOSPC;
    QTest::newRow("on a disk without room for this user") << EDQUOT;
    QTest::newRow("on a disk that must not be written to") << EROFS;
}

void tst_catalogue_resources::withoutFreeFileHandlesNothingIsWritten()
{
    QFETCH(const int, error);
    CatalogueFolder folder;
    folder.Write(First());
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray key = provider.CreateMaterial(QLatin1String("New")).GetKey();
    ExpectWarning(QString::fromUtf8("^Cannot write .*/zax ø .*/materials\\.json: ") + SystemError(error) + u'$');
    {
        const SystemCalls::Failure failure(SystemCalls::Open, 0, error);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), First());
    QCOMPARE(folder.Entries(), QStringList{QLatin1String("materials.json")});
    QVERIFY(provider.GetMaterial(key).IsValid());
}

void tst_catalogue_resources::aDiskThatFailsLeavesTheFile_data()
{
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("error");
    for (const int nth : {0, 1, 60}) {
        QTest::addRow("full at call %d", nth) << nth << ENOSPC;
        QTest::addRow("over quota at call %d", nth) << nth << EDQUOT;
        QTest::addRow("broken at call %d", nth) << nth << EIO;
    }
}

void tst_catalogue_resources::aDiskThatFailsLeavesTheFile()
{
    QFETCH(const int, nth);
    QFETCH(const int, error);
    CatalogueFolder folder;
    folder.Write(First());
    ZAXMatJsonFileProvider provider(folder.Path());
    for (int i = 0; i < 200; ++i)
        provider.CreateMaterial(QLatin1String("New"));
    provider.Commit();
    const QByteArray before = folder.Read();
    provider.CreateMaterial(QLatin1String("One more"));
    ExpectWarning(QString::fromUtf8("^Cannot write .*/zax ø .*/materials\\.json: ") + SystemError(error) + u'$');
    {
        const SystemCalls::Failure failure(SystemCalls::Write, nth, error);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), before);
    QCOMPARE(folder.Entries(), QStringList{QLatin1String("materials.json")});
    QCOMPARE(provider.GetMaterialKeys().size(), 202);
}

void tst_catalogue_resources::aFileThatCannotBeBegunAgainLeavesTheOldOne()
{
    CatalogueFolder folder;
    folder.Write(First());
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.GetMaterial("a");
    // What Qt has to write is met when the file is begun.
    material.SetValue("own", QVariantList{1});
    QVERIFY(provider.Update(material));
    ExpectWarning(QString::fromUtf8("^Cannot write .*/zax ø .*/materials\\.json: ") + SystemError(EIO) + u'$');
    {
        const SystemCalls::Failure failure(SystemCalls::Truncate, 0, EIO);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), First());
    QCOMPARE(folder.Entries(), QStringList{QLatin1String("materials.json")});
    QCOMPARE(provider.GetMaterial("a"), material);
    provider.Commit();
    QVERIFY(folder.Read().contains("\"own\": ["));
}

void tst_catalogue_resources::whatQtHasToWriteIsWrittenInPlaceToo()
{
    CatalogueFolder folder;
    folder.Write(First());
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.GetMaterial("a");
    material.SetValue("own", QVariantList{1});
    QVERIFY(provider.Update(material));
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    CatalogueFolder::SetMode(folder.Path(), 0555);
    {
        const OrdinaryUser user;
        provider.Commit();
    }
    const QByteArray written = folder.Read();
    QVERIFY(written.contains("\"own\": ["));

    QVariant deep;
    for (int level = 0; level < 1025; ++level)
        deep = QVariantList{deep};
    material = provider.GetMaterial("a");
    material.SetValue("own", deep);
    QVERIFY(provider.Update(material));
    ExpectWarning(QLatin1String("^Cannot write .*/materials\\.json: too deeply nested document$"));
    {
        const OrdinaryUser user;
        provider.Commit();
    }
    QCOMPARE(folder.Read(), written);
}

void tst_catalogue_resources::aFileWrittenInPlaceThatCannotBeCutStays()
{
    CatalogueFolder folder;
    folder.Write(First());
    ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(provider.RemoveMaterial("a"));
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    CatalogueFolder::SetMode(folder.Path(), 0555);
    ExpectWarning(QString::fromUtf8("^Cannot write .*/zax ø .*/materials\\.json: ") + SystemError(EIO) + u'$');
    {
        const OrdinaryUser user;
        const SystemCalls::Failure failure(SystemCalls::Truncate, 0, EIO);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), First());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList());
}

void tst_catalogue_resources::aFileThatCannotBeReadIsNotWrittenInPlace_data()
{
    AddFailingReads();
}

void tst_catalogue_resources::aFileThatCannotBeReadIsNotWrittenInPlace()
{
    QFETCH(const int, nth);
    CatalogueFolder folder;
    folder.Write(Second());
    ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(provider.RemoveMaterial("b"));
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    CatalogueFolder::SetMode(folder.Path(), 0555);
    ExpectWarning(QString::fromUtf8("^Cannot write .*/zax ø .*/materials\\.json: ") + SystemError(EIO) + u'$');
    {
        const OrdinaryUser user;
        // Once it is written in part, only what was read before can be put back.
        const SystemCalls::Failure unread(SystemCalls::Read, nth, EIO);
        const SystemCalls::Failure unwritten(SystemCalls::Write, 1, ENOSPC);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), Second());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"c"});
}

void tst_catalogue_resources::aReadThatFailsOnceGoesOn_data()
{
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("error");
    QTest::newRow("interrupted at its start") << 0 << EINTR;
    QTest::newRow("interrupted in its middle") << 20 << EINTR;
    QTest::newRow("failing in its middle") << 20 << EIO;
}

void tst_catalogue_resources::aReadThatFailsOnceGoesOn()
{
    QFETCH(const int, nth);
    QFETCH(const int, error);
    CatalogueFolder folder;
    folder.Write(First());
    const ZAXMatJsonFileProvider provider(folder.Path());
    folder.Write(Second());
    const SystemCalls::Failure failure(SystemCalls::Read, nth, error, 1);
    QCOMPARE(provider.GetMaterialKeys().size(), 2);
}

QTEST_GUILESS_MAIN(tst_catalogue_resources)
#include "tst_catalogue_resources.moc"
