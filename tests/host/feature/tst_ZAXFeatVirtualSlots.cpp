#include "ZAXFeatObject.h"
#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatObjectListPropertyItem.h"
#include "ZAXFeatObjectProperty.h"
#include "ZAXFeatRoot.h"
#include "ZAXFeatValueProperty.h"

#include <QTest>

#include <cstring>

// Modules are compiled against the order of the virtual functions: it is part of the interface, and a declaration
// moved from its place breaks every module that is already out there.

namespace {

#if defined(__arm__) || defined(__aarch64__)
constexpr int wordOfTheVirtualBit = 1;
#else
constexpr int wordOfTheVirtualBit = 0;
#endif

/// The place of a virtual function in the virtual table of its class; -1 for a function that is not virtual. By the
/// Itanium C++ ABI a pointer to a virtual member function is the function's offset in the table, marked by the lowest
/// bit of its first word, on ARM of its second one. A destructor takes two places.
template <typename Member>
int SlotOf(Member function)
{
    std::size_t words[2];
    static_assert(sizeof function == sizeof words);
    std::memcpy(words, &function, sizeof words);
    return words[wordOfTheVirtualBit] % 2 == 1 ? static_cast<int>(words[0] / sizeof(void*)) : -1;
}

/// The place of the first function behind those of QObject.
constexpr int behindQObject = 12;

using Value = ZAXFeatValueProperty<double>;
using Object = ZAXFeatObjectProperty<ZAXFeatObject>;
using Item = ZAXFeatObjectListPropertyItem<ZAXFeatObject>;
using List = ZAXFeatObjectListProperty<ZAXFeatObject>;

/// A class whose destructor's place can be seen: the first function behind it has the next one.
class OnlyADestructor
{
public:
    virtual ~OnlyADestructor() = default;
    virtual void Next() {}
};

} // namespace

class tst_ZAXFeatVirtualSlots : public QObject
{
    Q_OBJECT

private slots:
    void destructorTakesTwoPlaces();
    void qobjectTakesTwelvePlaces();
    void valueProperty();
    void objectProperty();
    void listItem();
    void listProperty();
    void geometry();
    void feature();
    void root();
    void functionsOfTheInterfaceThatAreNotVirtual();
};

void tst_ZAXFeatVirtualSlots::destructorTakesTwoPlaces()
{
    QCOMPARE(SlotOf(&OnlyADestructor::Next), 2);
}

void tst_ZAXFeatVirtualSlots::qobjectTakesTwelvePlaces()
{
    QCOMPARE(SlotOf(&QObject::event), 5);
    QCOMPARE(SlotOf(&QObject::eventFilter), 6);
}

void tst_ZAXFeatVirtualSlots::valueProperty()
{
    QCOMPARE(SlotOf(&ZAXFeatPropertyBase::EndModify), 2);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::InitializeValue), 3);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::HasLimits), 4);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::TestLimits), 5);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::GetMinLimit), 6);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::GetMinLimitInclusion), 7);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::GetMaxLimit), 8);
    QCOMPARE(SlotOf(&ZAXFeatValuePropertyBase::GetMaxLimitInclusion), 9);
    QCOMPARE(SlotOf(&Value::EndModify), 2);
    QCOMPARE(SlotOf(&Value::InitializeValue), 3);
    QCOMPARE(SlotOf(&Value::SetValue), 10);
}

void tst_ZAXFeatVirtualSlots::objectProperty()
{
    QCOMPARE(SlotOf(&ZAXFeatObjectPropertyBase::GetOwningList), 3);
    QCOMPARE(SlotOf(&ZAXFeatObjectPropertyBase::SetPointedObject), 4);
    QCOMPARE(SlotOf(&ZAXFeatObjectPropertyBase::CanExternalReference), 5);
    QCOMPARE(SlotOf(&Object::EndModify), 2);
    QCOMPARE(SlotOf<void (Object::*)(ZAXFeatObject*, bool)>(&Object::SetPointedObject), 6);
}

void tst_ZAXFeatVirtualSlots::listItem()
{
    QCOMPARE(SlotOf(&Item::GetOwningList), 3);
}

