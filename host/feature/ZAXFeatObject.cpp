#include "ZAXFeatObject.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatObjectPropertyBase.h"
#include "ZAXFeatPropertyBasePrivate.h"
#include "ZAXFeatRoot.h"
#include "ZAXFeatSignalScope.h"
#include "ZAXFeatValuePropertyBase.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXSysException.h"

#include <QCoreApplication>
#include <QMetaClassInfo>
#include <QMetaMethod>
#include <QPointer>
#include <QScopeGuard>
#include <QSet>

#include <algorithm>

namespace {

/// Whether \a type or one of its bases is named in \a names.
bool IsNamed(const QMetaObject* type, const QList<QByteArray>& names)
{
    for (; type; type = type->superClass()) {
        if (names.contains(type->className()))
            return true;
    }
    return false;
}

/// Whether the "allowedParents" of \a childType admit \a parentType; without the entry any parent will do.
bool IsParentAdmitted(const QMetaObject* parentType, const QMetaObject* childType)
{
    const int index = childType->indexOfClassInfo("allowedParents");
    return index < 0 || IsNamed(parentType, QByteArray(childType->classInfo(index).value()).split(' '));
}

QString DefaultLabel(const QMetaObject* type)
{
    const int index = type->indexOfClassInfo("defaultLabel");
    return index < 0 ? QString() : QCoreApplication::translate(type->className(), type->classInfo(index).value());
}

/// An open change of one feature, closed at the end of the scope.
class Change
{
public:
    explicit Change(ZAXFeatObjectPrivate& feature) : m_feature(feature) { m_feature.BeginModify(); }
    ~Change() { m_feature.EndModify(); }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

private:
    ZAXFeatObjectPrivate& m_feature;
};

} // namespace

ZAXFeatObject::ZAXFeatObject(ZAXFeatContainer* container, ZAXFeatObject* parent)
    : ZAXGeoGeometry(container), d_ptr(std::make_unique<ZAXFeatObjectPrivate>(this, container))
{
    if (parent && parent->GetContainer() != container)
        throw ZAXSysException(QLatin1String("The parent belongs to another document."));
    if (parent && ZAXFeatObjectPrivate::Get(*parent).isAside)
        throw ZAXSysException(QLatin1String("The parent was removed."));
    d_ptr->AttachTo(parent, -1);
}

ZAXFeatObject::ZAXFeatObject(const ZAXGeoGeometryRef& reference, ZAXGeoContainer* container)
    : ZAXGeoGeometry(reference, container),
      d_ptr(std::make_unique<ZAXFeatObjectPrivate>(this, qobject_cast<ZAXFeatContainer*>(container)))
{
    d_ptr->AttachTo(nullptr, -1);
    // Nobody saw it come: it was there when the document, or the original of a copy, was.
    d_ptr->isInitialized = true;
}

ZAXFeatObject::~ZAXFeatObject()
{
    // It is no longer of the class that it was.
    d_ptr->Unlist({this});
    d_ptr->ForgetLists();
    if (auto* const observer = d_ptr->Observer(); observer && !d_ptr->isAside)
        observer->Destroyed(this);
    for (ZAXFeatObjectPropertyBase* property : std::as_const(d_ptr->pointers))
        ZAXFeatPropertyBasePrivate::ForgetPointed(*property);
    while (!d_ptr->children.isEmpty())
        delete d_ptr->children.constLast();
    // Somebody who watched them go may have asked for lists.
    d_ptr->ForgetLists();
    d_ptr->Detach();
    if (d_ptr->isAside && d_ptr->container)
        ZAXGeoContainerPrivate::Get(*d_ptr->container).aside.remove(GetId());
}

void ZAXFeatObject::Save(ZAXGeoStream& stream) const
{
    ZAXGeoGeometry::Save(stream);
    stream << d_ptr->label << d_ptr->isVisible;
}

void ZAXFeatObject::Load(ZAXGeoStream& stream)
{
    ZAXGeoGeometry::Load(stream);
    QString label;
    bool isVisible = true;
    stream >> label >> isVisible;
    SetLabel(label);
    SetVisibility(isVisible);
}

