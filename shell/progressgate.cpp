#include "progressgate.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace kesu::toolvok {

int ProgressGate::delayMs = 500;

ProgressGate::ProgressGate(QWidget* parent, const QString& label) : parent_(parent), label_(label)
{
    clock_.start();
}

ProgressGate::~ProgressGate()
{
    delete dialog_;
}

Progress ProgressGate::callback()
{
    return [this](qint64 done, qint64 total) { return step(done, total); };
}

bool ProgressGate::step(qint64 done, qint64 total)
{
    if (cancelled_)
        return false;
    if (!dialog_ && clock_.elapsed() < delayMs)
        return true;
    if (!dialog_) {
        dialog_ = new QProgressDialog(label_, QCoreApplication::translate("ProgressGate", "Cancel"), 0, 0, parent_);
        dialog_->setObjectName(QStringLiteral("progressGate"));
        dialog_->setWindowModality(Qt::WindowModal);
        dialog_->setMinimumDuration(0);
        dialog_->setAutoReset(false);
        dialog_->setAutoClose(false);
        dialog_->show();
    }
    // Without a total the bar only shows that the work goes on.
    const int permille = total > 0 ? int(qBound(qint64(0), done * 1000 / total, qint64(1000))) : 0;
    dialog_->setMaximum(total > 0 ? 1000 : 0);
    dialog_->setValue(permille);
    QCoreApplication::processEvents();
    cancelled_ = dialog_ && dialog_->wasCanceled();
    return !cancelled_;
}

} // namespace kesu::toolvok
