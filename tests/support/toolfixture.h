#pragma once

// Documents on disk and tool windows opened on them, as the user has them.
// The helpers report failure through their result rather than failing the
// test themselves, so that the caller's QVERIFY stops the test where it stands.
#include "vokgui.h"
#include "waveformdata.h"
#include "wavewriter.h"

#include "files.h"

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

// What saving the shown document would write; a failed save reads as text no
// document can have, so that it never matches an expectation.
inline QByteArray savedText(kesu::toolvok::VokGUI& gui)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!gui.saveData(buffer))
        return QByteArrayLiteral("<save failed>");
    return buffer.data();
}

// An untitled tool window, never shown but laid out once, so that sizes set
// on its views afterwards stay.
inline std::unique_ptr<kesu::toolvok::VokGUI> laidOutTool()
{
    QString project;
    auto gui = std::make_unique<kesu::toolvok::VokGUI>(nullptr, QStringList{}, project, true);
    gui->initialize();
    QImage settle(8, 8, QImage::Format_RGB32);
    gui->render(&settle);
    return gui;
}

// The file opened in a stand-alone tool window, shown at that size and
// exposed; null, with the reason logged, when any of that fails.
inline std::unique_ptr<kesu::toolvok::VokGUI> openShown(const QString& path, QSize size)
{
    QString project;
    auto gui = std::make_unique<kesu::toolvok::VokGUI>(nullptr, QStringList{path}, project, true);
    if (!gui->initialize()) {
        qWarning("the tool did not take %s", qPrintable(path));
        return nullptr;
    }
    gui->resize(size);
    gui->show();
    if (!QTest::qWaitForWindowExposed(gui.get())) {
        qWarning("the tool window was never exposed");
        return nullptr;
    }
    return gui;
}

} // namespace toolfixture