void ZAXFeatObject::Initialize()
{
    ZAXGeoGeometry::Initialize();
    if (std::exchange(d_ptr->isInitialized, true))
        return;
    // It was not yet of the class that it is while it got its place.
    d_ptr->Enlist();
    for (ZAXFeatValuePropertyBase* property : std::as_const(d_ptr->initializations))
        property->InitializeValue();
    InitializeNonStreamed();
    if (!d_ptr->isAnnouncementDeferred)
        d_ptr->Announce();
}

bool ZAXFeatObject::IsChildAllowed(const QMetaObject* childType) const
{
    return IsValidParent(metaObject(), childType, {staticMetaObject.className()});
}

bool ZAXFeatObject::IsUserDeletable() const
{
    return true;
}

bool ZAXFeatObject::UpdateResult()
{
    d_ptr->messages.clear();
    return true;
}

void ZAXFeatObject::PostDuplicate(const ZAXFeatObject*, const ZAXFeatObject*) {}

QString ZAXFeatObject::GetLabel() const
{
    const QString prefix = GetLabelPrefix();
    const QString suffix = GetLabelSuffix();
    QString label = d_ptr->label.isEmpty() ? DefaultLabel(metaObject()) : d_ptr->label;
    if (!prefix.isEmpty() || !suffix.isEmpty())
        label = prefix + label + suffix;
    return label;
}

QString ZAXFeatObject::GetLabelPrefix() const
{
    return {};
}

QString ZAXFeatObject::GetLabelSuffix() const
{
    return {};
}

ZAXFeatObject::MoveActions ZAXFeatObject::GetAllowedMoveActions() const
{
    return MoveWithinParent | MoveToOtherParent;
}

bool ZAXFeatObject::CanUserDuplicate() const
{
    return true;
}

void ZAXFeatObject::SetVisibility(bool visible)
{
    if (visible == d_ptr->isVisible)
        return;
    {
        const Change change(*d_ptr);
        d_ptr->isVisible = visible;
    }
    const ZAXFeatSignalScope scope(this);
    emit VisibilityChanged(visible);
}

void ZAXFeatObject::Remove()
{
    if (d_ptr->isAside || d_ptr->isLeaving)
        return;
    const bool isInUse = d_ptr->IsContainerAtWork();
    const ZAXFeatStep step(d_ptr->container);
    const QPointer<ZAXFeatObject> self = this;
    d_ptr->TakeLeave();
    // A slot of what took leave may have removed a parent, and this feature with it.
    if (!self || d_ptr->isAside)
        return;
    const ZAXFeatPlace from = d_ptr->Place();
    d_ptr->SetAside();
    // What was never announced is nothing that could come back.
    auto* const observer = d_ptr->isAnnounced ? d_ptr->Observer() : nullptr;
    if (observer)
        observer->Placed(this, from, {});
    const bool isKept = observer && observer->KeepsRemoved();
    // Whoever called from within a change or a signal of the feature goes on with it afterwards.
    const auto discard = qScopeGuard([isKept, isInUse, self] {
        if (!self || !self->d_ptr->isAside || isKept)
            return;
        if (isInUse)
            self->d_ptr->DiscardLater();
        else
            self->d_ptr->Discard();
    });
    d_ptr->TellOfDeparture();
}

void ZAXFeatObject::PostMove(ZAXFeatObject*, int) {}

void ZAXFeatObject::SetLabel(const QString& label)
{
    if (label == d_ptr->label)
        return;
    {
        const Change change(*d_ptr);
        // A null text and an empty one mean the same, but are stored differently.
        d_ptr->label = label.isEmpty() ? QString() : label;
    }
    static const QMetaMethod changed = QMetaMethod::fromSignal(&ZAXFeatObject::LabelChanged);
    const bool isLoading = d_ptr->container && ZAXFeatContainerPrivate::Get(*d_ptr->container).loading;
    if (isLoading && d_ptr->IsUnheard(changed))
        return;
    const ZAXFeatSignalScope scope(this);
    emit LabelChanged(GetLabel());
}

bool ZAXFeatObject::IsVisible() const
{
    return d_ptr->isVisible;
}

ZAXFeatObject* ZAXFeatObject::GetParent() const
{
    return d_ptr->parent;
}

QList<ZAXFeatObject*> ZAXFeatObject::GetChildren() const
{
    return d_ptr->children;
}

