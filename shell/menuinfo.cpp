#include "menuinfo.h"

#include <QtGlobal>

namespace kesu::toolvok {

const vok_MenuInfo CResource::m_MenuInfo[] = {
    {20, QT_TRANSLATE_NOOP("VokGUI", "Export..."), QT_TRANSLATE_NOOP("VokGUI", "Export Waveform to File\nExport Waveform to File"), "", ""},
    {26, QT_TRANSLATE_NOOP("VokGUI", "Import VCD..."), QT_TRANSLATE_NOOP("VokGUI", "Import a Value Change Dump as a New Document\nImport a Value Change Dump as a New Document"), "", ""},
    {37, QT_TRANSLATE_NOOP("VokGUI", "Edit Mode"), QT_TRANSLATE_NOOP("VokGUI", "Switch between Query Mode and Edit Mode\nSwitch between Query Mode and Edit Mode"), ":/images/edit_mode.png", "F2"},
    {38, QT_TRANSLATE_NOOP("VokGUI", "New Wave..."), QT_TRANSLATE_NOOP("VokGUI", "New Wave\nNew Wave"), ":/images/new_wave.png", ""},
    {39, QT_TRANSLATE_NOOP("VokGUI", "Import Wave..."), QT_TRANSLATE_NOOP("VokGUI", "Import Wave\nImport Wave"), "", ""},
    {40, QT_TRANSLATE_NOOP("VokGUI", "Duplicate Wave"), QT_TRANSLATE_NOOP("VokGUI", "Duplicate Wave\nDuplicate Wave"), "", ""},
    // Two dots, unlike its neighbours: the menu has always read so.
    {41, QT_TRANSLATE_NOOP("VokGUI", "Show Wave.."), QT_TRANSLATE_NOOP("VokGUI", "Show Wave\nShow Wave"), ":/images/show_waves.png", ""},
    {42, QT_TRANSLATE_NOOP("VokGUI", "Hide Wave"), QT_TRANSLATE_NOOP("VokGUI", "Hide Wave\nHide Wave"), ":/images/hide_waves.png", ""},
    {43, QT_TRANSLATE_NOOP("VokGUI", "Remove Wave..."), QT_TRANSLATE_NOOP("VokGUI", "Remove Wave\nRemove Wave"), ":/images/remove_waves.png", ""},
    {45, QT_TRANSLATE_NOOP("VokGUI", "Insert Pattern..."), QT_TRANSLATE_NOOP("VokGUI", "Insert Pattern\nInsert Pattern"), "", ""},
    {48, QT_TRANSLATE_NOOP("VokGUI", "Timing Settings..."), QT_TRANSLATE_NOOP("VokGUI", "Timing Settings\nTiming Settings"), "", ""},
    {65, QT_TRANSLATE_NOOP("VokGUI", "Place Marker"), QT_TRANSLATE_NOOP("VokGUI", "Place Marker\nPlace Marker"), ":/images/place_marker.png", ""},
    {66, QT_TRANSLATE_NOOP("VokGUI", "Hide Marker"), QT_TRANSLATE_NOOP("VokGUI", "Hide Marker\nHide Marker"), ":/images/remove_marker.png", ""},
    {67, QT_TRANSLATE_NOOP("VokGUI", "Next Change"), QT_TRANSLATE_NOOP("VokGUI", "Jump to Next Change\nJump to Next Change"), "", "+"},
    {68, QT_TRANSLATE_NOOP("VokGUI", "Marker"), QT_TRANSLATE_NOOP("VokGUI", "Jump to Marker\nJump to Marker"), "", "-"},
    {69, QT_TRANSLATE_NOOP("VokGUI", "Time..."), QT_TRANSLATE_NOOP("VokGUI", "Jump to Time\nJump to Time"), "", ""},
    {70, QT_TRANSLATE_NOOP("VokGUI", "Time=0"), QT_TRANSLATE_NOOP("VokGUI", "Jump to Time=0\nJump to Time=0"), "", "Home"},
    {71, QT_TRANSLATE_NOOP("VokGUI", "Time=End"), QT_TRANSLATE_NOOP("VokGUI", "Jump to Time=End\nJump to Time=End"), "", "End"},
    {72, QT_TRANSLATE_NOOP("VokGUI", "Tick Left"), QT_TRANSLATE_NOOP("VokGUI", "Jump to Tick Left\nJump to Tick Left"), "", "Left"},
    {73, QT_TRANSLATE_NOOP("VokGUI", "Tick Right"), QT_TRANSLATE_NOOP("VokGUI", "Jump to Tick Right\nJump to Tick Right"), "", "Right"},
    {74, QT_TRANSLATE_NOOP("VokGUI", "10 Left"), QT_TRANSLATE_NOOP("VokGUI", "Jump to 10 Left\nJump to 10 Left"), "", "Shift+Left"},
    {75, QT_TRANSLATE_NOOP("VokGUI", "10 Right"), QT_TRANSLATE_NOOP("VokGUI", "Jump to 10 Right\nJump to 10 Right"), "", "Shift+Right"},
    {91, QT_TRANSLATE_NOOP("VokGUI", "Options..."), QT_TRANSLATE_NOOP("VokGUI", "Options\nOptions"), "", ""},
    {92, QT_TRANSLATE_NOOP("VokGUI", "Export Image..."), QT_TRANSLATE_NOOP("VokGUI", "Export the View as PDF, SVG or PNG\nExport the View as PDF, SVG or PNG"), "", ""},
};

int CResource::getSize()
{
    return static_cast<int>(sizeof m_MenuInfo / sizeof m_MenuInfo[0]);
}

} // namespace kesu::toolvok
