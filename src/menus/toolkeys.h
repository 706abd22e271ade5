#pragma once

// The built-in tools by their symbolic keys: what the menu designer offers and what commands are called in tables.

#include <QString>

#include <array>
#include <string_view>

namespace kestrune {

struct ToolKey
{
    const char* name;
    int id;
};

inline constexpr std::array kToolKeys = std::to_array<ToolKey>({
    {"FILE_MENU", 100},
    {"FILE_NEW", 101},
    {"FILE_NEW_MODULE", 102},
    {"FILE_OPEN", 103},
    {"FILE_CLOSE", 104},
    {"FILE_SAVE", 105},
    {"FILE_SAVE_AS", 106},
    {"FILE_SAVE_ALL", 107},
    {"FILE_SAVE_LAYOUT", 108},
    {"FILE_SAVE_LAYOUT_AS", 109},
    {"FILE_EXIT", 110},
    {"FILE_DELETE", 111},
    {"FILE_RENAME", 112},
    {"FILE_RECENT", 113},
    {"PRINTER_ON", 201},
    {"PRINT_SCREEN", 202},
    {"PRINT_SETUP", 203},
    {"EDIT_MENU", 300},
    {"EDIT_UNDO", 301},
    {"EDIT_CUT", 302},
    {"EDIT_COPY", 303},
    {"EDIT_COPY_HIST", 304},
    {"EDIT_PASTE", 305},
    {"EDIT_PASTE_FROM", 306},
    {"EDIT_DELETE", 307},
    {"EDIT_SELECT_ALL", 308},
    {"EDIT_FIND", 309},
    {"EDIT_REPLACE", 310},
    {"EDIT_AGAIN", 311},
    {"EDIT_RENAME", 312},
    {"EDIT_PASTE_OPTIONS", 313},
    {"EDIT_SELECT_MENU", 349},
    {"EDIT_SELECT_SCREEN", 314},
    {"EDIT_SELECT_NONE", 316},
    {"VIEW_MENU", 99},
    {"VIEW_SCREEN_MODE", 506},
    {"VIEW_TOOLBAR", 1201},
    {"VIEW_STATUSBAR", 1202},
    {"VIEW_SESSIONBAR", 1203},
    {"VIEW_FUNCBAR", 1204},
    {"TOOLS_MENU", 150},
    {"TOOLS_UPLOAD", 601},
    {"TOOLS_DOWNLOAD", 602},
    {"TOOLS_CAPTURE", 603},
    {"TOOLS_UPLOAD_TB", 611},
    {"TOOLS_DOWNLOAD_TB", 612},
    {"TOOLS_AUTODIAL", 704},
    {"TOOLS_SETTINGS", 705},
    {"TOOLS_SCRIPT", 513},
    {"TOOLS_MENU_DESIGN", 711},
    {"TOOLS_CLONE_SESSION", 712},
    {"RESET_MENU", 706},
    {"RESET_TERMINAL", 707},
    {"RESET_CONNECTION", 708},
    {"MACRO_MENU", 154},
    {"MACRO_RUN", 801},
    {"MACRO_PAUSE", 802},
    {"MACRO_END", 803},
    {"MACRO_RECORD", 804},
    {"MACRO_EDIT", 805},
    {"MVTOOLS_MENU", 350},
    {"MVTOOLS_SETTINGS", 351},
    {"MVTOOLS_VQE", 352},
    {"MVTOOLS_GED", 353},
    {"MVTOOLS_IMPORT", 354},
    {"MVTOOLS_EXPORT", 355},
    {"MVTOOLS_HOST_MENU", 375},
    {"MVTOOLS_HOST_INSTALL", 376},
    {"MVTOOLS_HOST_UPDATE", 377},
    {"MVTOOLS_HOST_SETUP", 378},
    {"MVTOOLS_HOST_CONFIG", 379},
    {"MVTOOLS_TLY", 380},
    {"WINDOW_MENU", 500},
    {"WINDOW_CASCADE", 501},
    {"WINDOW_TILE_HORIZ", 502},
    {"WINDOW_TILE_VERT", 503},
    {"WINDOW_LIST", 514},
    {"WINDOW_MAXIMIZE", 599},
    {"HELP_MENU", 400},
    {"HELP_CONTENTS", 401},
    {"HELP_EDITOR_HELP", 402},
    {"HELP_TOPICS", 403},
    {"HELP_INDEX", 404},
    {"HELP_ABOUT", 405},
    {"HELP_LANGUAGE", 406},
    {"HELP_DOCUMENTATION", 410},
    {"HELP_USER_MANUAL", 411},
    {"HELP_VBA_MANUAL", 412},
    {"HELP_README", 414},
    {"HELP_GUI_MANUAL", 415},
    {"STAT_EMULATION", 1101},
    {"STAT_CONNECTION_TYPE", 1102},
    {"STAT_CONNECTION_STATUS", 1103},
    {"STAT_SCREEN_SIZE", 1104},
    {"STAT_PRINT_STATUS", 1105},
    {"STAT_CAPTURE_STATUS", 1106},
    {"STAT_CURSOR_LOCATION", 1107},
    {"STAT_KEYBOARD_LOCK", 1108},
    {"TABCTX_ACTIVATE", 1301},
    {"TABCTX_MAXIMIZE", 1302},
    {"TABCTX_CLOSE", 1303},
    {"TABCTX_CLONE", 1304},
    {"TABCTX_RENAME", 1305},
});

constexpr std::string_view ToolKeyName(int id) // empty: no built-in tool
{
    for (const ToolKey& key : kToolKeys)
        if (key.id == id)
            return key.name;
    return {};
}

QString ToolKeyTable(); // a line NAME=id for each, ended by CRLF

} // namespace kestrune
