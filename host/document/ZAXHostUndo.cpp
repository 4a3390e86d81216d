#include "ZAXHostUndo.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndoStep.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QScopeGuard>
#include <QUndoCommand>
#include <QUndoStack>

#include <memory>

class ZAXHostUndoPrivate;

namespace {

Q_LOGGING_CATEGORY(logUndo, "zax.host.undo")

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostUndo", text);
}

class Command : public QUndoCommand
{
public:
    explicit Command(ZAXHostUndoPrivate* undo) : m_undo(undo) {}

    void undo() override { Go(ZAXHostUndoStep::Back); }
    void redo() override;

protected:
    /// Does the step, or leaves everything as it is; then it gives the message.
    virtual QString Restore(ZAXHostUndoStep::Direction direction) = 0;
    ZAXHostUndoPrivate& Undo() const { return *m_undo; }

private:
    void Go(ZAXHostUndoStep::Direction direction);

    ZAXHostUndoPrivate* m_undo;
};

/// Any step.
class StepCommand : public Command
{
public:
    StepCommand(ZAXHostUndoPrivate* undo, std::unique_ptr<ZAXHostUndoStep> step)
        : Command(undo), m_step(std::move(step))
    {
    }
    ~StepCommand() override;

private:
    QString Restore(ZAXHostUndoStep::Direction direction) override;

    std::unique_ptr<ZAXHostUndoStep> m_step;
    ZAXHostUndoStep::Direction m_lastDirection = ZAXHostUndoStep::Forth;
};

/// The most frequent step, and no more than it needs: the value of one property.
class ValueCommand : public Command
{
public:
    /// With the value that \a property of \a feature has before the change.
    ValueCommand(ZAXHostUndoPrivate* undo, const ZAXFeatObject& feature, const ZAXFeatValuePropertyBase& property)
        : Command(undo), m_id(feature.GetId()), m_value(ZAXHostUndoStep::ValueOf(property))
    {
    }

    quint64 GetId() const { return m_id; }
    ZAXHostUndoStep::Value& GetValue() { return m_value; }

    /// Takes over what \a feature has now; false when its state is as before.
    bool Close(const ZAXFeatObject& feature)
    {
        return ZAXHostUndoStep::CloseValue(m_value, feature) && ZAXHostUndoStep::IsSaved(m_value, feature);
    }

private:
    QString Restore(ZAXHostUndoStep::Direction direction) override;

    quint64 m_id;
    ZAXHostUndoStep::Value m_value;
};

} // namespace

class ZAXHostUndoPrivate : public ZAXFeatChangeObserver
{
public:
    ZAXHostUndoPrivate()
    {
        QObject::connect(&stack, &QUndoStack::indexChanged, &stack, [this] {
            ReturnToFailure();
            FreeDiscarded();
        });
    }

