#include "ZAXHostDocument.h"

#include "ZAXFeatFolder.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXProbeDocuments.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeFileSystem.h"
#include "ZAXProbeJournal.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

#include <cerrno>
#include <stdexcept>

using Features = QList<ZAXFeatObject*>;

/// Writes down the versions that it was written with.
class VersionedFeature : public ZAXProbePart
{
    Q_OBJECT
    Q_CLASSINFO("version", "5")

public:
    Q_INVOKABLE VersionedFeature(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit VersionedFeature(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    void Load(ZAXGeoStream& stream) override
    {
        ZAXProbePart::Load(stream);
        ZAXProbeJournal::Note(QStringLiteral("versions %1 %2 %3")
                                  .arg(stream.GetVersion(&staticMetaObject))
                                  .arg(stream.GetVersion(&ZAXProbePart::staticMetaObject))
                                  .arg(stream.GetVersion(&ZAXProbeLeaf::staticMetaObject)));
    }
};

/// Reads more than it wrote.
class GreedyFeature : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE GreedyFeature(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit GreedyFeature(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    void Load(ZAXGeoStream& stream) override
    {
        ZAXProbePart::Load(stream);
        double more = 0.0;
        stream >> more;
    }
};

/// Reads less than it wrote.
class ModestFeature : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE ModestFeature(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit ModestFeature(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    void Load(ZAXGeoStream& stream) override { ZAXFeatObject::Load(stream); }
};

/// Fails with something that is no ZAXSysException.
class StrangelyFailingFeature : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE StrangelyFailingFeature(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit StrangelyFailingFeature(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    void Load(ZAXGeoStream&) override { throw std::runtime_error("strange"); }
};

/// Makes a child of its own when it is re-created, before the objects of the file that follow it.
class MakingFeature : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE MakingFeature(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
        AddPart(this, "made by the constructor");
    }
    Q_INVOKABLE explicit MakingFeature(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    void EndStateLoad() override
    {
        ZAXProbePart::EndStateLoad();
        AddPart(this, "made by EndStateLoad");
    }
};

namespace {

const QList<const QMetaObject*> ownTypes{&VersionedFeature::staticMetaObject, &GreedyFeature::staticMetaObject,
                                         &ModestFeature::staticMetaObject, &StrangelyFailingFeature::staticMetaObject,
                                         &MakingFeature::staticMetaObject};

ZAXHostResult Load(ZAXHostDocument& document, const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return document.Load(&buffer);
}

ZAXProbePart* PartOf(const ZAXHostDocument& document, quint64 id)
{
    return qobject_cast<ZAXProbePart*>(document.GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef::FromId(id)));
}

/// The features of a tree as "name(children)", in their order.
QString TreeOf(const Features& features)
{
    QStringList texts;
    for (const ZAXFeatObject* feature : features) {
        const QString below = TreeOf(feature->GetChildren());
        texts.append(NameOf(feature) + (below.isEmpty() ? QString() : u'(' + below + u')'));
    }
    return texts.join(u' ');
}

QString TreeOf(const ZAXHostDocument& document)
{
    return TreeOf(document.GetContainer()->GetRoots());
}

/// The document A (B (C), a folder (D)), E with references to and fro, by ids: A 1, B 2, C 3, folder 4, D 5, E 6.
void Fill(const ZAXHostDocument& document)
{
    ZAXProbePart* const a = AddPart(*document.GetContainer(), "A");
    ZAXProbePart* const b = AddPart(a, "B");
    ZAXProbePart* const c = AddPart(b, "C");
    ZAXFeatObject* const folder = document.GetContainer()->CreateInstance("ZAXFeatFolder", a);
    ZAXProbePart* const d = AddPart(folder, "D");
    ZAXProbePart* const e = AddPart(*document.GetContainer(), "E");
    a->SetLabel(u"Längsträger"_qs);
    b->SetVisibility(false);
    b->length.SetValue(1.0 / 3.0, false);
    a->companions.Add(e, false);
    a->companions.Add(nullptr, false);
    a->companions.Add(b, false);
    a->partner.SetPointedObject(e, false);
    e->partner.SetPointedObject(c, false);
    d->companions.Add(d, false);
}

/// The bytes of \a document changed by \a change.
QByteArray Changed(const ZAXHostDocument& document, const std::function<void(ZAXHostDocumentImage&)>& change)
{
    ZAXHostDocumentImage image;
    if (const auto result = ZAXHostDocumentCodec::Decode(document.Encode(), image); !result)
        return result.GetMessage().toUtf8();
    change(image);
    return ZAXHostDocumentCodec::Encode(image);
}

/// Takes five bytes and then no more.
class SmallDevice : public QIODevice
{
public:
    QByteArray written;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override
    {
        const qint64 taken = std::min<qint64>(size, 5 - written.size());
        written.append(data, taken);
        return taken;
    }
};

/// Makes the object of \a record one of the class \a name, derived from its own.
void Derive(ZAXHostDocumentRecord& record, ZAXHostDocumentImage& image, const char* name)
{
    auto chain = image.GetChain(record.classIndex);
    chain.prepend({name, 1, -1});
    record.classIndex = image.AddClass(chain);
}

/// The bytes of \a bytes with nothing but the classes that are needed, in the order in which they are.
QByteArray Ordered(const QByteArray& bytes)
{
    ZAXHostDocumentImage image;
    if (const auto result = ZAXHostDocumentCodec::Decode(bytes, image); !result)
        return result.GetMessage().toUtf8();
    ZAXHostDocumentImage ordered = image;
    ordered.classes.clear();
    for (ZAXHostDocumentRecord& record : ordered.records)
        record.classIndex = ordered.AddClass(image.GetChain(record.classIndex));
    return ZAXHostDocumentCodec::Encode(ordered);
}

/// Gives all classes \a name of \a image the version \a version.
void SetVersion(ZAXHostDocumentImage& image, const char* name, int version)
{
    for (ZAXHostDocumentClass& entry : image.classes)
        entry.version = entry.name == name ? version : entry.version;
}

const QString newerPart = QStringLiteral("The object 1 of class ZAXProbePart is not available: it was saved by a newer "
                                         "program (version %1 of %2, this program knows version %3).");

} // namespace

class tst_ZAXHostDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void newDocumentIsEmpty();
    void documentsHaveIdsOfTheirOwn();

    // saving and loading
    void documentIsReadBack();
    void referencesAreReadBack();
    void readDocumentGivesTheSameBytes();
    void sameDocumentGivesTheSameBytes();
    void saveWritesTheBytes();
    void loadReadsFromThePresentPosition();
    void emptyDocumentIsReadBack();
    void documentIdIsKept();
    void objectsAreMadeThenLoadedThenCompleted();
    void loadAnnouncesAndInitializesNothing();
    void loadReplacesTheContainer();
    void versionsAreThoseOfTheWriter();
    void versionsOfTheBasesAreWritten();
    void idsOfGoneObjectsAreNotGivenAgain();
    void objectsMadeWhileLoadingGetNewIds();

    // failures of loading
    void objectThatCannotBeMadeIsKept_data();
    void objectThatCannotBeMadeIsKept();
    void referenceToNothingIsKept();
    void documentWithoutIdsLeftTakesNoNewObject();
    void everyFlippedBitLeavesTheDocument();
    void everyBeginningLeavesTheDocument();
    void failureOnceIsAPlaceholderToo_data();
    void failureOnceIsAPlaceholderToo();
    void strangeExceptionIsAPlaceholderToo();
    void deviceThatIsNotOpenIsAnEmptyDocument();

    // failures of saving
    void nestingEndsAtItsLimit();
    void deeplyNestedDocumentIsNotSaved();
    void deviceThatTakesNotEverythingIsAFailure();
    void exceptionOfSaveIsAFailure();

    // files
    void savedFileIsOpened();
    void savedFileHoldsTheEncodedBytes();
    void saveReplacesTheOldFile();
    void saveLeavesNoOtherFile();
    void saveThroughALinkKeepsTheLink();
    void openRefuses_data();
    void openRefuses();
    void openRefusesAFolder();
    void openRefusesAnUnreadableFile();
    void openRefusesADamagedFile();
    void saveToAMissingFolderIsAFailure();
    void saveToAFolderIsAFailure();
    void saveToAReadOnlyFolderKeepsTheOldFile();
    void saveToAReadOnlyFileKeepsIt();
    void saveOnAFullDiskKeepsTheOldFile();
    void saveOfADeeplyNestedDocumentKeepsTheOldFile();

    // changes
    void changeMakesItModified_data();
    void changeMakesItModified();
    void whatChangesNothingLeavesItUnmodified();
    void savingToItsFileMakesItUnmodified();
    void savingElsewhereLeavesItModified();
    void failedSaveLeavesItModified();
    void loadingMakesItUnmodified();
    void changesAreSeenBehindALoad();
    void failedLoadLeavesItModified();
    void failedCreationLeavesItUnmodified();

private:
    std::unique_ptr<ZAXProbeRegistration> m_registration;
    std::unique_ptr<ZAXProbeJournal> m_journal;
    std::unique_ptr<ZAXHostDocument> m_document;
};

void tst_ZAXHostDocument::initTestCase()
{
    m_registration = std::make_unique<ZAXProbeRegistration>();
    std::ranges::for_each(ownTypes, &ZAXGeoContainer::RegisterType);
}

void tst_ZAXHostDocument::cleanupTestCase()
{
    std::ranges::for_each(ownTypes, &ZAXGeoContainer::UnregisterType);
    m_registration.reset();
}

void tst_ZAXHostDocument::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_journal = std::make_unique<ZAXProbeJournal>();
    m_document = std::make_unique<ZAXHostDocument>();
    Fill(*m_document);
    m_journal->Take();
}

void tst_ZAXHostDocument::cleanup()
{
    m_document.reset();
    m_journal.reset();
}

void tst_ZAXHostDocument::newDocumentIsEmpty()
{
    const ZAXHostDocument document;
    QVERIFY(document.GetContainer());
    QCOMPARE(document.GetContainer()->GetRoots(), Features());
    QVERIFY(!document.IsModified());
}

void tst_ZAXHostDocument::documentsHaveIdsOfTheirOwn()
{
    const ZAXHostDocument other;
    QVERIFY(!other.GetDocumentId().isNull());
    QVERIFY(other.GetDocumentId() != m_document->GetDocumentId());
    QCOMPARE(m_document->GetDocumentId(), m_document->GetDocumentId());
}

void tst_ZAXHostDocument::documentIsReadBack()
{
    ZAXHostDocument document;
    QCOMPARE(Load(document, m_document->Encode()).GetMessage(), QString());
    QCOMPARE(TreeOf(document), QStringLiteral("A(B(C) ZAXFeatFolder(D)) E"));
    QCOMPARE(PartOf(document, 1)->GetLabel(), u"Längsträger"_qs);
    QCOMPARE(PartOf(document, 3)->GetLabel(), QStringLiteral("Part"));
    QVERIFY(PartOf(document, 1)->IsVisible());
    QVERIFY(!PartOf(document, 2)->IsVisible());
    QCOMPARE(PartOf(document, 2)->length.GetValue(), 1.0 / 3.0);
    QCOMPARE(PartOf(document, 1)->length.GetValue(), 1.0);
}

void tst_ZAXHostDocument::referencesAreReadBack()
{
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    ZAXProbePart* const a = PartOf(document, 1);
    QCOMPARE(a->GetCompanions(), QList<ZAXProbePart*>({PartOf(document, 6), nullptr, PartOf(document, 2)}));
    QCOMPARE(a->GetPartner(), PartOf(document, 6));
    QCOMPARE(PartOf(document, 6)->GetPartner(), PartOf(document, 3));
    QCOMPARE(PartOf(document, 5)->GetCompanions(), QList<ZAXProbePart*>{PartOf(document, 5)});
    QVERIFY(!PartOf(document, 2)->GetPartner());
    QCOMPARE(PartOf(document, 3)->GetAllDependents(), Features({PartOf(document, 6), a}));
}

void tst_ZAXHostDocument::readDocumentGivesTheSameBytes()
{
    const QByteArray bytes = m_document->Encode();
    ZAXHostDocument document;
    QVERIFY(Load(document, bytes));
    QCOMPARE(document.Encode(), bytes);
}

void tst_ZAXHostDocument::sameDocumentGivesTheSameBytes()
{
    QCOMPARE(m_document->Encode(), m_document->Encode());
}

void tst_ZAXHostDocument::saveWritesTheBytes()
{
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    buffer.write("before ");
    const auto result = m_document->Save(&buffer);
    QCOMPARE(result.GetMessage(), QString());
    QVERIFY(result);
    QCOMPARE(buffer.data(), "before " + m_document->Encode());
}

void tst_ZAXHostDocument::loadReadsFromThePresentPosition()
{
    QBuffer buffer;
    buffer.setData("before " + m_document->Encode());
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVERIFY(buffer.seek(7));
    ZAXHostDocument document;
    QVERIFY(document.Load(&buffer));
    QCOMPARE(TreeOf(document), TreeOf(*m_document));
}

void tst_ZAXHostDocument::emptyDocumentIsReadBack()
{
    const ZAXHostDocument empty;
    QVERIFY(Load(*m_document, empty.Encode()));
    QCOMPARE(m_document->GetContainer()->GetRoots(), Features());
    QCOMPARE(m_document->GetDocumentId(), empty.GetDocumentId());
}

void tst_ZAXHostDocument::documentIdIsKept()
{
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    QCOMPARE(document.GetDocumentId(), m_document->GetDocumentId());
}

void tst_ZAXHostDocument::objectsAreMadeThenLoadedThenCompleted()
{
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    QCOMPARE(m_journal->Take(), Entries("recreated \n recreated \n recreated \n recreated \n recreated \n"
                                        "BeginStateLoad \n Load A \n BeginStateLoad \n Load B \n"
                                        "BeginStateLoad \n Load C \n BeginStateLoad \n Load D \n"
                                        "BeginStateLoad \n Load E \n"
                                        "InitializeNonStreamed A \n InitializeNonStreamed B \n"
                                        "InitializeNonStreamed C \n InitializeNonStreamed D \n"
                                        "InitializeNonStreamed E \n"
                                        "EndStateLoad A \n EndStateLoad B \n EndStateLoad C \n EndStateLoad D \n"
                                        "EndStateLoad E"));
}

void tst_ZAXHostDocument::loadAnnouncesAndInitializesNothing()
{
    ZAXFeatLastSavedStore::GetCurrent().SetValue("ZAXProbePart", "length", 77.0);
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    const QSignalSpy spy(PartOf(document, 1), &ZAXFeatObject::ChildAdded);
    PartOf(document, 2)->Initialize();
    QCOMPARE(PartOf(document, 1)->length.GetValue(), 1.0);
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXHostDocument::loadReplacesTheContainer()
{
    ZAXHostDocument document;
    AddPart(*document.GetContainer(), "old");
    const QPointer<ZAXFeatContainer> old = document.GetContainer();
    QVERIFY(Load(document, m_document->Encode()));
    QVERIFY(!old);
    QCOMPARE(TreeOf(document), TreeOf(*m_document));
    QVERIFY(m_journal->Take().contains(QStringLiteral("destroyed old")));
}

void tst_ZAXHostDocument::versionsAreThoseOfTheWriter()
{
    const ZAXHostDocument source;
    source.GetContainer()->CreateInstance("VersionedFeature", nullptr);
    ZAXHostDocument document;
    QVERIFY(Load(document, source.Encode()));
    QVERIFY(m_journal->Take().contains(QStringLiteral("versions 5 2 1")));
    const QByteArray older = Changed(source, [](ZAXHostDocumentImage& image) {
        image.classes = {{"VersionedFeature", 4, -1}};
        image.records.first().classIndex = 0;
    });
    QVERIFY(Load(document, older));
    QVERIFY(m_journal->Take().contains(QStringLiteral("versions 4 1 1")));
}

void tst_ZAXHostDocument::versionsOfTheBasesAreWritten()
{
    const ZAXHostDocument source;
    source.GetContainer()->CreateInstance("VersionedFeature", nullptr);
    ZAXHostDocumentImage image;
    QVERIFY(ZAXHostDocumentCodec::Decode(source.Encode(), image));
    QCOMPARE(
        image.classes,
        (QList<ZAXHostDocumentClass>{
            {"ZAXGeoGeometry", 1, -1}, {"ZAXFeatObject", 1, 0}, {"ZAXProbePart", 2, 1}, {"VersionedFeature", 5, 2}}));
}

void tst_ZAXHostDocument::idsOfGoneObjectsAreNotGivenAgain()
{
    QBuffer file;
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(m_document->Save(&file));
    PartOf(*m_document, 6)->Remove();
    PartOf(*m_document, 3)->Remove();
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    QCOMPARE(AddPart(*document.GetContainer(), "new")->GetId(), quint64(7));
}

void tst_ZAXHostDocument::objectsMadeWhileLoadingGetNewIds()
{
    const ZAXHostDocument source;
    source.GetContainer()->CreateInstance("MakingFeature", nullptr);
    AddPart(*source.GetContainer(), "second");
    AddPart(*source.GetContainer(), "third")->Remove();
    ZAXHostDocument document;
    QCOMPARE(Load(document, source.Encode()).GetMessage(), QString());
    QCOMPARE(TreeOf(document), QStringLiteral("(made by the constructor made by EndStateLoad) second"));
    const auto children = document.GetContainer()->GetRoots().constFirst()->GetChildren();
    QCOMPARE(children.at(0)->GetId(), quint64(3));
    QCOMPARE(children.at(1)->GetId(), quint64(4));
    QCOMPARE(PartOf(document, 2)->GetName(), QStringLiteral("second"));
}

void tst_ZAXHostDocument::objectThatCannotBeMadeIsKept_data()
{
    using Image = ZAXHostDocumentImage;
    QTest::addColumn<std::function<void(Image&)>>("change");
    QTest::addColumn<QString>("message");
    const auto add = [](const char* name, const QString& message, const std::function<void(Image&)>& change) {
        QTest::newRow(name) << change << message;
    };
    const QString unreadable = QStringLiteral("The object %1 of class %2 is not available: "
                                              "The data of the object are not what its class reads.");
    add("unknown class",
        QStringLiteral("The object 3 of class ZAXUnknown is not available: no loaded module provides the class."),
        [](Image& image) { Derive(image.records[2], image, "ZAXUnknown"); });
    add("class newer than the program's",
        newerPart.arg(QStringLiteral("3"), QStringLiteral("ZAXProbePart"), QStringLiteral("2")),
        [](Image& image) { SetVersion(image, "ZAXProbePart", 3); });
    add("base class newer than the program's",
        newerPart.arg(QStringLiteral("2"), QStringLiteral("ZAXFeatObject"), QStringLiteral("1")),
        [](Image& image) { SetVersion(image, "ZAXFeatObject", 2); });
    add("class that has no version in the program",
        newerPart.arg(QStringLiteral("7"), QStringLiteral("ZAXGeoGeometry"), QStringLiteral("1")),
        [](Image& image) { SetVersion(image, "ZAXGeoGeometry", 7); });
    add("class that cannot be re-created",
        QStringLiteral("The object 3 of class ZAXProbeUncreatable is not available: "
                       "The class ZAXProbeUncreatable cannot be re-created."),
        [](Image& image) { Derive(image.records[2], image, "ZAXProbeUncreatable"); });
    add("class that fails to be made",
        QStringLiteral("The object 3 of class ZAXProbeStillborn is not available: stillborn"),
        [](Image& image) { Derive(image.records[2], image, "ZAXProbeStillborn"); });
    add("fields cut short", unreadable.arg(QStringLiteral("2"), QStringLiteral("ZAXProbePart")),
        [](Image& image) { image.records[1].payload.chop(1); });
    add("no fields", unreadable.arg(QStringLiteral("4"), QStringLiteral("ZAXFeatFolder")),
        [](Image& image) { image.records[3].payload.clear(); });
    add("a byte behind the fields", unreadable.arg(QStringLiteral("6"), QStringLiteral("ZAXProbePart")),
        [](Image& image) { image.records[5].payload.append('\0'); });
    add("references missing", unreadable.arg(QStringLiteral("1"), QStringLiteral("ZAXProbePart")),
        [](Image& image) { image.records[0].references.clear(); });
    add("reference to another class",
        QStringLiteral("The object 1 of class ZAXProbePart is not available: "
                       "The object with the reference 4 was not found, or is of another kind."),
        [](Image& image) { image.records[0].references[1] = ZAXGeoGeometryRef::FromId(4); });
    add("list with a huge count", unreadable.arg(QStringLiteral("5"), QStringLiteral("ZAXProbePart")),
        [](Image& image) {
            QByteArray& payload = image.records[4].payload;
            payload.replace(payload.size() - 8, 4, "\x7f\xff\xff\xff");
        });
    add("class that reads more than there is", unreadable.arg(QStringLiteral("6"), QStringLiteral("GreedyFeature")),
        [](Image& image) { Derive(image.records[5], image, "GreedyFeature"); });
    add("class that reads less than there is", unreadable.arg(QStringLiteral("6"), QStringLiteral("ModestFeature")),
        [](Image& image) { Derive(image.records[5], image, "ModestFeature"); });
}

void tst_ZAXHostDocument::objectThatCannotBeMadeIsKept()
{
    QFETCH(std::function<void(ZAXHostDocumentImage&)>, change);
    QFETCH(QString, message);
    const QByteArray bytes = Changed(*m_document, change);
    ZAXHostDocument document;
    QCOMPARE(Load(document, bytes).GetMessage(), QString());
    QCOMPARE(document.GetProblems().constFirst().kind, ZAXHostProblem::Unavailable);
    QCOMPARE(document.GetProblems().constFirst().message, message);
    QCOMPARE(document.Encode(), Ordered(bytes));
}

void tst_ZAXHostDocument::referenceToNothingIsKept()
{
    const QByteArray bytes = Changed(*m_document, [](ZAXHostDocumentImage& image) {
        image.records[0].references[1] = ZAXGeoGeometryRef::FromId(99);
        image.lastId = 99;
    });
    ZAXHostDocument document;
    QVERIFY(Load(document, bytes));
    QCOMPARE(document.GetProblems().size(), 1);
    QCOMPARE(document.GetProblems().constFirst().kind, ZAXHostProblem::Unresolved);
    QCOMPARE(document.GetProblems().constFirst().message,
             QStringLiteral("The object 1 refers to the object 99, which does not exist."));
    QVERIFY(PartOf(document, 1));
    QCOMPARE(document.Encode(), bytes);
}

void tst_ZAXHostDocument::documentWithoutIdsLeftTakesNoNewObject()
{
    const QByteArray bytes =
        Changed(*m_document, [](ZAXHostDocumentImage& image) { image.lastId = std::numeric_limits<quint64>::max(); });
    ZAXHostDocument document;
    QVERIFY(Load(document, bytes));
    QCOMPARE(MessageOf([&] { document.GetContainer()->CreateInstance("ZAXProbePart", nullptr); }),
             QLatin1String("The document has no ids left for new objects."));
    QCOMPARE(document.Encode(), bytes);
}

void tst_ZAXHostDocument::everyFlippedBitLeavesTheDocument()
{
    ZAXHostDocument document;
    AddPart(*document.GetContainer(), "kept");
    const ZAXFeatContainer* const container = document.GetContainer();
    const QByteArray kept = document.Encode();
    const QByteArray bytes = m_document->Encode();
    for (qsizetype bit = 0; bit < bytes.size() * 8; ++bit) {
        QByteArray damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged.at(bit / 8) ^ (1 << (bit % 8)));
        QVERIFY2(!Load(document, damaged), qPrintable(QStringLiteral("bit %1").arg(bit)));
        QCOMPARE(document.GetContainer(), container);
    }
    QCOMPARE(document.Encode(), kept);
}

void tst_ZAXHostDocument::everyBeginningLeavesTheDocument()
{
    ZAXHostDocument document;
    AddPart(*document.GetContainer(), "kept");
    const ZAXFeatContainer* const container = document.GetContainer();
    const QByteArray kept = document.Encode();
    const QByteArray bytes = m_document->Encode();
    for (qsizetype size = 0; size < bytes.size(); ++size) {
        QVERIFY2(!Load(document, bytes.first(size)), qPrintable(QStringLiteral("%1 bytes").arg(size)));
        QCOMPARE(document.GetContainer(), container);
    }
    QCOMPARE(document.Encode(), kept);
}

void tst_ZAXHostDocument::failureOnceIsAPlaceholderToo_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<quint64>("id");
    QTest::newRow("constructor") << QByteArray("recreated") << quint64(1);
    QTest::newRow("Load") << QByteArray("Load D") << quint64(5);
    QTest::newRow("unstreamed part") << QByteArray("InitializeNonStreamed C") << quint64(3);
    QTest::newRow("end of the load") << QByteArray("EndStateLoad D") << quint64(5);
}

void tst_ZAXHostDocument::failureOnceIsAPlaceholderToo()
{
    QFETCH(QByteArray, entry);
    QFETCH(quint64, id);
    ZAXHostDocument document;
    m_journal->FailAt(entry);
    QVERIFY(Load(document, m_document->Encode()));
    QCOMPARE(document.GetProblems().size(), 1);
    QCOMPARE(document.GetProblems().constFirst().message,
             QStringLiteral("The object %1 of class ZAXProbePart is not available: The probe fails: %2.")
                 .arg(QString::number(id), QString::fromUtf8(entry)));
    QVERIFY(!PartOf(document, id));
    QCOMPARE(document.Encode(), m_document->Encode());
    QVERIFY(Load(document, m_document->Encode()));
    QVERIFY(document.GetProblems().isEmpty());
}

void tst_ZAXHostDocument::strangeExceptionIsAPlaceholderToo()
{
    const QByteArray strange = Changed(
        *m_document, [](ZAXHostDocumentImage& image) { Derive(image.records[5], image, "StrangelyFailingFeature"); });
    ZAXHostDocument document;
    QVERIFY(Load(document, strange));
    QCOMPARE(document.GetProblems().constFirst().message,
             QStringLiteral("The object 6 of class StrangelyFailingFeature is not available: strange"));
    QCOMPARE(document.Encode(), Ordered(strange));
}

void tst_ZAXHostDocument::deviceThatIsNotOpenIsAnEmptyDocument()
{
    QBuffer buffer;
    QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QBuffer): device not open");
    QCOMPARE(m_document->Load(&buffer).GetMessage(), QStringLiteral("The document is empty."));
    QCOMPARE(TreeOf(*m_document), QStringLiteral("A(B(C) ZAXFeatFolder(D)) E"));
}

