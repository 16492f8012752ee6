#pragma once

#include "basenavigator.h"

namespace kesu::toolvok {

class VokGUI;

// Carries out the host navigator's zoom requests on the tool's views.
class VokNavigator : public BaseNavigator
{
    Q_OBJECT
public:
    explicit VokNavigator(VokGUI* owner);

    void updateView(QObject* source, Navigating kind, int steps) override;
    // area is in the ruler's pixels: the time axis starts at its originX.
    void updateView(QObject* source, Navigating kind, QRectF area) override;

protected:
    QRectF navigatorArea(QObject* source, const QRectF& band) const override;

private:
    VokGUI* owner_;
};

} // namespace kesu::toolvok
