#pragma once

#include <QtGlobal>

#include <functional>

namespace kesu::toolvok {

// How far a long piece of work has come: done of total (0 when the total is
// not known). Returning false stops the work, which then leaves whatever it
// was working on as it was.
using Progress = std::function<bool(qint64 done, qint64 total)>;

} // namespace kesu::toolvok