void tst_ZAXHostDocument::nestingEndsAtItsLimit()
{
    const ZAXHostDocument source;
    ZAXFeatObject* last = AddPart(*source.GetContainer(), "top");
    for (int nesting = 2; nesting <= ZAXHostDocumentCodec::maximumNesting; ++nesting)
        last = AddPart(last, "below");
    ZAXHostDocument document;
    QCOMPARE(Load(document, source.Encode()).GetMessage(), QString());
    QCOMPARE(document.GetContainer()->GetGeometries().size(), ZAXHostDocumentCodec::maximumNesting);
    AddPart(last, "too deep");
    QCOMPARE(MessageOf([&] { source.Encode(); }),
             QStringLiteral("The objects of the document are nested too deeply to be saved."));
}

namespace {

void NestTooDeeply(const ZAXHostDocument& document)
{
    ZAXFeatObject* last = document.GetContainer()->GetRoots().constFirst();
    for (int nesting = 1; nesting <= ZAXHostDocumentCodec::maximumNesting; ++nesting)
        last = AddPart(last, "deep");
}

} // namespace

void tst_ZAXHostDocument::deeplyNestedDocumentIsNotSaved()
{
    NestTooDeeply(*m_document);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    const auto result = m_document->Save(&buffer);
    QCOMPARE(result.GetMessage(), QStringLiteral("The objects of the document are nested too deeply to be saved."));
    QVERIFY(!result);
    QCOMPARE(buffer.data(), QByteArray());
}