void tst_ZAXFeatVirtualSlots::listProperty()
{
    QCOMPARE(SlotOf(&ZAXFeatObjectListPropertyBase::RemoveItem), 3);
    QCOMPARE(SlotOf(&List::EndModify), 2);
    QCOMPARE(SlotOf(&List::RemoveItem), 3);
}

void tst_ZAXFeatVirtualSlots::geometry()
{
    QCOMPARE(SlotOf(&ZAXGeoGeometry::Save), behindQObject);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::Load), behindQObject + 1);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::Initialize), behindQObject + 2);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::InitializeNonStreamed), behindQObject + 3);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::BeginStateLoad), behindQObject + 4);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::EndStateLoad), behindQObject + 5);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::SetCurrentState), behindQObject + 6);
    QCOMPARE(SlotOf(&ZAXGeoGeometry::Cleanup), behindQObject + 7);
}

void tst_ZAXFeatVirtualSlots::feature()
{
    QCOMPARE(SlotOf(&ZAXFeatObject::IsChildAllowed), behindQObject + 8);
    QCOMPARE(SlotOf(&ZAXFeatObject::IsUserDeletable), behindQObject + 9);
    QCOMPARE(SlotOf(&ZAXFeatObject::UpdateResult), behindQObject + 10);
    QCOMPARE(SlotOf(&ZAXFeatObject::PostDuplicate), behindQObject + 11);
    QCOMPARE(SlotOf(&ZAXFeatObject::GetLabel), behindQObject + 12);
    QCOMPARE(SlotOf(&ZAXFeatObject::GetLabelPrefix), behindQObject + 13);
    QCOMPARE(SlotOf(&ZAXFeatObject::GetLabelSuffix), behindQObject + 14);
    QCOMPARE(SlotOf(&ZAXFeatObject::GetAllowedMoveActions), behindQObject + 15);
    QCOMPARE(SlotOf(&ZAXFeatObject::CanUserDuplicate), behindQObject + 16);
    QCOMPARE(SlotOf(&ZAXFeatObject::SetVisibility), behindQObject + 17);
    QCOMPARE(SlotOf(&ZAXFeatObject::Remove), behindQObject + 18);
    QCOMPARE(SlotOf(&ZAXFeatObject::PostMove), behindQObject + 19);
    QCOMPARE(SlotOf(&ZAXFeatObject::event), 5);
    QCOMPARE(SlotOf(&ZAXFeatObject::Save), behindQObject);
    QCOMPARE(SlotOf(&ZAXFeatObject::Load), behindQObject + 1);
    QCOMPARE(SlotOf(&ZAXFeatObject::Initialize), behindQObject + 2);
}

void tst_ZAXFeatVirtualSlots::root()
{
    QCOMPARE(SlotOf(&ZAXFeatRoot::GetFallbackDefaultFolder), behindQObject + 20);
    QCOMPARE(SlotOf(&ZAXFeatRoot::EndStateLoad), behindQObject + 5);
    QCOMPARE(SlotOf(&ZAXFeatRoot::IsUserDeletable), behindQObject + 9);
}

void tst_ZAXFeatVirtualSlots::functionsOfTheInterfaceThatAreNotVirtual()
{
    QCOMPARE(SlotOf(&ZAXFeatPropertyBase::BeginModify), -1);
    QCOMPARE(SlotOf(&ZAXFeatPropertyBase::GetFeature), -1);
    QCOMPARE(SlotOf(&ZAXFeatObjectPropertyBase::GetPointedObject), -1);
    QCOMPARE(SlotOf(&ZAXFeatObject::SetLabel), -1);
    QCOMPARE(SlotOf(&ZAXFeatObject::GetParent), -1);
    QCOMPARE(SlotOf(&ZAXFeatObject::GetAllDependents), -1);
    QCOMPARE(SlotOf(&ZAXFeatObject::SetPropertyMessage), -1);
}

QTEST_GUILESS_MAIN(tst_ZAXFeatVirtualSlots)
#include "tst_ZAXFeatVirtualSlots.moc"