    void BeginStep() override { ++depth; }
    void EndStep() override;
    void AboutToChange(ZAXFeatObject* feature, ZAXFeatValuePropertyBase* only) override;
    void Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to) override;
    void Destroyed(ZAXFeatObject* feature) override;
    bool KeepsRemoved() const override { return true; }

    bool IsBusy() const
    {
        if (!container)
            return false;
        return isInTransaction || depth > 0 || isPushing || isRestoring ||
               ZAXFeatContainerPrivate::Get(*container).signalDepth > 0;
    }
    ZAXHostResult Refusal() const { return ZAXHostResult::Failed(Tr("A change of the document is still under way.")); }
    ZAXHostResult Run(void (QUndoStack::*operation)());

    /// Ends \a recording and gives its step.
    ZAXHostUndoStep Take(ZAXHostUndoStep& recording);
    /// Puts what was recorded on the stack as one step, called \a text or what it does.
    void PushRecorded(const QString& text);
    /// The same where it is what \a command is about.
    void PushValue(std::unique_ptr<ValueCommand> command, const QString& text);
    void Push(std::unique_ptr<Command> command, const QString& text);
    /// What is described, in the user's words.
    const QString& NameOf(ZAXHostUndoStep::Description&& description);
    /// Takes what was recorded back. Fails when a feature does not take its former state.
    ZAXHostResult RollBackRecorded();
    /// Does \a recordedStep in \a direction, or leaves everything as it is; then it gives the message.
    QString Restore(const ZAXHostUndoStep& recordedStep, ZAXHostUndoStep::Direction direction);
    /// Takes back what slots changed while \a step was done in \a direction, and the step itself unless it is to
    /// \a stay done.
    void Settle(const ZAXHostUndoStep& step, ZAXHostUndoStep::Direction direction, bool stay);
    /// Notes that \a command could not be done in \a direction. The stack takes it for done nevertheless.
    void Fail(const QUndoCommand* command, ZAXHostUndoStep::Direction direction, const QString& message);
    /// Has the stack stand where it stood when a command failed.
    void ReturnToFailure();
    /// The features that a step kept are no longer needed: they go as soon as the stack is in order.
    void Discard(const QList<quint64>& ids) { discarded += ids; }
    void FreeDiscarded();

    ZAXFeatContainer* container = nullptr;
    /// What happened in the step or the transaction that is under way.
    ZAXHostUndoStep& Recorded();

    /// What slots changed while a state is restored.
    ZAXHostUndoStep foreign;
    /// What of that was taken back already: these states are right as they were before.
    ZAXHostUndoStep takenBack;
    const ZAXHostUndoStep* restored = nullptr;
    /// All placings since the restoring began, the slots' among them.
    QList<ZAXHostUndoStep::Placing> done;
    /// The command that could not be done; null for none. Those behind it are not tried then.
    const QUndoCommand* failed = nullptr;
    ZAXHostUndoStep::Direction failedDirection = ZAXHostUndoStep::Back;
    QString failure;
    QList<quint64> discarded;
    /// What is under way; null when there is nothing yet, or nothing but the change of one value.
    std::unique_ptr<ZAXHostUndoStep> recording;
    /// The command that will do that; null when there is nothing yet, or more.
    std::unique_ptr<ValueCommand> changing;
    ZAXHostUndoStep::Description lastDescription;
    QString lastName;
    int depth = 0;
    bool isInTransaction = false;
    bool isRestoring = false;
    bool isPushing = false;

    QUndoStack stack;
};

namespace {

/// Held while states of \a step are restored.
class Restoring
{
public:
    Restoring(ZAXHostUndoPrivate& undo, const ZAXHostUndoStep& step) : m_undo(undo)
    {
        m_undo.restored = &step;
        Set(true);
    }
    ~Restoring()
    {
        Set(false);
        m_undo.restored = nullptr;
        m_undo.foreign = {};
        m_undo.takenBack = {};
        m_undo.done.clear();
    }
    Restoring(const Restoring&) = delete;
    Restoring& operator=(const Restoring&) = delete;

private:
    void Set(bool isRestoring)
    {
        m_undo.isRestoring = isRestoring;
        ZAXFeatContainerPrivate::Get(*m_undo.container).isRestoring = isRestoring;
        ZAXGeoContainerPrivate::Get(*m_undo.container).findsAside = isRestoring;
    }

    ZAXHostUndoPrivate& m_undo;
};

} // namespace

StepCommand::~StepCommand()
{
    Undo().Discard(m_step->Keeps(m_lastDirection));
}

QString StepCommand::Restore(ZAXHostUndoStep::Direction direction)
{
    QString message = Undo().Restore(*m_step, direction);
    if (message.isEmpty())
        m_lastDirection = direction;
    return message;
}

QString ValueCommand::Restore(ZAXHostUndoStep::Direction direction)
{
    ZAXHostUndoStep step;
    step.states.append({m_id, {}, {}, {m_value}});
    return Undo().Restore(step, direction);
}

void Command::redo()
{
    // Pushing a command calls this too, when everything is done already.
    if (!m_undo->isPushing)
        Go(ZAXHostUndoStep::Forth);
}

void Command::Go(ZAXHostUndoStep::Direction direction)
{
    if (m_undo->failed)
        return;
    if (m_undo->IsBusy())
        return m_undo->Fail(this, direction, m_undo->Refusal().GetMessage());
    const QString message = Restore(direction);
    if (!message.isEmpty())
        m_undo->Fail(this, direction, message);
}