void tst_ZAXHostDocument::deviceThatTakesNotEverythingIsAFailure()
{
    SmallDevice device;
    QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const auto result = m_document->Save(&device);
    QVERIFY(!result);
    QCOMPARE(result.GetMessage(), device.errorString());
    QCOMPARE(device.written.size(), 5);
}

/// Fails when it is saved.
class UnsavableFeature : public ZAXProbePart
{
    Q_OBJECT

public:
    explicit UnsavableFeature(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    void Save(ZAXGeoStream&) const override { throw ZAXSysException(QStringLiteral("not today")); }
};

void tst_ZAXHostDocument::exceptionOfSaveIsAFailure()
{
    const ZAXProbeFolder folder;
    new UnsavableFeature(m_document->GetContainer());
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QCOMPARE(m_document->Save(&buffer).GetMessage(), QStringLiteral("not today"));
    QCOMPARE(m_document->SaveAs(folder.PathOf("job.zax")).GetMessage(),
             QStringLiteral("The document %1 cannot be saved: not today").arg(folder.PathOf("job.zax")));
    QCOMPARE(folder.Entries(), QStringList());
}

void tst_ZAXHostDocument::savedFileIsOpened()
{
    const ZAXProbeFolder folder;
    const auto saved = m_document->SaveAs(folder.PathOf("job ø.zax"));
    QCOMPARE(saved.GetMessage(), QString());
    QVERIFY(saved);
    ZAXHostDocument document;
    const auto opened = document.Open(folder.PathOf("job ø.zax"));
    QCOMPARE(opened.GetMessage(), QString());
    QVERIFY(opened);
    QCOMPARE(TreeOf(document), TreeOf(*m_document));
    QCOMPARE(document.GetDocumentId(), m_document->GetDocumentId());
}

void tst_ZAXHostDocument::savedFileHoldsTheEncodedBytes()
{
    const ZAXProbeFolder folder;
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    QCOMPARE(folder.Read("job.zax"), m_document->Encode());
    QVERIFY(m_document->SaveAs(folder.PathOf("copy.zax")));
    QCOMPARE(folder.Read("copy.zax"), folder.Read("job.zax"));
}

void tst_ZAXHostDocument::saveReplacesTheOldFile()
{
    const ZAXProbeFolder folder;
    QVERIFY(folder.Write("job.zax", QByteArray(100000, 'x')));
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    QCOMPARE(folder.Read("job.zax"), m_document->Encode());
}

void tst_ZAXHostDocument::saveLeavesNoOtherFile()
{
    const ZAXProbeFolder folder;
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    QCOMPARE(folder.Entries(), QStringList({QStringLiteral("job.zax"), QStringLiteral("job.zax.lock")}));
    m_document.reset();
    QCOMPARE(folder.Entries(), QStringList(QStringLiteral("job.zax")));
}

void tst_ZAXHostDocument::saveThroughALinkKeepsTheLink()
{
    const ZAXProbeFolder folder;
    QVERIFY(folder.Write("target.zax", "old"));
    QVERIFY(QFile::link(folder.PathOf("target.zax"), folder.PathOf("link.zax")));
    QVERIFY(m_document->SaveAs(folder.PathOf("link.zax")));
    QVERIFY(QFileInfo(folder.PathOf("link.zax")).isSymLink());
    QCOMPARE(folder.Read("target.zax"), m_document->Encode());
}

void tst_ZAXHostDocument::openRefuses_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("error");
    QTest::newRow("missing file") << QByteArray("missing.zax") << ENOENT;
    QTest::newRow("file in a missing folder") << QByteArray("missing/job.zax") << ENOENT;
    QTest::newRow("file as a folder") << QByteArray("file/job.zax") << ENOTDIR;
}

