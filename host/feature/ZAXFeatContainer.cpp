#include "ZAXFeatContainer.h"

#include "ZAXFeatChangeObserver.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatFolder.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXFeatRoot.h"

#include <QLoggingCategory>
#include <QPointer>

namespace {

Q_LOGGING_CATEGORY(logFeature, "zax.feature")

/// The nearest feature from \a parent upwards that is no plain folder: what a class is constructed under.
ZAXFeatObject* LookThroughFolders(ZAXFeatObject* parent)
{
    while (parent && ZAXFeatObjectPrivate::IsPlainFolder(parent->metaObject()) && parent->GetParent())
        parent = parent->GetParent();
    return parent;
}

std::unique_ptr<ZAXFeatObject> Construct(const QMetaObject* type, ZAXFeatContainer* container, ZAXFeatObject* parent)
{
    QObject* made = parent ? nullptr : type->newInstance(Q_ARG(ZAXFeatContainer*, container));
    if (!made)
        made = type->newInstance(Q_ARG(ZAXFeatObject*, parent));
    return std::unique_ptr<ZAXFeatObject>(static_cast<ZAXFeatObject*>(made));
}

} // namespace

void ZAXFeatContainerPrivate::DestroyAll()
{
    while (!roots.isEmpty())
        delete roots.constLast();
    while (!removed.isEmpty())
        delete removed.constLast();
}

std::shared_ptr<ZAXFeatClass> ZAXFeatContainerPrivate::FindClass(const QMetaObject* type)
{
    auto& known = m_classes[type];
    auto found = known.lock();
    if (!found)
        known = found = std::make_shared<ZAXFeatClass>(type);
    return found;
}

ZAXFeatStep::ZAXFeatStep(ZAXFeatContainer* container)
    : m_container(container ? &ZAXFeatContainerPrivate::Get(*container) : nullptr),
      m_observer(m_container ? m_container->observer : nullptr)
{
    if (m_container)
        ++m_container->openOperations;
    if (m_observer)
        m_observer->BeginStep();
}

ZAXFeatStep::~ZAXFeatStep()
{
    if (m_observer)
        m_observer->EndStep();
    if (m_container)
        --m_container->openOperations;
}

ZAXFeatContainer::ZAXFeatContainer(QObject* parent)
    : ZAXGeoContainer(parent), d_ptr(std::make_unique<ZAXFeatContainerPrivate>())
{
}

ZAXFeatContainer::~ZAXFeatContainer()
{
    d_ptr->observer = nullptr;
    d_ptr->DestroyAll();
}

ZAXFeatObject* ZAXFeatContainer::CreateInstance(const QByteArray& className, ZAXFeatObject* parent)
{
    const QMetaObject* const type = FindType(className);
    if (!type || !type->inherits(&ZAXFeatObject::staticMetaObject)) {
        qCWarning(logFeature, "\"%s\" is not a registered feature class.", className.constData());
        return nullptr;
    }
    if (parent && parent->GetContainer() != this) {
        qCWarning(logFeature, "A %s cannot be created under a parent of another document.", className.constData());
        return nullptr;
    }
    if (parent && ZAXFeatObjectPrivate::Get(*parent).isAside) {
        qCWarning(logFeature, "A %s cannot be created under a parent that was removed.", className.constData());
        return nullptr;
    }
    if (parent ? !parent->IsChildAllowed(type) : !ZAXFeatObjectPrivate::MayStandAtTop(type)) {
        qCWarning(logFeature, "A %s does not allow a %s as a child.",
                  parent ? parent->metaObject()->className() : "document", className.constData());
        return nullptr;
    }
    // Outlives what is made: a feature that fails to be initialised takes its children along, and no step is left.
    const ZAXFeatStep step(this);
    auto made = Construct(type, this, LookThroughFolders(parent));
    // A constructor that was given no parent may not know of the document.
    if (!made || made->GetContainer() != this) {
        qCWarning(logFeature, "The class %s has no constructor to create it by.", className.constData());
        return nullptr;
    }
    auto& d = ZAXFeatObjectPrivate::Get(*made);
    if (made->GetParent() != parent)
        d.AttachTo(parent, -1);
    d.isAnnouncementDeferred = true;
    try {
        made->Initialize();
    } catch (...) {
        d.ReleasePointers();
        throw;
    }
    d.isAnnouncementDeferred = false;
    const QPointer<ZAXFeatObject> feature = made.release();
    d.Announce();
    return feature && !ZAXFeatObjectPrivate::Get(*feature).isAside ? feature.data() : nullptr;
}

QList<ZAXFeatObject*> ZAXFeatContainer::GetRoots() const
{
    return d_ptr->roots;
}
