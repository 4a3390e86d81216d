#include "ZAXMatGlobal.h"
#include "ZAXMatPackaging.h"

#include "ZAXGeoContainer.h"
#include "ZAXSysAbstractEnumLocalization.h"
#include "ZAXSysRegisterInit.h"

#include <QCoreApplication>
#include <QMetaSequence>
#include <QSequentialIterable>
#include <QTest>
#include <QTranslator>

// What loading the library does, and what its queued function does when the host runs it. This program takes the place
// of the host's queue, so that it decides when that is.

namespace {

// A plain pointer: the library is initialised before the objects of this program are.
std::function<void()>* queued = nullptr;

class German : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        const bool isRoll = qstrcmp(context, "ZAXMatPackaging") == 0 && qstrcmp(text, "Roll") == 0;
        return isRoll ? QString(QLatin1String("Rolle")) : QString();
    }
};

bool HasListView(const char* name)
{
    const QMetaType list = QMetaType::fromName(name);
    const QMetaType iterable = QMetaType::fromType<QIterable<QMetaSequence>>();
    return QMetaType::hasRegisteredConverterFunction(list, iterable) &&
           QMetaType::hasRegisteredMutableViewFunction(list, iterable);
}

QMetaType FormType()
{
    return QMetaType::fromName("ZAXMatPackaging::Form");
}

/// The form that \a text converts to, as a number; -2 when it does not convert.
int FormOf(const char* text)
{
    QVariant value = QString::fromUtf8(text);
    return value.convert(FormType()) ? *static_cast<const int*>(value.constData()) : -2;
}

QString LabelOf(int form)
{
    return QVariant(FormType(), &form).toString();
}

int warnings = 0;

void CountWarnings(QtMsgType type, const QMessageLogContext&, const QString&)
{
    warnings += type == QtWarningMsg ? 1 : 0;
}

} // namespace

bool ZAXSysRegisterInit(const std::function<void()>& function)
{
    queued = new std::function<void()>(function);
    return false;
}

class tst_ZAXMatModule : public QObject
{
    Q_OBJECT

private slots:
    void loadingRegistersTheClassesInOrder();
    void loadingRegistersThePointers_data();
    void loadingRegistersThePointers();
    void theFlagHoldsTheHostsAnswer();
    void nothingElseIsRegisteredBeforeTheHostRunsIt();

    void listsCanBeWalked_data();
    void listsCanBeWalked();
    void formsConvertToTheirLabels();
    void labelsAndNamesConvertToForms();
    void labelsFollowTheLanguage();
    void formsAreLocalized();
    void runningItAgainWarnsOfNothing();
    void cleanupTestCase();
};

void tst_ZAXMatModule::loadingRegistersTheClassesInOrder()
{
    QList<QByteArray> names;
    for (const QMetaObject* type : ZAXGeoContainer::GetRegisteredTypes())
        names.append(type->className());
    names.removeAll(QByteArray("ZAXFeatFolder"));
    QCOMPARE(names, QList<QByteArray>({"ZAXMatMaterial", "ZAXMatPackaging", "ZAXMatRoot"}));
}

void tst_ZAXMatModule::loadingRegistersThePointers_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"ZAXMatMaterial*", "const ZAXMatMaterial*", "ZAXMatPackaging*", "const ZAXMatPackaging*",
                             "ZAXMatRoot*", "const ZAXMatRoot*"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_ZAXMatModule::loadingRegistersThePointers()
{
    QFETCH(QByteArray, name);
    QVERIFY(QMetaType::fromName(name).isValid());
}

void tst_ZAXMatModule::theFlagHoldsTheHostsAnswer()
{
    QVERIFY(queued);
    QVERIFY(!_ZAXMaterialLoaded);
}

void tst_ZAXMatModule::nothingElseIsRegisteredBeforeTheHostRunsIt()
{
    QVERIFY(!FormType().isValid());
    QVERIFY(!QMetaType::fromName("QList<ZAXMatMaterial*>").isValid());
    (*queued)();
    QVERIFY(FormType().isValid());
}

void tst_ZAXMatModule::listsCanBeWalked_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name :
         {"QList<ZAXMatMaterial*>", "QList<ZAXMatMaterialExtension*>", "QList<ZAXMatPackagingExtension*>"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_ZAXMatModule::listsCanBeWalked()
{
    QFETCH(QByteArray, name);
    QVERIFY(HasListView(name));
    const QVariant list{QMetaType::fromName(name)};
    QVERIFY(list.canConvert<QSequentialIterable>());
    QCOMPARE(list.value<QSequentialIterable>().size(), 0);
}

void tst_ZAXMatModule::formsConvertToTheirLabels()
{
    QCOMPARE(LabelOf(0), QLatin1String("Rectangular"));
    QCOMPARE(LabelOf(1), QLatin1String("Roll"));
    QCOMPARE(LabelOf(2), QString());
}

void tst_ZAXMatModule::labelsAndNamesConvertToForms()
{
    QCOMPARE(FormOf("Rectangular"), 0);
    QCOMPARE(FormOf("Roll"), 1);
    QCOMPARE(FormOf("roll"), -1);
    QCOMPARE(FormOf("Rolle"), -1);
    QCOMPARE(FormOf(""), -1);
}

void tst_ZAXMatModule::labelsFollowTheLanguage()
{
    German german;
    QVERIFY(QCoreApplication::installTranslator(&german));
    QCOMPARE(LabelOf(1), QLatin1String("Rolle"));
    QCOMPARE(FormOf("Rolle"), 1);
    QCOMPARE(FormOf("Roll"), 1);
    QVERIFY(QCoreApplication::removeTranslator(&german));
    QCOMPARE(LabelOf(1), QLatin1String("Roll"));
}

void tst_ZAXMatModule::formsAreLocalized()
{
    QCOMPARE(ZAXSysAbstractEnumLocalization::GetValues(FormType().id()), QList<int>({0, 1}));
    QCOMPARE(ZAXSysAbstractEnumLocalization::IntegerToString(FormType().id(), 1), QLatin1String("Roll"));
}

void tst_ZAXMatModule::runningItAgainWarnsOfNothing()
{
    const auto handler = qInstallMessageHandler(CountWarnings);
    (*queued)();
    qInstallMessageHandler(handler);
    QCOMPARE(warnings, 0);
    QVERIFY(HasListView("QList<ZAXMatMaterial*>"));
    QCOMPARE(FormOf("Roll"), 1);
}

void tst_ZAXMatModule::cleanupTestCase()
{
    delete std::exchange(queued, nullptr);
}

QTEST_GUILESS_MAIN(tst_ZAXMatModule)
#include "tst_ZAXMatModule.moc"