void tst_ZAXHostDocument::openRefuses()
{
    QFETCH(QByteArray, name);
    QFETCH(int, error);
    const ZAXProbeFolder folder;
    QVERIFY(folder.Write("file", "x"));
    QCOMPARE(m_document->Open(folder.PathOf(name)).GetMessage(),
             QStringLiteral("The document %1 cannot be opened: %2").arg(folder.PathOf(name), qt_error_string(error)));
    QCOMPARE(TreeOf(*m_document), QStringLiteral("A(B(C) ZAXFeatFolder(D)) E"));
}

void tst_ZAXHostDocument::openRefusesAFolder()
{
    const ZAXProbeFolder folder;
    QCOMPARE(m_document->Open(folder.Path()).GetMessage(),
             QStringLiteral("The document %1 cannot be opened: file to open is a directory").arg(folder.Path()));
}

void tst_ZAXHostDocument::openRefusesAnUnreadableFile()
{
    const ZAXProbeOrdinaryUser user;
    const ZAXProbeFolder folder;
    const QString path = folder.PathOf("job.zax");
    QVERIFY(m_document->SaveAs(path));
    QVERIFY(QFile::setPermissions(path, QFile::WriteOwner));
    QCOMPARE(m_document->Open(path).GetMessage(),
             QStringLiteral("The document %1 cannot be opened: %2").arg(path, qt_error_string(EACCES)));
}