void ZAXHostUndoPrivate::EndStep()
{
    if (--depth > 0 || isInTransaction || isRestoring)
        return;
    // The end of a change may come in the course of an exception.
    try {
        PushRecorded(QString());
    } catch (const std::exception& exception) {
        qCWarning(logUndo, "Whoever follows the steps has thrown an exception: %s", exception.what());
    }
}

void ZAXHostUndoPrivate::AboutToChange(ZAXFeatObject* feature, ZAXFeatValuePropertyBase* only)
{
    // What is not announced yet is not there yet for undo: it comes with all that it has then.
    if (!ZAXFeatObjectPrivate::Get(*feature).isAnnounced)
        return;
    if (!isRestoring && only && !recording && !changing && ZAXHostUndoStep::IsFound(*only)) {
        changing = std::make_unique<ValueCommand>(this, *feature, *only);
        return;
    }
    if (!isRestoring)
        Recorded().AddState(feature, only);
    else if (!restored->HasState(feature->GetId()) && !takenBack.HasState(feature->GetId()))
        foreign.AddState(feature);
}

void ZAXHostUndoPrivate::Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to)
{
    (isRestoring ? foreign : Recorded()).AddPlacing(feature, from, to);
    if (isRestoring)
        done.append({feature->GetId(), from, to});
}

void ZAXHostUndoPrivate::Destroyed(ZAXFeatObject* feature)
{
    const quint64 id = feature->GetId();
    const bool wasThereBefore =
        ZAXFeatObjectPrivate::Get(*feature).isAnnounced && !Recorded().CameInStep(id) && !foreign.CameInStep(id);
    Recorded().Forget(id);
    foreign.Forget(id);
    takenBack.Forget(id);
    // No step tells of it, and none brings it back.
    if (wasThereBefore)
        stack.resetClean();
}

ZAXHostUndoStep ZAXHostUndoPrivate::Take(ZAXHostUndoStep& recording)
{
    ZAXHostUndoStep step = std::exchange(recording, {});
    Discard(step.Close(*container));
    return step;
}

ZAXHostUndoStep& ZAXHostUndoPrivate::Recorded()
{
    if (!recording)
        recording = std::make_unique<ZAXHostUndoStep>();
    if (const auto only = std::exchange(changing, nullptr))
        recording->AddValue(only->GetId(), std::move(only->GetValue()));
    return *recording;
}

void ZAXHostUndoPrivate::PushRecorded(const QString& text)
{
    if (changing)
        return PushValue(std::exchange(changing, nullptr), text);
    auto step = std::exchange(recording, nullptr);
    if (!step)
        return FreeDiscarded();
    Discard(step->Close(*container));
    if (!step->IsComplete())
        stack.resetClean();
    if (!step->IsEmpty()) {
        const QString& name = text.isEmpty() ? NameOf(step->Describe(*container)) : text;
        Push(std::make_unique<StepCommand>(this, std::move(step)), name);
    }
    FreeDiscarded();
}

void ZAXHostUndoPrivate::PushValue(std::unique_ptr<ValueCommand> command, const QString& text)
{
    const ZAXFeatObject* const feature = ZAXHostUndoStep::Find(*container, command->GetId());
    bool isChanged = false;
    try {
        isChanged = feature && command->Close(*feature);
    } catch (const std::exception& exception) {
        qCWarning(logUndo, "A change cannot be taken back: %s", exception.what());
        stack.resetClean();
    }
    if (isChanged) {
        const QString& name = text.isEmpty() ? NameOf(ZAXHostUndoStep::DescribeChange(feature)) : text;
        Push(std::move(command), name);
    }
    FreeDiscarded();
}

void ZAXHostUndoPrivate::Push(std::unique_ptr<Command> command, const QString& text)
{
    command->setText(text);
    const auto pushed = qScopeGuard([this, wasPushing = std::exchange(isPushing, true)] {
        isPushing = wasPushing;
        FreeDiscarded();
    });
    stack.push(command.release());
}

const QString& ZAXHostUndoPrivate::NameOf(ZAXHostUndoStep::Description&& description)
{
    // One change after the other is of the same feature: such steps share their name.
    if (description != lastDescription) {
        lastDescription = std::move(description);
        lastName = lastDescription.text.arg(lastDescription.label);
    }
    return lastName;
}

