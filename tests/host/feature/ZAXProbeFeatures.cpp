#include "ZAXProbeFeatures.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXProbeJournal.h"

#include <algorithm>
#include <array>

namespace {

ZAXFeatContainer* ContainerOf(const ZAXFeatObject* parent)
{
    return parent ? qobject_cast<ZAXFeatContainer*>(parent->GetContainer()) : nullptr;
}

const std::array types{
    &ZAXProbePart::staticMetaObject,   &ZAXProbeSpecialPart::staticMetaObject, &ZAXProbeLeaf::staticMetaObject,
    &ZAXProbeRoot::staticMetaObject,   &ZAXProbeUncreatable::staticMetaObject, &ZAXProbeStillborn::staticMetaObject,
    &ZAXProbeParent::staticMetaObject,
};

} // namespace

ZAXProbePart::ZAXProbePart(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container)
{
    length.RequestInitialization();
    Note("recreated");
}

ZAXProbePart::ZAXProbePart(ZAXFeatObject* parent) : ZAXFeatObject(ContainerOf(parent), parent)
{
    length.RequestInitialization();
}

ZAXProbePart::ZAXProbePart(ZAXFeatContainer* container) : ZAXFeatObject(container, nullptr)
{
    length.RequestInitialization();
}

ZAXProbePart::~ZAXProbePart()
{
    Note("destroyed");
}

void ZAXProbePart::Save(ZAXGeoStream& stream) const
{
    ZAXFeatObject::Save(stream);
    stream << name << length << partner.GetReference() << companions;
}

void ZAXProbePart::Load(ZAXGeoStream& stream)
{
    ZAXFeatObject::Load(stream);
    ZAXGeoGeometryRef stored;
    stream >> name >> length >> stored >> companions;
    m_loadedPartner = stream.GetMappedReference(stored);
    m_storedPartner = stream.MapReference(stored);
    Note("Load");
}

void ZAXProbePart::Initialize()
{
    ZAXFeatObject::Initialize();
    Note("Initialize");
}

void ZAXProbePart::InitializeNonStreamed()
{
    ZAXFeatObject::InitializeNonStreamed();
    Note("InitializeNonStreamed");
}

void ZAXProbePart::BeginStateLoad()
{
    ZAXFeatObject::BeginStateLoad();
    Note("BeginStateLoad");
}

void ZAXProbePart::EndStateLoad()
{
    ZAXFeatObject::EndStateLoad();
    partner.SetPointedObject(qobject_cast<ZAXProbePart*>(GetContainer()->GetGeometryByRef(m_loadedPartner)), false);
    if (!partner.GetObject())
        partner.SetUnavailableReference(m_storedPartner);
    Note("EndStateLoad");
}

void ZAXProbePart::Cleanup()
{
    ZAXFeatObject::Cleanup();
    Note("Cleanup");
}

void ZAXProbePart::PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated)
{
    ZAXFeatObject::PostDuplicate(source, duplicated);
    Note(qPrintable(QStringLiteral("PostDuplicate of %1 with %2 as")
                        .arg(QString::number(source->GetId()), QString::number(duplicated->GetId()))));
}

void ZAXProbePart::PostMove(ZAXFeatObject* oldParent, int oldIndex)
{
    ZAXFeatObject::PostMove(oldParent, oldIndex);
    Note(qPrintable(QStringLiteral("PostMove from %1 of %2:")
                        .arg(QString::number(oldIndex), oldParent ? NameOf(oldParent) : QStringLiteral("top"))));
}

void ZAXProbePart::Note(const char* what) const
{
    ZAXProbeJournal::Note((QString::fromUtf8(what) + u' ' + GetName()).trimmed());
}

ZAXProbeLeaf::ZAXProbeLeaf(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container)
{
}

ZAXProbeLeaf::ZAXProbeLeaf(ZAXFeatObject* parent)
    : ZAXFeatObject(ContainerOf(parent), parent), parentOfConstruction(parent->metaObject()->className())
{
}

bool ZAXProbeLeaf::IsChildAllowed(const QMetaObject* childType) const
{
    return IsValidParent(&staticMetaObject, childType, {});
}

ZAXProbeRoot::ZAXProbeRoot(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatRoot(reference, container)
{
}

ZAXProbeRoot::ZAXProbeRoot(ZAXFeatContainer* container) : ZAXFeatRoot(container) {}

bool ZAXProbeRoot::IsChildAllowed(const QMetaObject* childType) const
{
    return IsValidParent(&staticMetaObject, childType, {"ZAXProbePart"});
}

ZAXProbeStillborn::ZAXProbeStillborn(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container)
{
    throw ZAXSysException(QStringLiteral("stillborn"));
}

ZAXProbeStillborn::ZAXProbeStillborn(ZAXFeatObject* parent) : ZAXFeatObject(ContainerOf(parent), parent)
{
    throw ZAXSysException(QStringLiteral("stillborn"));
}

void ZAXProbeParent::EndStateLoad()
{
    ZAXProbePart::EndStateLoad();
    AddPart(this, "made by EndStateLoad");
}

QString NameOf(const ZAXFeatObject* feature)
{
    const QVariant name = feature->property("name");
    return name.isValid() ? name.toString() : QString::fromUtf8(feature->metaObject()->className());
}

ZAXProbeObserver::ZAXProbeObserver(ZAXFeatContainer& container) : m_container(&container)
{
    ZAXFeatContainerPrivate::Get(container).observer = this;
}

ZAXProbeObserver::~ZAXProbeObserver()
{
    if (m_container)
        ZAXFeatContainerPrivate::Get(*m_container).observer = nullptr;
}

void ZAXProbeObserver::BeginStep()
{
    m_steps.append(QString());
}

void ZAXProbeObserver::EndStep()
{
    const QString changed = m_steps.takeLast();
    if (!changed.isEmpty())
        ZAXProbeJournal::Note(u"changed "_qs + changed);
}

void ZAXProbeObserver::AboutToChange(ZAXFeatObject* feature, ZAXFeatValuePropertyBase*)
{
    m_steps.last() = NameOf(feature);
    ZAXProbeJournal::Note(u"about to change "_qs + NameOf(feature));
}

void ZAXProbeObserver::Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to)
{
    const QString how = !from.isInTree ? u" came"_qs : to.isInTree ? u" moved"_qs : u" went"_qs;
    ZAXProbeJournal::Note((NameOf(feature) + how).trimmed());
}

void ZAXProbeObserver::Destroyed(ZAXFeatObject* feature)
{
    ZAXProbeJournal::Note(QString::number(feature->GetId()) + u" destroyed"_qs);
}

ZAXProbeRegistration::ZAXProbeRegistration()
{
    std::ranges::for_each(types, &ZAXGeoContainer::RegisterType);
}

ZAXProbeRegistration::~ZAXProbeRegistration()
{
    std::ranges::for_each(types, &ZAXGeoContainer::UnregisterType);
}

ZAXProbePart* AddPart(ZAXFeatObject* parent, const char* name)
{
    auto* const part = new ZAXProbePart(parent);
    part->SetName(QString::fromUtf8(name));
    part->Initialize();
    return part;
}

ZAXProbePart* AddPart(ZAXFeatContainer& container, const char* name)
{
    auto* const part = new ZAXProbePart(&container);
    part->SetName(QString::fromUtf8(name));
    part->Initialize();
    return part;
}

QString MessageOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const ZAXSysException& exception) {
        return exception.GetMessage();
    }
    return QStringLiteral("nothing was thrown");
}