void tst_ZAXHostDocument::openRefusesADamagedFile()
{
    const ZAXProbeFolder folder;
    QVERIFY(folder.Write("empty.zax", ""));
    QVERIFY(folder.Write("job %1.zax", "PK\x03\x04 no such document"));
    const QString text = QStringLiteral("The document ") + folder.Path();
    QCOMPARE(m_document->Open(folder.PathOf("empty.zax")).GetMessage(),
             text + u"/empty.zax cannot be read: The document is empty."_qs);
    QCOMPARE(m_document->Open(folder.PathOf("job %1.zax")).GetMessage(),
             text + u"/job %1.zax cannot be read: This is not a document of this program, or one that was changed by a "
                    "transfer as text."_qs);
    QCOMPARE(TreeOf(*m_document), QStringLiteral("A(B(C) ZAXFeatFolder(D)) E"));
}

void tst_ZAXHostDocument::saveToAMissingFolderIsAFailure()
{
    const ZAXProbeFolder folder;
    const QString path = folder.PathOf("missing/job.zax");
    QCOMPARE(m_document->SaveAs(path).GetMessage(),
             QStringLiteral("The document %1 cannot be saved: No lock can be made beside %1: the folder takes no new "
                            "file, or the disk is full.")
                 .arg(path));
    QCOMPARE(folder.Entries(), QStringList());
}

