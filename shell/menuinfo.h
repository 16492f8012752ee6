#pragma once

namespace kesu::toolvok {

// One row of the tool's action table. The tip is the tool tip and the status
// tip, the same words twice.
struct vok_MenuInfo {
    int id;
    const char* text;
    const char* tip;
    const char* icon;       // resource path, or empty for none
    const char* shortcut;   // empty for none
};

class CResource
{
public:
    static const vok_MenuInfo m_MenuInfo[];
    static int getSize();
};

} // namespace kesu::toolvok
