#pragma once

// A tool window with a document opened from a file, and the text saving it writes.
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"

#include "toolfixture.h"

#include <QAction>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace edittest {

using namespace kesu::toolvok;

inline const QByteArray kHeader = "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 0;\n"
                                  "%DECIMALS = 0;\n%ENDTIME = 400;\n";

// The writer's layout: header plus one line per wave.
inline QByteArray wdl(const QList<QByteArray>& waves)
{
    return kHeader + (waves.isEmpty() ? QByteArray() : waves.join('\n') + '\n');
}

class Tool
{
public:
    explicit Tool(const QByteArray& text)
    {
        const QString path = m_dir.filePath(QStringLiteral("doc.wdl"));
        if (!toolfixture::writeFile(path, text))
            qWarning("could not write %s", qPrintable(path));
        gui = std::make_unique<VokGUI>(nullptr, QStringList{path}, m_project, true);
        gui->initialize();
    }

    VokGUI* operator->() const { return gui.get(); }
    VokGUI& operator*() const { return *gui; }

    QByteArray saved() const { return toolfixture::savedText(*gui); }

    WaveData* wave(const QString& name) const { return gui->document()->findWavebyName(name); }

    QStringList docOrder() const
    {
        QStringList names;
        for (const WaveData* w : gui->document()->waves)
            names << w->name;
        return names;
    }

    // The name list's rows by wave name ("-" for element rows).
    QStringList listRows() const
    {
        QStringList names;
        for (int row = 0; row < gui->waveList()->itemModel()->rowCount(); ++row) {
            const WaveData* w = gui->waveList()->waveAt(row);
            names << (w ? w->name : QStringLiteral("-"));
        }
        return names;
    }

    // A drag across pulses in edit mode: the wave becomes active and current.
    void select(const QString& name, const QList<int>& indexes) const
    {
        WaveData* w = wave(name);
        gui->setActiveWave(w);
        const int row = gui->waveList()->rowOf(w);
        gui->waveList()->setCurrentIndex(gui->waveList()->itemModel()->index(row, 0));
        gui->selection().clear();
        for (int i : indexes)
            gui->selection().append(w->patterns.at(i));
        w->selected = true;
    }

    void editMode(bool on) const { gui->action(VokGUI::ActEditMode)->setChecked(on); }

    QTemporaryDir m_dir;
    QString m_project;
    std::unique_ptr<VokGUI> gui;
};

// The arguments of every emission of a one-bool signal.
inline QList<bool> emitted(const QSignalSpy& spy)
{
    QList<bool> values;
    for (const QList<QVariant>& args : spy)
        values << args.at(0).toBool();
    return values;
}

} // namespace edittest