void tst_ZAXHostDocument::saveToAFolderIsAFailure()
{
    const ZAXProbeFolder folder;
    QVERIFY(QDir(folder.Path()).mkdir(QStringLiteral("job.zax")));
    const QString path = folder.PathOf("job.zax");
    const QString message = m_document->SaveAs(path).GetMessage();
    QVERIFY2(message.startsWith(QStringLiteral("The document %1 cannot be saved: ").arg(path)), qPrintable(message));
    QCOMPARE(folder.Entries(), QStringList(QStringLiteral("job.zax")));
}

void tst_ZAXHostDocument::saveToAReadOnlyFolderKeepsTheOldFile()
{
    const ZAXProbeOrdinaryUser user;
    const ZAXProbeFolder folder;
    const QString path = folder.PathOf("job.zax");
    QVERIFY(folder.Write("job.zax", "old"));
    QVERIFY(folder.SetWritable(false));
    const QString message = m_document->SaveAs(path).GetMessage();
    QVERIFY(folder.SetWritable(true));
    QCOMPARE(message,
             QStringLiteral("The document %1 cannot be saved: No lock can be made beside %1: the folder takes no new "
                            "file, or the disk is full.")
                 .arg(path));
    QCOMPARE(folder.Read("job.zax"), QByteArray("old"));
    QCOMPARE(folder.Entries(), QStringList(QStringLiteral("job.zax")));
}

