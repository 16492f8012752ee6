#pragma once

#include <QList>
#include <QString>
#include <QUndoCommand>

#include "segmentrange.h"

namespace kesu::toolvok {

class VokGUI;
class WaveData;

// Every change to a document is one of these commands on the tool's undo
// stack. They find their wave again by the name it had when they were built,
// so a wave that was replaced by a copy in between is still found; a wave that
// is gone is skipped.

class AddWaveCommand : public QUndoCommand
{
public:
    AddWaveCommand(WaveData* wave, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~AddWaveCommand() override;
    void undo() override;
    void redo() override;

private:
    WaveData* wave_;
    VokGUI* gui_;
};

class DelWaveCommand : public QUndoCommand
{
public:
    DelWaveCommand(const QList<WaveData*>& waves, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~DelWaveCommand() override;
    void undo() override;
    void redo() override;

private:
    QList<WaveData*> snapshots_;
    QList<int> positions_;
    VokGUI* gui_;
};

class ShowWaveCommand : public QUndoCommand
{
public:
    ShowWaveCommand(const QList<WaveData*>& waves, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~ShowWaveCommand() override = default;
    void undo() override;
    void redo() override;

private:
    QList<QString> names_;
    VokGUI* gui_;
};

class HideWaveCommand : public QUndoCommand
{
public:
    HideWaveCommand(WaveData* wave, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~HideWaveCommand() override = default;
    void undo() override;
    void redo() override;

private:
    QString name_;
    VokGUI* gui_;
};

class ForeverCommand : public QUndoCommand
{
public:
    ForeverCommand(WaveData* wave, int foreverIndex, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~ForeverCommand() override;
    void undo() override;
    void redo() override;

private:
    QString name_;
    qint32 newIndex_;
    qint32 oldIndex_;
    VokGUI* gui_;
    WaveData* snapshot_;
};

class EditPatternCommand : public QUndoCommand
{
public:
    // before: a copy of the wave before the edit; after: the wave as the
    // edit left it. Only the range that differs is kept.
    EditPatternCommand(WaveData* after, WaveData* before, VokGUI* gui, QUndoCommand* parent = nullptr);
    // wave: the live wave, already edited; change: what the edit did to it.
    EditPatternCommand(WaveData* wave, SegmentChange change, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~EditPatternCommand() override = default;
    void undo() override;
    void redo() override;

protected:
    // Puts the live wave into the state before or after the edit and
    // refreshes the views; the properties view only when asked.
    void restore(bool toAfter, bool reloadProperties);

    QString name_;
    SegmentChange change_;
    VokGUI* gui_;
    // The first redo, from the push, finds the wave already edited.
    bool pending_ = true;
};

// A cut leaves the Waveform Properties view alone: the cutting code reloads it
// itself.
class CutPatternCommand : public EditPatternCommand
{
public:
    using EditPatternCommand::EditPatternCommand;
    ~CutPatternCommand() override = default;
    void undo() override;
    void redo() override;
};

class NodeParaCommand : public QUndoCommand
{
public:
    NodeParaCommand(WaveData* wave, int oldPolarity, int oldOffset, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~NodeParaCommand() override = default;
    void undo() override;
    void redo() override;

private:
    void apply(qint32 polarity, qint32 offset);

    QString name_;
    qint32 oldPolarity_;
    qint32 oldOffset_;
    qint32 newPolarity_;
    qint32 newOffset_;
    VokGUI* gui_;
};

class TimeUnitCommand : public QUndoCommand
{
public:
    TimeUnitCommand(int unit, int precision, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~TimeUnitCommand() override = default;
    void undo() override;
    void redo() override;

private:
    void apply(qint32 unit, qint32 precision);

    qint32 oldUnit_;
    qint32 oldPrecision_;
    qint32 newUnit_;
    qint32 newPrecision_;
    VokGUI* gui_;
};

// The imported waves stay with the importer; the document gets copies, so the
// command can be redone after an undo.
class ImportWaveCommand : public QUndoCommand
{
public:
    ImportWaveCommand(const QList<WaveData*>& waves, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~ImportWaveCommand() override = default;
    void undo() override;
    void redo() override;

private:
    QList<WaveData*> waves_;
    VokGUI* gui_;
};

class moveWaveCommand : public QUndoCommand
{
public:
    moveWaveCommand(WaveData* wave, int from, int to, VokGUI* gui, QUndoCommand* parent = nullptr);
    ~moveWaveCommand() override = default;
    void undo() override;
    void redo() override;

private:
    WaveData* wave() const;

    WaveData* wave_;
    qint32 from_;
    qint32 to_;
    VokGUI* gui_;
    QString name_;
    // Where the wave stands in the document before and after the move.
    int documentFrom_ = -1;
    int documentTo_ = -1;
};

} // namespace kesu::toolvok