ZAXHostResult ZAXHostUndoPrivate::RollBackRecorded()
{
    QString failure;
    const ZAXHostUndoStep step = Take(Recorded()).Whole(*container, ZAXHostUndoStep::Back, failure);
    bool isRestored = step.IsComplete() && failure.isEmpty();
    if (!step.IsEmpty()) {
        const Restoring restoring(*this, step);
        done = step.placings;
        Settle(step, ZAXHostUndoStep::Forth, false);
        isRestored = isRestored && step.IsRestored(*container, ZAXHostUndoStep::Back);
        Discard(step.Keeps(ZAXHostUndoStep::Back));
    }
    FreeDiscarded();
    if (isRestored)
        return ZAXHostResult::Done();
    // What is there now is neither what was saved nor what a step leads to.
    stack.resetClean();
    return ZAXHostResult::Failed(Tr("An object of the document does not take its former state."));
}

void ZAXHostUndoPrivate::Settle(const ZAXHostUndoStep& step, ZAXHostUndoStep::Direction direction, bool stay)
{
    const auto statesOf = stay ? direction : ZAXHostUndoStep::Opposite(direction);
    // What is taken back is told about as well, which may set slots off anew. They do not go on for ever.
    constexpr int loudRounds = 8;
    bool isInPlace = stay;
    for (int round = 0; round <= loudRounds; ++round) {
        const auto voice = round < loudRounds ? ZAXHostUndoStep::Aloud : ZAXHostUndoStep::Silently;
        const ZAXHostUndoStep slotChanges = Take(foreign);
        takenBack.AddStates(slotChanges);
        // Placings count among siblings, so they are reversed in the order in which all were done.
        if (!isInPlace || !slotChanges.placings.isEmpty())
            step.Settle(*container, direction, stay, voice, done);
        isInPlace = true;
        Discard(slotChanges.Keeps(ZAXHostUndoStep::Back));
        const bool isStepSettled = !step.SettleStates(*container, statesOf, voice);
        const bool areOthersSettled = !takenBack.SettleStates(*container, ZAXHostUndoStep::Back, voice);
        if (foreign.IsEmpty() && isStepSettled && areOthersSettled)
            return;
    }
}

QString ZAXHostUndoPrivate::Restore(const ZAXHostUndoStep& recordedStep, ZAXHostUndoStep::Direction direction)
{
    QString failure;
    const ZAXHostUndoStep step = recordedStep.Whole(*container, direction, failure);
    if (!failure.isEmpty())
        return failure;
    const Restoring restoring(*this, step);
    try {
        step.Apply(*container, direction, done);
    } catch (const std::exception& exception) {
        const QString message = QString::fromUtf8(exception.what());
        Settle(step, direction, false);
        if (!step.IsRestored(*container, ZAXHostUndoStep::Opposite(direction)))
            stack.resetClean();
        return message.isEmpty() ? Tr("A change cannot be taken back.") : message;
    }
    Settle(step, direction, true);
    return {};
}

void ZAXHostUndoPrivate::Fail(const QUndoCommand* command, ZAXHostUndoStep::Direction direction, const QString& message)
{
    qCWarning(logUndo, "%s stays: %s", qUtf8Printable(command->text()), qUtf8Printable(message));
    failed = command;
    failedDirection = direction;
    // A slot's attempt is not what the one under way comes to.
    if (!isRestoring)
        failure = message;
}

void ZAXHostUndoPrivate::ReturnToFailure()
{
    if (!failed)
        return;
    int index = 0;
    while (stack.command(index) != failed)
        ++index;
    // Neither this command nor those behind it are done or taken back on the way.
    stack.setIndex(failedDirection == ZAXHostUndoStep::Back ? index + 1 : index);
    failed = nullptr;
}

void ZAXHostUndoPrivate::FreeDiscarded()
{
    if (discarded.isEmpty() || isPushing || isRestoring || !container)
        return;
    const auto ids = std::exchange(discarded, {});
    for (const quint64 id : ids) {
        ZAXFeatObject* const feature = ZAXHostUndoStep::Find(*container, id);
        if (!feature || !ZAXFeatObjectPrivate::Get(*feature).isAside)
            continue;
        if (ZAXFeatObjectPrivate::Get(*feature).IsInUse())
            ZAXFeatObjectPrivate::Get(*feature).DiscardLater();
        else
            ZAXFeatObjectPrivate::Get(*feature).Discard();
    }
}