void tst_ZAXHostDocument::saveToAReadOnlyFileKeepsIt()
{
    const ZAXProbeOrdinaryUser user;
    const ZAXProbeFolder folder;
    const QString path = folder.PathOf("job.zax");
    QVERIFY(folder.Write("job.zax", "old"));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    const QString message = m_document->SaveAs(path).GetMessage();
    QVERIFY2(message.startsWith(QStringLiteral("The document %1 cannot be saved: ").arg(path)), qPrintable(message));
    QCOMPARE(folder.Read("job.zax"), QByteArray("old"));
    QCOMPARE(folder.Entries(), QStringList(QStringLiteral("job.zax")));
}

void tst_ZAXHostDocument::saveOnAFullDiskKeepsTheOldFile()
{
    const ZAXProbeFolder folder;
    const QString path = folder.PathOf("job.zax");
    QVERIFY(folder.Write("job.zax", "old"));
    QString message;
    {
        const ZAXProbeFullDisk full(100);
        message = m_document->SaveAs(path).GetMessage();
    }
    QCOMPARE(
        message,
        QStringLiteral("The document %1 cannot be saved: it cannot be written: %2").arg(path, qt_error_string(EFBIG)));
    QCOMPARE(folder.Read("job.zax"), QByteArray("old"));
    QCOMPARE(folder.Entries(), QStringList(QStringLiteral("job.zax")));
    QVERIFY(m_document->IsModified());
}

void tst_ZAXHostDocument::saveOfADeeplyNestedDocumentKeepsTheOldFile()
{
    const ZAXProbeFolder folder;
    const QString path = folder.PathOf("job.zax");
    QVERIFY(folder.Write("job.zax", "old"));
    NestTooDeeply(*m_document);
    QCOMPARE(m_document->SaveAs(path).GetMessage(),
             QStringLiteral("The document %1 cannot be saved: The objects of the document are nested too deeply to be "
                            "saved.")
                 .arg(path));
    QCOMPARE(folder.Read("job.zax"), QByteArray("old"));
}

