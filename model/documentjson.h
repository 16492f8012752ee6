#pragma once

#include <QJsonObject>

namespace kesu::toolvok {

class WaveformData;

// The document as read, for tools and tests that compare documents: the
// header settings and every wave with its segments.
QJsonObject documentToJson(const WaveformData& document);

} // namespace kesu::toolvok
