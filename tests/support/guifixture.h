#pragma once

// Tool windows on documents written to a file, driven with the mouse; pictures checked pixel by pixel; data tables.
#include "rulerview.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"

#include "datatable.h"
#include "sandboxedtestmain.h"
#include "toolfixture.h"

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

#include <memory>
#include <tuple>
#include <vector>

namespace guitest {

using namespace kesu::toolvok;

inline const QByteArray kHeader = "%MASTERCLOCKMULT = 1;\n%SMALLESTUNIT = 9;\n%AUTOASSIGN = 0;\n"
                                  "%DECIMALS = 0;\n%ENDTIME = 400;\n";

// The writer's layout: header plus one line per wave.
inline QByteArray wdl(const QList<QByteArray>& waves)
{
    return kHeader + (waves.isEmpty() ? QByteArray() : waves.join('\n') + '\n');
}

// The y of the middle of a row, and the x of a time at one unit per step.
constexpr int rowY(int row) { return row * Viewport::RowHeight + Viewport::RowHeight / 2; }
constexpr int timeX(double t) { return int(t * Viewport::PixelsPerStep); }

// The view from `start` on, `step` units a pixel step.
inline void setView(VokGUI& gui, quint64 start, quint64 step)
{
    gui.setStartTime(start);
    gui.changeStep(step);
}

inline int count(const QImage& image, const QColor& color, const QRect& area)
{
    int n = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            n += image.pixel(x, y) == color.rgb();
    return n;
}

inline void expectPixels(const QImage& image, std::initializer_list<std::tuple<int, int, QColor>> points)
{
    for (const auto& [x, y, color] : points)
        QVERIFY2(image.pixel(x, y) == color.rgb(), qPrintable(QStringLiteral("pixel %1, %2").arg(x).arg(y)));
}

// Spies on several one-bool signals of the tool window at once.
class Spies
{
public:
    template <typename... Signals>
    explicit Spies(VokGUI* gui, Signals... signals)
    {
        (spies_.push_back(std::make_unique<QSignalSpy>(gui, signals)), ...);
    }
    // The arguments of the emissions since the last look, one list per signal.
    QList<QList<bool>> take()
    {
        QList<QList<bool>> all;
        for (const auto& spy : spies_) {
            all.append(QList<bool>());
            for (const QList<QVariant>& args : std::as_const(*spy))
                all.last() << args.at(0).toBool();
            spy->clear();
        }
        return all;
    }

private:
    std::vector<std::unique_ptr<QSignalSpy>> spies_;
};

// A document written to a file and opened in a tool window.
class Doc
{
    QTemporaryDir dir_;

protected:
    QString path() const { return dir_.filePath(QStringLiteral("doc.wdl")); }
    explicit Doc(const QByteArray& text)
    {
        if (!toolfixture::writeFile(path(), text))
            qWarning("could not write %s", qPrintable(path()));
    }

public:
    VokGUI* operator->() const { return gui.get(); }
    QByteArray saved() const { return toolfixture::savedText(*gui); }
    WaveData* wave(const QString& name) const { return gui->document()->findWavebyName(name); }
    void editMode(bool on) const { gui->action(VokGUI::ActEditMode)->setChecked(on); }
    int steps() const { return gui->undoStack()->count(); }
    QStringList docOrder() const
    {
        QStringList names;
        for (const WaveData* w : gui->document()->waves)
            names << w->name;
        return names;
    }
    QList<Pattern*> segments(const QString& name, const QList<int>& indexes) const
    {
        QList<Pattern*> list;
        for (int i : indexes)
            list << wave(name)->patterns.at(i);
        return list;
    }
    // As a drag selects: the wave active and current, its segments at indexes selected.
    void select(const QString& name, const QList<int>& indexes) const
    {
        WaveData* w = wave(name);
        gui->setActiveWave(w);
        WaveLstView* list = gui->waveList();
        list->setCurrentIndex(list->itemModel()->index(list->rowOf(w), 0));
        gui->selection() = segments(name, indexes);
        w->selected = true;
    }
    // The name list's rows: wave names, and the texts of element rows.
    QStringList listRows() const
    {
        QStringList names;
        const WaveLstView* list = gui->waveList();
        for (int row = 0; row < list->itemModel()->rowCount(); ++row)
            names << (list->waveAt(row) ? list->waveAt(row)->name : list->itemModel()->item(row)->text());
        return names;
    }
    // The rows the document's shown waves take in the drawing, as listRows.
    QStringList drawnRows() const
    {
        QStringList names;
        for (const WaveData* w : gui->document()->waves) {
            if (w->visible)
                names << w->name << (w->isBus && w->expandFlag ? w->elements : QStringList());
        }
        return names;
    }

    std::unique_ptr<VokGUI> gui;
};

// Shown at a fixed size, the wave view at time 0 and one unit per step.
class Window : public Doc
{
public:
    explicit Window(const QByteArray& text, QSize size = QSize(1400, 700)) : Doc(text)
    {
        gui = toolfixture::openShown(path(), size);
        if (!gui || gui->waveView()->width() < 400)
            qFatal("the tool window did not open at its size");
        setView(*gui, 0, 1);
        gui->doListVScrollChanged(0);
    }

    WaveView* view() const { return gui->waveView(); }
    WaveLstView* list() const { return gui->waveList(); }

    // The saved line of one wave.
    QByteArray line(const QString& name) const
    {
        for (const QByteArray& l : saved().split('\n')) {
            if (l.startsWith(name.toUtf8() + " {"))
                return l;
        }
        return {};
    }
    void send(QEvent::Type type, int x, int y, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        if (type == QEvent::MouseButtonPress)
            held |= button;
        else if (type == QEvent::MouseButtonRelease)
            held &= ~Qt::MouseButtons(button);
        const QPointF pos(x, y);
        QMouseEvent event(type, pos, view()->mapToGlobal(pos), type == QEvent::MouseMove ? Qt::NoButton : button,
                          held, modifiers);
        QApplication::sendEvent(view(), &event);
    }
    void press(int x, int y, Qt::KeyboardModifiers m = {}) { send(QEvent::MouseButtonPress, x, y, Qt::LeftButton, m); }
    void move(int x, int y) { send(QEvent::MouseMove, x, y); }
    void release(int x, int y) { send(QEvent::MouseButtonRelease, x, y); }
    void click(int x, int y) { press(x, y), release(x, y); }
    void drag(int fromX, int toX, int y) { press(fromX, y), move(toX, y), release(toX, y); }

    // A double click on a row of the name list (a bus expands or collapses).
    void doubleClickRow(int row) const
    {
        const QPointF pos(20, rowY(row));
        QMouseEvent event(QEvent::MouseButtonDblClick, pos, list()->viewport()->mapToGlobal(pos), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(list()->viewport(), &event);
    }

    Qt::MouseButtons held;
};

// Never shown: for the docks and dialogs, which need no drawn wave view.
class Tool : public Doc
{
public:
    explicit Tool(const QByteArray& text) : Doc(text) { gui = toolfixture::openTool(path()); }
};

} // namespace guitest