QList<ZAXFeatObject*> ZAXFeatObject::GetAllChildren() const
{
    return d_ptr->AllChildren(&staticMetaObject);
}

QList<ZAXFeatObject*> ZAXFeatObject::GetAllChildrenOfType(const QMetaObject* type) const
{
    return d_ptr->AllChildren(type);
}

QList<ZAXFeatObject*> ZAXFeatObject::GetAllDependents() const
{
    QList<ZAXFeatObject*> reached = d_ptr->Subtree();
    const qsizetype own = reached.size();
    QSet<const ZAXFeatObject*> seen(reached.cbegin(), reached.cend());
    for (qsizetype i = 0; i < reached.size(); ++i) {
        const ZAXFeatObject* const pointed = reached.at(i);
        for (const ZAXFeatObjectPropertyBase* property : std::as_const(pointed->d_ptr->pointers)) {
            ZAXFeatObject* const dependent = property->GetFeature();
            const bool listsItsOwnChild = property->GetOwningList() && pointed->GetParent() == dependent;
            if (!listsItsOwnChild && !dependent->d_ptr->isAside && !seen.contains(dependent)) {
                seen.insert(dependent);
                reached.append(dependent);
            }
        }
    }
    return reached.sliced(own);
}

bool ZAXFeatObject::MoveTo(ZAXFeatObject* parent, int index)
{
    const auto isGone = [](const ZAXFeatObjectPrivate& d) { return d.isAside || d.isLeaving; };
    if (!parent || isGone(*d_ptr) || isGone(*parent->d_ptr) || parent->GetContainer() != GetContainer() ||
        d_ptr->Subtree().contains(parent) || !d_ptr->IsAllowedUnder(parent))
        return false;
    const ZAXFeatStep step(d_ptr->container);
    const QPointer<ZAXFeatObject> self = this;
    const QPointer<ZAXFeatObject> oldParent = GetParent();
    const ZAXFeatPlace from = d_ptr->Place();
    d_ptr->AttachTo(parent, index);
    const ZAXFeatPlace to = d_ptr->Place();
    if (auto* const observer = d_ptr->Observer(); observer && d_ptr->isAnnounced && from != to)
        observer->Placed(this, from, to);
    d_ptr->TellOfDeparture();
    // A slot may have done away with the feature, or taken it elsewhere.
    if (self)
        d_ptr->TellOfArrival();
    if (self && !d_ptr->isAside)
        PostMove(oldParent, static_cast<int>(from.index));
    return true;
}

void ZAXFeatObject::SetPropertyMessage(const QByteArray& property, MessageStatus status, const QString& text)
{
    const PropertyMessage message{property, status, text};
    if (!d_ptr->messages.contains(message))
        d_ptr->messages.append(message);
}

QList<ZAXFeatObject::PropertyMessage> ZAXFeatObject::GetPropertyMessages() const
{
    return d_ptr->messages;
}

QList<ZAXFeatObject::PropertyMessage> ZAXFeatObject::GetPropertyMessages(const QByteArray& property) const
{
    QList<PropertyMessage> messages = d_ptr->messages;
    messages.removeIf([&](const PropertyMessage& message) { return message.property != property; });
    return messages;
}

bool ZAXFeatObject::IsValidParent(const QMetaObject* parentType, const QMetaObject* childType,
                                  const QList<QByteArray>& allowedChildClassNames)
{
    if (ZAXFeatObjectPrivate::IsPlainFolder(childType))
        return true;
    return IsNamed(childType, allowedChildClassNames) && IsParentAdmitted(parentType, childType);
}

ZAXFeatSignalScope::ZAXFeatSignalScope(const ZAXFeatObject* feature) : m_depth(nullptr)
{
    if (const auto* const container = ZAXFeatObjectPrivate::Get(*feature).container)
        m_depth = &ZAXFeatContainerPrivate::Get(*container).signalDepth;
    if (m_depth)
        ++*m_depth;
}

ZAXFeatSignalScope::~ZAXFeatSignalScope()
{
    if (m_depth)
        --*m_depth;
}

bool ZAXFeatObject::event(QEvent* event)
{
    return ZAXGeoGeometry::event(event);
}
