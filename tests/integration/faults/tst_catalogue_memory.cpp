#include "CatalogueFolder.h"
#include "CatalogueText.h"
#include "ZAXMatJsonFileProvider.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTest>

#include <sys/resource.h>

// A file that is larger than any catalogue.

namespace {

constexpr qint64 megabyte = 1024 * 1024;
constexpr qint64 fileSize = 600 * megabyte;

QByteArray First()
{
    return CatalogueOf({MaterialText("a"), PackagingText("p", "a")});
}

/// The number that /proc/self/status has under \a name, in bytes.
qint64 StatusOf(QByteArrayView name)
{
    const QByteArrayList lines = CatalogueFolder::ReadFrom(QLatin1String("/proc/self/status")).split('\n');
    const auto line = std::ranges::find_if(lines, [&](const QByteArray& line) { return line.startsWith(name); });
    return line == lines.end() ? -1 : line->mid(name.size() + 1).chopped(2).trimmed().toLongLong() * 1024;
}

/// For as long as it lives the program gets no more than so many bytes of memory.
class LittleMemory
{
public:
    explicit LittleMemory(qint64 bytes)
    {
        ::getrlimit(RLIMIT_AS, &m_limit);
        const rlimit limit{static_cast<rlim_t>(StatusOf("VmSize") + bytes), m_limit.rlim_max};
        ::setrlimit(RLIMIT_AS, &limit);
    }
    ~LittleMemory() { ::setrlimit(RLIMIT_AS, &m_limit); }
    LittleMemory(const LittleMemory&) = delete;
    LittleMemory& operator=(const LittleMemory&) = delete;

private:
    rlimit m_limit{};
};

/// A catalogue and then nothing but zeros, which take no room on the disk.
void MakeHuge(CatalogueFolder& folder)
{
    folder.Write(First());
    QFile file(folder.FilePath());
    QVERIFY(file.resize(fileSize));
    folder.SetTime(QDateTime(QDate(2030, 1, 1), QTime(12, 0)));
}

/// A catalogue and then nothing but white space.
void MakeHugeWithSpace(CatalogueFolder& folder)
{
    folder.Write(First());
    QFile file(folder.FilePath());
    QVERIFY(file.open(QIODevice::Append));
    const QByteArray space(megabyte, ' ');
    for (qint64 size = file.size(); size < fileSize; size += space.size())
        QCOMPARE(file.write(space), space.size());
    file.close();
    folder.SetTime(QDateTime(QDate(2030, 1, 1), QTime(12, 0)));
}

/// That no more memory was ever in use than \a text bytes and little else, which are not kept.
void VerifyMemory(qint64 text)
{
    const qint64 peak = StatusOf("VmHWM");
    QVERIFY2(peak < text + 100 * megabyte, qPrintable(QString::number(peak)));
    const qint64 kept = StatusOf("VmRSS");
    QVERIFY2(kept < 100 * megabyte, qPrintable(QString::number(kept)));
}

} // namespace

class tst_catalogue_memory : public QObject
{
    Q_OBJECT

private slots:
    // In this order: the system tells the highest use of memory so far.
    void aHugeCatalogueIsRead();
    void aHugeRecordIsInMemoryOnce();
    void aHugeFileIsMalformed();
    void aFileForWhichThereIsNoMemoryLeavesTheCatalogue();
    void aCatalogueForWhichThereIsNoMemoryIsNotWritten();
    void noMemoryIsNeededForTheTextAsAWhole();
};

void tst_catalogue_memory::aHugeCatalogueIsRead()
{
    CatalogueFolder folder;
    MakeHugeWithSpace(folder);
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"a"});
    QCOMPARE(provider.GetPackagingKeys("a"), QByteArrayList{"p"});
    VerifyMemory(0);
}

void tst_catalogue_memory::aHugeRecordIsInMemoryOnce()
{
    constexpr qint64 size = 300 * megabyte;
    CatalogueFolder folder;
    {
        QFile file(folder.FilePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Json("{'a':{'key':'a'"));
        const QByteArray space(megabyte, ' ');
        for (qint64 i = 0; i < size; i += space.size())
            QCOMPARE(file.write(space), space.size());
        file.write("}}");
    }
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"a"});
    VerifyMemory(size);
}

void tst_catalogue_memory::aHugeFileIsMalformed()
{
    CatalogueFolder folder;
    MakeHuge(folder);
    ExpectWarning(
        QLatin1String("^Malformed .*/materials\\.json: garbage at the end of the document \\(at byte \\d+\\)$"));
    QElapsedTimer timer;
    timer.start();
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList());
    QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
    VerifyMemory(fileSize);
}

void tst_catalogue_memory::aFileForWhichThereIsNoMemoryLeavesTheCatalogue()
{
    CatalogueFolder folder;
    folder.Write(First());
    const ZAXMatJsonFileProvider provider(folder.Path());
    MakeHuge(folder);
    ExpectWarning(QString::fromUtf8("^Cannot read .*/zax ø .*/materials\\.json: ") + SystemError(ENOMEM) + u'$');
    {
        const LittleMemory memory(200 * megabyte);
        QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"a"});
        QCOMPARE(provider.GetPackagingKeys("a"), QByteArrayList{"p"});
    }
    folder.Write(CatalogueOf({MaterialText("b")}));
    QCOMPARE(provider.GetMaterialKeys(), QByteArrayList{"b"});
}

void tst_catalogue_memory::aCatalogueForWhichThereIsNoMemoryIsNotWritten()
{
    CatalogueFolder folder;
    folder.Write(First());
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.GetMaterial("a");
    // As large as the room that is left: its text does not fit.
    material.SetValue("comment", QString(100 * megabyte / 2, u'x'));
    QVERIFY(provider.Update(material));
    ExpectWarning(QString::fromUtf8("^Cannot write .*/zax ø .*/materials\\.json: ") + SystemError(ENOMEM) + u'$');
    {
        const LittleMemory memory(30 * megabyte);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), First());
    QCOMPARE(provider.GetMaterial("a"), material);
    provider.Commit();
    QVERIFY(folder.Read().size() > 50 * megabyte);
}

void tst_catalogue_memory::noMemoryIsNeededForTheTextAsAWhole()
{
    // One text in all records, which share it.
    constexpr int recordCount = 100;
    const QString comment(megabyte, u'x');
    CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    for (int i = 0; i < recordCount; ++i) {
        ZAXMatDefinition material = provider.CreateMaterial(QString::number(i));
        material.SetValue("comment", comment);
        QVERIFY(provider.Update(material));
    }
    const LittleMemory memory(30 * megabyte);
    provider.Commit();
    QVERIFY(QFileInfo(folder.FilePath()).size() > recordCount * megabyte);
    const ZAXMatJsonFileProvider other("other", QString(), folder.Path());
    const QByteArrayList keys = other.GetMaterialKeys();
    QCOMPARE(keys.size(), recordCount);
    for (const QByteArray& key : keys)
        QCOMPARE(other.GetMaterial(key).GetValue("comment").toString().size(), comment.size());
}

QTEST_GUILESS_MAIN(tst_catalogue_memory)
#include "tst_catalogue_memory.moc"