void tst_ZAXHostDocument::changeMakesItModified_data()
{
    QTest::addColumn<std::function<void(ZAXHostDocument&)>>("change");
    const auto add = [](const char* name, const std::function<void(ZAXHostDocument&)>& change) {
        QTest::newRow(name) << change;
    };
    add("value", [](ZAXHostDocument& document) { PartOf(document, 3)->WriteLength(ZAXSysLengthValue(2.5)); });
    add("silent value", [](ZAXHostDocument& document) { PartOf(document, 3)->length.SetValue(2.5, true); });
    add("label", [](ZAXHostDocument& document) { PartOf(document, 3)->SetLabel(QStringLiteral("new")); });
    add("visibility", [](ZAXHostDocument& document) { PartOf(document, 3)->SetVisibility(false); });
    add("pointer", [](ZAXHostDocument& document) { PartOf(document, 1)->partner.SetPointedObject(nullptr, true); });
    add("list", [](ZAXHostDocument& document) { PartOf(document, 3)->companions.Add(nullptr, true); });
    add("new child", [](ZAXHostDocument& document) { AddPart(PartOf(document, 3), "new"); });
    add("new object at the top", [](ZAXHostDocument& document) { AddPart(*document.GetContainer(), "new"); });
    add("created child", [](ZAXHostDocument& document) {
        document.GetContainer()->CreateInstance("ZAXFeatFolder", PartOf(document, 3));
    });
    add("removal", [](ZAXHostDocument& document) { PartOf(document, 3)->Remove(); });
    add("removal at the top", [](ZAXHostDocument& document) { PartOf(document, 6)->Remove(); });
    add("move", [](ZAXHostDocument& document) { PartOf(document, 3)->MoveTo(PartOf(document, 6), 0); });
    add("state brought back", [](ZAXHostDocument& document) {
        PartOf(document, 3)->SetCurrentState(PartOf(document, 2)->GetCurrentState());
    });
}

void tst_ZAXHostDocument::changeMakesItModified()
{
    QFETCH(std::function<void(ZAXHostDocument&)>, change);
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    QVERIFY(!document.IsModified());
    change(document);
    QVERIFY(document.IsModified());
}

void tst_ZAXHostDocument::whatChangesNothingLeavesItUnmodified()
{
    ZAXHostDocument document;
    QVERIFY(Load(document, m_document->Encode()));
    ZAXProbePart* const part = PartOf(document, 2);
    part->WriteLength(part->ReadLength());
    part->SetLabel(QString());
    part->SetVisibility(part->IsVisible());
    part->companions.Clear(false);
    part->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("too long"));
    part->UpdateResult();
    part->GetCurrentState();
    document.Encode();
    QVERIFY(!part->MoveTo(part, 0));
    QVERIFY(!document.IsModified());
}

void tst_ZAXHostDocument::savingToItsFileMakesItUnmodified()
{
    const ZAXProbeFolder folder;
    QVERIFY(m_document->IsModified());
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    QVERIFY(!m_document->IsModified());
    PartOf(*m_document, 1)->SetLabel(QStringLiteral("changed"));
    QVERIFY(m_document->IsModified());
}

void tst_ZAXHostDocument::savingElsewhereLeavesItModified()
{
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(m_document->Save(&buffer));
    QVERIFY(m_document->IsModified());
}

void tst_ZAXHostDocument::failedSaveLeavesItModified()
{
    const ZAXProbeFolder folder;
    QVERIFY(!m_document->SaveAs(folder.PathOf("missing/job.zax")));
    QVERIFY(m_document->IsModified());
}

void tst_ZAXHostDocument::loadingMakesItUnmodified()
{
    const ZAXProbeFolder folder;
    const QByteArray bytes = m_document->Encode();
    QVERIFY(folder.Write("job.zax", bytes));
    QVERIFY(Load(*m_document, bytes));
    QVERIFY(!m_document->IsModified());
    PartOf(*m_document, 1)->SetLabel(QStringLiteral("changed"));
    QVERIFY(m_document->Open(folder.PathOf("job.zax")));
    QVERIFY(!m_document->IsModified());
}

void tst_ZAXHostDocument::changesAreSeenBehindALoad()
{
    QVERIFY(Load(*m_document, m_document->Encode()));
    QVERIFY(Load(*m_document, m_document->Encode()));
    PartOf(*m_document, 1)->SetLabel(QStringLiteral("changed"));
    QVERIFY(m_document->IsModified());
}

void tst_ZAXHostDocument::failedLoadLeavesItModified()
{
    QVERIFY(!Load(*m_document, "damaged"));
    QVERIFY(m_document->IsModified());
    PartOf(*m_document, 1)->SetLabel(QStringLiteral("still here"));
}

void tst_ZAXHostDocument::failedCreationLeavesItUnmodified()
{
    QVERIFY(Load(*m_document, m_document->Encode()));
    ZAXFeatLastSavedStore::GetCurrent().SetValue("MakingFeature", "length", 5.0);
    m_journal->FailAt("Initialize");
    QVERIFY_THROWS_EXCEPTION(ZAXSysException,
                             m_document->GetContainer()->CreateInstance("ZAXProbePart", PartOf(*m_document, 1)));
    QVERIFY(!m_document->IsModified());
}

QTEST_GUILESS_MAIN(tst_ZAXHostDocument)
#include "tst_ZAXHostDocument.moc"
