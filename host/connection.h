#pragma once

#include <QString>

namespace kesu::toolvok {

// The host's standard menus, in menu bar order.
enum StdMenu { FileMenu = 0, EditMenu = 1, ViewMenu = 2, ToolsMenu = 3, WindowMenu = 4, HelpMenu = 5 };

// One wiring of a shared action that the host makes and unmakes when the user
// switches between tools. A null end names the tool itself; signatures are in
// Qt's string form with the leading code digit ("2triggered()", "1setEnabled(bool)").
struct Connection {
    QString sender;
    QString signal;
    QString receiver;
    QString slot;
};

} // namespace kesu::toolvok