ZAXHostResult ZAXHostUndoPrivate::Run(void (QUndoStack::*operation)())
{
    if (IsBusy())
        return Refusal();
    failure.clear();
    (stack.*operation)();
    FreeDiscarded();
    return failure.isEmpty() ? ZAXHostResult::Done() : ZAXHostResult::Failed(std::exchange(failure, {}));
}

ZAXHostUndo::ZAXHostUndo(ZAXFeatContainer* container) : d_ptr(std::make_unique<ZAXHostUndoPrivate>())
{
    SetContainer(container);
}

ZAXHostUndo::~ZAXHostUndo()
{
    SetContainer(nullptr);
}

void ZAXHostUndo::SetContainer(ZAXFeatContainer* container)
{
    if (d_ptr->container) {
        d_ptr->stack.clear();
        d_ptr->stack.setClean();
        d_ptr->FreeDiscarded();
        ZAXFeatContainerPrivate::Get(*d_ptr->container).observer = nullptr;
    }
    d_ptr->container = container;
    d_ptr->recording = nullptr;
    d_ptr->changing = nullptr;
    d_ptr->discarded.clear();
    if (container)
        ZAXFeatContainerPrivate::Get(*container).observer = d_ptr.get();
}

QUndoStack* ZAXHostUndo::GetStack() const
{
    return &d_ptr->stack;
}

bool ZAXHostUndo::IsBusy() const
{
    return d_ptr->IsBusy();
}

ZAXHostResult ZAXHostUndo::Undo()
{
    return d_ptr->Run(&QUndoStack::undo);
}

ZAXHostResult ZAXHostUndo::Redo()
{
    return d_ptr->Run(&QUndoStack::redo);
}

ZAXHostResult ZAXHostUndo::Clear()
{
    const bool wasClean = d_ptr->stack.isClean();
    const auto result = d_ptr->Run(&QUndoStack::clear);
    if (result && !wasClean)
        d_ptr->stack.resetClean();
    return result;
}

ZAXHostTransaction::ZAXHostTransaction(ZAXHostUndo& undo, const QString& text)
    : m_undo(&undo), m_text(text), m_isOpen(undo.d_ptr->container && !undo.IsBusy())
{
    if (m_isOpen)
        undo.d_ptr->isInTransaction = true;
    else
        m_result = undo.d_ptr->container ? undo.d_ptr->Refusal() : ZAXHostResult::Failed(Tr("There is no document."));
}

ZAXHostTransaction::~ZAXHostTransaction()
{
    if (!m_isOpen)
        return;
    try {
        const auto result = Rollback();
        if (!result)
            qCWarning(logUndo, "A transaction was not rolled back: %s", qUtf8Printable(result.GetMessage()));
        if (m_isOpen)
            GiveUp();
    } catch (const std::exception& exception) {
        qCWarning(logUndo, "A transaction was not rolled back: %s", exception.what());
    }
}

void ZAXHostTransaction::GiveUp()
{
    auto& undo = *m_undo->d_ptr;
    undo.isInTransaction = false;
    if (undo.depth == 0)
        undo.PushRecorded(m_text);
}

ZAXHostResult ZAXHostTransaction::Close()
{
    if (!m_isOpen)
        return m_result ? ZAXHostResult::Failed(Tr("The transaction is closed.")) : m_result;
    auto& undo = *m_undo->d_ptr;
    if (undo.depth > 0 || undo.isRestoring || ZAXFeatContainerPrivate::Get(*undo.container).signalDepth > 0)
        return undo.Refusal();
    m_isOpen = false;
    undo.isInTransaction = false;
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostTransaction::Commit()
{
    const auto result = Close();
    if (result)
        m_undo->d_ptr->PushRecorded(m_text);
    return result;
}

ZAXHostResult ZAXHostTransaction::Rollback()
{
    const auto result = Close();
    return result ? m_undo->d_ptr->RollBackRecorded() : result;
}
