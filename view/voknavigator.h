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
    void updateView(QObject* source, Navigating kind, QRectF area) override;

private:
    VokGUI* owner_;
};

} // namespace kesu::toolvok
