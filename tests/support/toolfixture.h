#pragma once

// Documents on disk and tool windows on them; failures come back as results for the caller's QVERIFY.
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "wavewriter.h"

#include "files.h"

#include <QAction>
#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QSize>
#include <QTest>

#include <memory>

namespace toolfixture {

using namespace testfiles;

// The text the writer makes of what the reader makes of a file.
inline QByteArray writerTextOfFile(const QString& path)
{
    kesu::toolvok::WaveformData data;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    data.loadData(file);
    return kesu::toolvok::formatWaveform(data);
}

// What saving the shown document would write; a failed save matches no expectation.
inline QByteArray savedText(kesu::toolvok::VokGUI& gui)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!gui.saveData(buffer))
        return QByteArrayLiteral("<save failed>");
    return buffer.data();
}

// A click in edit mode past the wave's end: a segment of the next value up to there.
inline void appendSegment(kesu::toolvok::VokGUI& gui, const QString& waveName, quint64 upTo)
{
    gui.action(kesu::toolvok::VokGUI::ActEditMode)->setChecked(true);
    const kesu::toolvok::WaveData* wave = gui.document()->findWavebyName(waveName);
    gui.waveList()->setCurrentIndex(gui.waveList()->itemModel()->index(gui.waveList()->rowOf(wave), 0));
    gui.addEditData(upTo);
}

// The file (none: untitled) in a tool window, stand-alone or for a host, never shown.
inline std::unique_ptr<kesu::toolvok::VokGUI> openTool(const QString& path = {}, bool standalone = true)
{
    QString project;
    auto gui = std::make_unique<kesu::toolvok::VokGUI>(nullptr, path.isEmpty() ? QStringList() : QStringList{path},
                                                       project, standalone);
    gui->initialize();
    return gui;
}

// An untitled tool window, never shown but laid out once so later view sizes stay.
inline std::unique_ptr<kesu::toolvok::VokGUI> laidOutTool()
{
    auto gui = openTool();
    QImage settle(8, 8, QImage::Format_RGB32);
    gui->render(&settle);
    return gui;
}

// As openTool, shown and exposed; null if it never was.
inline std::unique_ptr<kesu::toolvok::VokGUI> openShown(const QString& path, QSize size)
{
    auto gui = openTool(path);
    gui->resize(size);
    gui->show();
    return QTest::qWaitForWindowExposed(gui.get()) ? std::move(gui) : nullptr;
}

} // namespace toolfixture
