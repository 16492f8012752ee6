#pragma once

#include <QObject>

#include <functional>

class QMimeData;

namespace kesu::toolvok {

// What the desktop does to a window: a waveform document dragged onto it and
// dropped opens through `open`; a new system palette (light to dark and back)
// calls `paletteChanged`. It filters the window's and the application's events.
class DesktopEvents : public QObject
{
public:
    DesktopEvents(QWidget* window, std::function<void(const QString&)> open,
                  std::function<void()> paletteChanged);

    // The first local .wdl file the drag carries, or empty.
    static QString documentIn(const QMimeData* data);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* window_;
    std::function<void(const QString&)> open_;
    std::function<void()> paletteChanged_;
};

} // namespace kesu::toolvok
