#pragma once

#include "progress.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QString>

class QProgressDialog;
class QWidget;

namespace kesu::toolvok {

// Progress with Cancel for work that may take long: the dialog comes up only
// once the work has run for half a second, so quick work shows nothing.
// One gate for one piece of work; the model's loops take callback().
class ProgressGate
{
public:
    // How long work runs before the dialog appears.
    static int delayMs;

    ProgressGate(QWidget* parent, const QString& label);
    ~ProgressGate();
    ProgressGate(const ProgressGate&) = delete;
    ProgressGate& operator=(const ProgressGate&) = delete;

    Progress callback();
    bool cancelled() const { return cancelled_; }

private:
    bool step(qint64 done, qint64 total);

    QWidget* parent_;
    QString label_;
    QElapsedTimer clock_;
    QPointer<QProgressDialog> dialog_;
    bool cancelled_ = false;
};

} // namespace kesu::toolvok
