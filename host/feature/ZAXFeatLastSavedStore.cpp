#include "ZAXFeatLastSavedStore.h"

#include "ZAXFeatLoading.h"
#include "ZAXSysModules.h"

#include <QHash>

#include <utility>

namespace {

class MemoryStore : public ZAXFeatLastSavedStore
{
public:
    QVariant GetValue(const QByteArray& className, const QByteArray& property) const override
    {
        return m_values.value({className, property});
    }

    void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) override
    {
        // One value after the other is often of the same property, whose names then are the very same ones.
        if (value.isValid() && m_last && className.isSharedWith(m_lastKey.first) &&
            property.isSharedWith(m_lastKey.second)) {
            *m_last = value;
            return;
        }
        m_last = nullptr;
        m_lastKey = {className, property};
        if (value.isValid())
            m_last = &*m_values.insert(m_lastKey, value);
        else
            m_values.remove(m_lastKey);
    }

    void ReleaseModule(const void* module) override
    {
        m_last = nullptr;
        for (auto& value : m_values) {
            if (IsPartOf(value, module))
                value = Detached(value);
        }
        m_values.removeIf([module](const auto& entry) { return IsPartOf(entry.value(), module); });
    }

private:
    static bool IsPartOf(const QVariant& value, const void* module)
    {
        // A type is also part of the module that its meta-object lies in, whoever instantiated its interface.
        return ZAXSysModules::ModuleOf(value.metaType().iface()) == module ||
               ZAXSysModules::ModuleOf(value.metaType().metaObject()) == module;
    }

    using Key = std::pair<QByteArray, QByteArray>;

    QHash<Key, QVariant> m_values;
    /// The value that was set last, if it is still known where it is, and its key.
    QVariant* m_last = nullptr;
    Key m_lastKey;
};

struct Current
{
    Current()
    {
        ZAXSysModules::OnLeave([this](const void* module) { store->ReleaseModule(module); });
    }

    std::unique_ptr<MemoryStore> memory = std::make_unique<MemoryStore>();
    ZAXFeatLastSavedStore* store = memory.get();
};

Current& Instance()
{
    // Never destroyed: modules may leave after the statics of this library are gone.
    static auto* const current = new Current;
    return *current;
}

} // namespace

ZAXFeatLastSavedStore::ZAXFeatLastSavedStore() = default;

ZAXFeatLastSavedStore::~ZAXFeatLastSavedStore() = default;

void ZAXFeatLastSavedStore::ReleaseModule(const void*) {}

QVariant ZAXFeatLastSavedStore::Detached(const QVariant& value)
{
    if (value.metaType().flags() & QMetaType::IsEnumeration)
        return value.toInt();
    // The description of a type is compiled into each module that uses it, even where the type is Qt's.
    const int type = value.typeId();
    return type < QMetaType::User ? QVariant(QMetaType(type), value.constData()) : value;
}

ZAXFeatLastSavedStore& ZAXFeatLastSavedStore::GetCurrent()
{
    ZAXFeatLoading::Flush();
    return *Instance().store;
}

void ZAXFeatLastSavedStore::SetCurrent(ZAXFeatLastSavedStore* store)
{
    ZAXFeatLoading::Flush();
    auto& current = Instance();
    if (store) {
        current.store = store;
        return;
    }
    current.memory = std::make_unique<MemoryStore>();
    current.store = current.memory.get();
}
