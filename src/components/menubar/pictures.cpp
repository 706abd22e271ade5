#include "pictures.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr double CornerRadius = 2;

// clang-format off
constexpr Picture kPictures[] = {
    // --- files
    {"new"_L1, "M 13 3 L 5 3 L 5 21 L 19 21 L 19 9 L 13 3 L 13 9 L 19 9"_L1, "M 12 12 L 12 18 M 9 15 L 15 15"_L1},
    {"file"_L1, "M 13 3 L 5 3 L 5 21 L 19 21 L 19 9 L 13 3 L 13 9 L 19 9"_L1, ""_L1},
    {"text"_L1, "M 13 3 L 5 3 L 5 21 L 19 21 L 19 9 L 13 3 L 13 9 L 19 9"_L1, "M 8 13 L 16 13 M 8 17 L 13 17"_L1},
    {"module"_L1, "M 13 3 L 5 3 L 5 21 L 19 21 L 19 9 L 13 3 L 13 9 L 19 9"_L1, "M 10 12 L 8 15 L 10 18 M 14 12 L 16 15 L 14 18"_L1},
    {"open"_L1, "M 3 19 L 3 5 L 9 5 L 11 8 L 19 8 L 19 11"_L1, "M 3 19 L 7 11 L 22 11 L 18 19 Z"_L1},
    {"save"_L1, "M 4 4 L 16 4 L 20 8 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4"_L1, "M 8 20 L 8 14 L 16 14 L 16 20"_L1},
    {"saveall"_L1, "M 3 3 L 14 3 L 17 6 L 17 17 L 3 17 Z M 6 3 L 6 7 L 12 7 L 12 3 M 6 17 L 6 12 L 14 12 L 14 17"_L1, "M 20 7 L 20 20 L 7 20"_L1},
    {"layout"_L1, "R 3 4 18 16"_L1, "M 10 4 L 10 20 M 10 12 L 21 12"_L1},
    {"exit"_L1, "M 14 8 L 14 4 L 4 4 L 4 20 L 14 20 L 14 16"_L1, "M 9 12 L 21 12 M 17 8 L 21 12 L 17 16"_L1},
    {"delete"_L1, "M 4 6 L 20 6 M 9 6 L 9 3 L 15 3 L 15 6 M 6 6 L 7 21 L 17 21 L 18 6"_L1, "M 10 10 L 10 17 M 14 10 L 14 17"_L1},
    {"rename"_L1, "M 10 7 L 3 7 L 3 17 L 10 17 M 18 7 L 21 7 L 21 17 L 18 17"_L1, "M 14 4 L 14 20 M 12 4 L 16 4 M 12 20 L 16 20"_L1},
    {"recent"_L1, "O 12 12 9 9"_L1, "M 12 7 L 12 12 L 16 14"_L1},
    // --- printing
    {"print"_L1, "M 7 9 L 7 4 L 17 4 L 17 9 M 7 17 L 4 17 L 4 9 L 20 9 L 20 17 L 17 17"_L1, "M 7 14 L 17 14 L 17 20 L 7 20 Z"_L1},
    // --- editing
    {"edit"_L1, "M 4 20 L 5 15 L 16 4 L 20 8 L 9 19 Z"_L1, "M 13 7 L 17 11"_L1},
    {"undo"_L1, "M 4 9 L 14 9 Q 20 9 20 14 Q 20 19 14 19 L 9 19"_L1, "M 8 5 L 4 9 L 8 13"_L1},
    {"cut"_L1, "M 8 15 L 17 3 M 16 15 L 7 3"_L1, "O 6 18 3 3 O 18 18 3 3"_L1},
    {"copy"_L1, "M 16 8 L 16 4 L 4 4 L 4 16 L 8 16"_L1, "R 8 8 12 12"_L1},
    {"paste"_L1, "M 8 5 L 5 5 L 5 21 L 19 21 L 19 5 L 16 5 M 8 3 L 16 3 L 16 7 L 8 7 Z"_L1, "M 9 12 L 15 12 M 9 16 L 13 16"_L1},
    {"erase"_L1, "M 9 5 L 21 5 L 21 19 L 9 19 L 3 12 Z"_L1, "M 11 9 L 17 15 M 17 9 L 11 15"_L1},
    {"select"_L1, "M 3 7 L 3 3 L 7 3 M 11 3 L 13 3 M 17 3 L 21 3 L 21 7 M 21 11 L 21 13 M 21 17 L 21 21 L 17 21 M 13 21 L 11 21 M 7 21 L 3 21 L 3 17 M 3 13 L 3 11"_L1, ""_L1},
    {"selectall"_L1, "M 3 7 L 3 3 L 7 3 M 11 3 L 13 3 M 17 3 L 21 3 L 21 7 M 21 11 L 21 13 M 21 17 L 21 21 L 17 21 M 13 21 L 11 21 M 7 21 L 3 21 L 3 17 M 3 13 L 3 11"_L1, "M 7 8 L 17 8 M 7 12 L 17 12 M 7 16 L 14 16"_L1},
    {"selectnone"_L1, "M 3 7 L 3 3 L 7 3 M 11 3 L 13 3 M 17 3 L 21 3 L 21 7 M 21 11 L 21 13 M 21 17 L 21 21 L 17 21 M 13 21 L 11 21 M 7 21 L 3 21 L 3 17 M 3 13 L 3 11"_L1, "M 8 8 L 16 16 M 16 8 L 8 16"_L1},
    {"selectscreen"_L1, "R 3 4 18 14 M 8 21 L 16 21 M 12 18 L 12 21"_L1, "M 7 8 L 17 8 M 7 11 L 17 11 M 7 14 L 12 14"_L1},
    {"find"_L1, "O 10 10 7 7"_L1, "M 15 15 L 21 21"_L1},
    {"replace"_L1, "M 4 8 L 18 8 M 20 16 L 6 16"_L1, "M 14 4 L 18 8 L 14 12 M 10 12 L 6 16 L 10 20"_L1},
    {"again"_L1, "M 4 14 L 4 8 L 18 8 M 20 10 L 20 17 L 6 17"_L1, "M 15 5 L 18 8 L 15 11 M 9 14 L 6 17 L 9 20"_L1},
    // --- view
    {"view"_L1, "M 2 12 Q 7 5 12 5 Q 17 5 22 12 Q 17 19 12 19 Q 7 19 2 12 Z"_L1, "O 12 12 3 3"_L1},
    {"screen"_L1, "R 3 4 18 14 M 8 21 L 16 21"_L1, "M 12 18 L 12 21"_L1},
    {"wide"_L1, "R 2 6 20 12"_L1, "M 8 9 L 5 12 L 8 15 M 16 9 L 19 12 L 16 15 M 5 12 L 19 12"_L1},
    {"toolbar"_L1, "R 3 4 18 16 M 3 10 L 21 10"_L1, "D 7 7 D 11 7 D 15 7"_L1},
    {"statusbar"_L1, "R 3 4 18 16 M 3 15 L 21 15"_L1, "M 7 18 L 10 18 M 14 18 L 17 18"_L1},
    {"sessionbar"_L1, "M 3 10 L 3 20 L 21 20 L 21 10 Z"_L1, "M 4 10 L 4 5 L 11 5 L 11 10 M 14 10 L 14 6 L 19 6 L 19 10"_L1},
    {"funcbar"_L1, "R 2 7 20 10"_L1, "M 7 14 L 7 10 L 10 10 M 7 12 L 9 12 M 14 11 L 16 10 L 16 14"_L1},
    // --- tools
    {"tools"_L1, "M 14 6 Q 14 3 18 3 L 16 6 L 18 8 L 21 6 Q 22 10 18 11 L 15 11 L 6 20 Q 4 21 3 19 Q 2 18 4 17 L 13 9 Z"_L1, ""_L1},
    {"settings"_L1, "M 3 6 L 12 6 M 18 6 L 21 6 M 3 12 L 5 12 M 11 12 L 21 12 M 3 18 L 12 18 M 18 18 L 21 18"_L1, "O 15 6 2 2 O 8 12 2 2 O 15 18 2 2"_L1},
    {"upload"_L1, "M 4 16 L 4 20 L 20 20 L 20 16"_L1, "M 12 16 L 12 4 M 7 9 L 12 4 L 17 9"_L1},
    {"download"_L1, "M 4 16 L 4 20 L 20 20 L 20 16"_L1, "M 12 3 L 12 15 M 7 10 L 12 15 L 17 10"_L1},
    {"capture"_L1, "M 19 11 L 19 8 L 14 3 L 5 3 L 5 21 L 11 21 M 8 9 L 12 9 M 8 13 L 11 13"_L1, "O 17 18 4 4 D 17 18"_L1},
    {"dial"_L1, "M 5 4 L 9 4 L 11 9 L 8 11 Q 10 14 13 16 L 15 13 L 20 15 L 20 19 Q 18 21 14 20 Q 6 16 4 8 Q 3 5 5 4 Z"_L1, "M 14 4 Q 20 4 20 10 M 14 8 Q 16 8 16 10"_L1},
    {"script"_L1, "M 5 3 L 19 3 L 19 21 L 5 21 Z"_L1, "M 8 8 L 11 11 L 8 14 M 12 16 L 16 16"_L1},
    {"menudesign"_L1, "R 3 4 12 4 M 3 11 L 13 11 M 3 15 L 10 15 M 3 19 L 8 19"_L1, "M 12 21 L 13 17 L 19 11 L 22 14 L 16 20 Z"_L1},
    {"clone"_L1, "R 3 4 12 10 M 6 7 L 8 9 L 6 11"_L1, "M 19 9 L 21 9 L 21 20 L 9 20 L 9 18"_L1},
    {"reset"_L1, "M 5 10 Q 7 4 13 5 Q 20 6 20 12 Q 19 19 12 19 Q 7 19 5 15"_L1, "M 5 4 L 5 10 L 11 10"_L1},
    {"connect"_L1, "M 3 12 L 7 12 M 17 12 L 21 12 M 7 7 L 7 17 L 10 17 Q 13 16 13 12 Q 13 8 10 7 Z"_L1, "M 17 7 L 17 17 M 13 10 L 17 10 M 13 14 L 17 14"_L1},
    {"session"_L1, "R 3 4 18 16"_L1, "M 7 9 L 10 12 L 7 15 M 12 15 L 17 15"_L1},
    // --- macros
    {"macro"_L1, "M 4 5 L 20 5 M 4 10 L 11 10 M 4 15 L 9 15 M 4 20 L 9 20"_L1, "M 13 10 L 13 20 L 21 15 Z"_L1},
    {"run"_L1, ""_L1, "M 7 4 L 7 20 L 20 12 Z"_L1},
    {"pause"_L1, ""_L1, "R 6 4 4 16 R 14 4 4 16"_L1},
    {"stop"_L1, ""_L1, "R 5 5 14 14"_L1},
    {"record"_L1, "O 12 12 9 9"_L1, "O 12 12 4 4 D 12 12"_L1},
    // --- data of the host
    {"database"_L1, "O 12 6 8 3 M 4 6 L 4 18 Q 5 21 12 21 Q 19 21 20 18 L 20 6"_L1, "M 4 12 Q 5 15 12 15 Q 19 15 20 12"_L1},
    {"query"_L1, "R 3 4 18 16 M 3 9 L 21 9"_L1, "O 11 14 3 2.5 M 13 16 L 16 18"_L1},
    {"table"_L1, "R 3 4 18 16 M 3 9 L 21 9"_L1, "M 3 14 L 21 14 M 9 9 L 9 20"_L1},
    {"import"_L1, "M 10 4 L 20 4 L 20 20 L 10 20"_L1, "M 3 12 L 15 12 M 11 8 L 15 12 L 11 16"_L1},
    {"export"_L1, "M 14 4 L 4 4 L 4 20 L 14 20"_L1, "M 9 12 L 21 12 M 17 8 L 21 12 L 17 16"_L1},
    {"host"_L1, "R 4 3 16 8 R 4 13 16 8"_L1, "D 8 7 D 8 17 M 13 7 L 16 7 M 13 17 L 16 17"_L1},
    {"tally"_L1, "M 4 20 L 4 4 M 4 20 L 20 20"_L1, "M 8 16 L 8 12 M 12 16 L 12 6 M 16 16 L 16 9"_L1},
    // --- windows
    {"window"_L1, "R 3 4 18 16"_L1, "M 3 9 L 21 9"_L1},
    {"cascade"_L1, "M 15 8 L 15 4 L 3 4 L 3 13 L 7 13"_L1, "R 8 9 13 11"_L1},
    {"tilehorizontal"_L1, "R 3 4 18 16"_L1, "M 3 12 L 21 12"_L1},
    {"tilevertical"_L1, "R 3 4 18 16"_L1, "M 12 4 L 12 20"_L1},
    {"windowlist"_L1, "M 9 6 L 21 6 M 9 12 L 21 12 M 9 18 L 21 18"_L1, "R 3 4 3 3 R 3 10 3 3 R 3 16 3 3"_L1},
    {"maximize"_L1, "R 3 4 18 16"_L1, "M 13 8 L 17 8 L 17 12 M 17 8 L 7 16"_L1},
    {"activate"_L1, "R 3 4 18 16 M 3 9 L 21 9"_L1, "M 8 14 L 11 17 L 16 12"_L1},
    {"close"_L1, "M 6 6 L 18 18 M 18 6 L 6 18"_L1, ""_L1},
    {"closewindow"_L1, "R 3 4 18 16 M 3 9 L 21 9"_L1, "M 9 12 L 15 17 M 15 12 L 9 17"_L1},
    // --- help
    {"help"_L1, "O 12 12 9 9"_L1, "M 9 10 Q 9 7 12 7 Q 15 7 15 10 Q 15 12 12 13 L 12 14 D 12 17"_L1},
    {"question"_L1, "M 8 9 Q 8 4 12 4 Q 16 4 16 9 Q 16 12 12 13 L 12 15"_L1, "D 12 20"_L1},
    {"book"_L1, "M 12 6 Q 8 3 3 4 L 3 19 Q 8 18 12 21 Q 16 18 21 19 L 21 4 Q 16 3 12 6 Z"_L1, "M 12 6 L 12 21"_L1},
    {"topics"_L1, "M 9 6 L 20 6 M 9 12 L 20 12 M 9 18 L 20 18"_L1, "D 4 6 D 4 12 D 4 18"_L1},
    {"index"_L1, "M 3 18 L 7 6 L 11 18 M 4 14 L 10 14"_L1, "M 14 6 L 21 6 L 14 18 L 21 18"_L1},
    {"about"_L1, "O 12 12 9 9"_L1, "D 12 7 M 11 11 L 12 11 L 12 17 M 10 17 L 14 17"_L1},
    {"language"_L1, "O 12 12 9 9 M 3 12 L 21 12"_L1, "O 12 12 4 9"_L1},
    // --- states of a session
    {"keyboard"_L1, "R 2 6 20 12"_L1, "D 6 10 D 10 10 D 14 10 D 18 10 M 7 14 L 17 14"_L1},
    {"lock"_L1, "R 5 11 14 10"_L1, "M 8 11 L 8 8 Q 8 4 12 4 Q 16 4 16 8 L 16 11 M 12 15 L 12 17"_L1},
    {"signal"_L1, "M 4 20 L 4 16 M 10 20 L 10 12"_L1, "M 16 20 L 16 8 M 21 20 L 21 4"_L1},
    {"size"_L1, "R 3 4 18 16"_L1, "M 7 12 L 7 8 L 11 8 M 17 12 L 17 16 L 13 16"_L1},
    {"cursor"_L1, "M 12 3 L 12 8 M 12 16 L 12 21 M 3 12 L 8 12 M 16 12 L 21 12"_L1, "D 12 12"_L1},
    // --- badges
    {"+pencil"_L1, ""_L1, "M 3 21 L 4 15 L 15 4 L 20 9 L 9 20 Z"_L1},
    {"+clock"_L1, ""_L1, "O 12 12 10 10 M 12 6 L 12 13 L 17 13"_L1},
    {"+check"_L1, ""_L1, "M 3 13 L 9 20 L 21 5"_L1},
    {"+down"_L1, ""_L1, "M 12 3 L 12 20 M 4 12 L 12 20 L 20 12"_L1},
    {"+sliders"_L1, ""_L1, "M 2 7 L 22 7 M 2 17 L 22 17 M 8 3 L 8 11 M 16 13 L 16 21"_L1},
    {"+again"_L1, ""_L1, "M 20 5 L 20 11 L 14 11 M 19 11 Q 17 4 11 4 Q 3 5 3 12 Q 4 20 12 20 Q 16 20 19 17"_L1},
    {"+file"_L1, ""_L1, "M 5 2 L 14 2 L 19 8 L 19 22 L 5 22 Z"_L1},
    {"+question"_L1, ""_L1, "M 6 8 Q 6 3 12 3 Q 18 3 18 8 Q 18 12 12 14 M 12 20 L 12 21"_L1},
    {"+code"_L1, ""_L1, "M 8 4 L 1 12 L 8 20 M 16 4 L 23 12 L 16 20"_L1},
    {"+screen"_L1, ""_L1, "R 2 4 20 15"_L1},
};

constexpr NumberedPicture kNumbers[] = {
    {99, "view"_L1, ""_L1},           {100, "file"_L1, ""_L1},           {101, "new"_L1, ""_L1},
    {102, "module"_L1, ""_L1},        {103, "open"_L1, ""_L1},           {104, "closewindow"_L1, ""_L1},
    {105, "save"_L1, ""_L1},          {106, "save"_L1, "+pencil"_L1},    {107, "saveall"_L1, ""_L1},
    {108, "layout"_L1, "+down"_L1},   {109, "layout"_L1, "+pencil"_L1},  {110, "exit"_L1, ""_L1},
    {111, "delete"_L1, ""_L1},        {112, "rename"_L1, ""_L1},         {113, "recent"_L1, ""_L1},
    {150, "tools"_L1, ""_L1},         {154, "macro"_L1, ""_L1},          {201, "print"_L1, "+check"_L1},
    {202, "print"_L1, ""_L1},         {203, "print"_L1, "+sliders"_L1},  {300, "edit"_L1, ""_L1},
    {301, "undo"_L1, ""_L1},          {302, "cut"_L1, ""_L1},            {303, "copy"_L1, ""_L1},
    {304, "copy"_L1, "+clock"_L1},    {305, "paste"_L1, ""_L1},          {306, "paste"_L1, "+file"_L1},
    {307, "erase"_L1, ""_L1},         {308, "selectall"_L1, ""_L1},      {309, "find"_L1, ""_L1},
    {310, "replace"_L1, ""_L1},       {311, "again"_L1, ""_L1},          {312, "rename"_L1, ""_L1},
    {313, "paste"_L1, "+sliders"_L1}, {314, "selectscreen"_L1, ""_L1},   {316, "selectnone"_L1, ""_L1},
    {349, "select"_L1, ""_L1},        {350, "database"_L1, ""_L1},       {351, "database"_L1, "+sliders"_L1},
    {352, "query"_L1, ""_L1},         {353, "table"_L1, ""_L1},          {354, "import"_L1, ""_L1},
    {355, "export"_L1, ""_L1},        {375, "host"_L1, ""_L1},           {376, "host"_L1, "+down"_L1},
    {377, "host"_L1, "+again"_L1},    {378, "host"_L1, "+sliders"_L1},   {379, "host"_L1, "+pencil"_L1},
    {380, "tally"_L1, ""_L1},         {400, "help"_L1, ""_L1},           {401, "book"_L1, ""_L1},
    {402, "edit"_L1, "+question"_L1}, {403, "topics"_L1, ""_L1},         {404, "index"_L1, ""_L1},
    {405, "about"_L1, ""_L1},         {406, "language"_L1, ""_L1},       {410, "book"_L1, "+file"_L1},
    {411, "book"_L1, "+question"_L1}, {412, "book"_L1, "+code"_L1},      {414, "text"_L1, ""_L1},
    {415, "book"_L1, "+screen"_L1},   {500, "window"_L1, ""_L1},         {501, "cascade"_L1, ""_L1},
    {502, "tilehorizontal"_L1, ""_L1},{503, "tilevertical"_L1, ""_L1},   {505, "screen"_L1, ""_L1},
    {506, "wide"_L1, ""_L1},          {513, "script"_L1, ""_L1},         {514, "windowlist"_L1, ""_L1},
    {599, "maximize"_L1, ""_L1},      {601, "upload"_L1, ""_L1},         {602, "download"_L1, ""_L1},
    {603, "capture"_L1, ""_L1},       {611, "upload"_L1, ""_L1},         {612, "download"_L1, ""_L1},
    {704, "dial"_L1, ""_L1},          {705, "settings"_L1, ""_L1},       {706, "reset"_L1, ""_L1},
    {707, "session"_L1, "+again"_L1}, {708, "connect"_L1, "+again"_L1},  {711, "menudesign"_L1, ""_L1},
    {712, "clone"_L1, ""_L1},         {801, "run"_L1, ""_L1},            {802, "pause"_L1, ""_L1},
    {803, "stop"_L1, ""_L1},          {804, "record"_L1, ""_L1},         {805, "macro"_L1, "+pencil"_L1},
    {1101, "session"_L1, ""_L1},      {1102, "connect"_L1, ""_L1},       {1103, "signal"_L1, ""_L1},
    {1104, "size"_L1, ""_L1},         {1105, "print"_L1, ""_L1},         {1106, "capture"_L1, ""_L1},
    {1107, "cursor"_L1, ""_L1},       {1108, "keyboard"_L1, ""_L1},      {1109, "lock"_L1, ""_L1},
    {1201, "toolbar"_L1, ""_L1},      {1202, "statusbar"_L1, ""_L1},     {1203, "sessionbar"_L1, ""_L1},
    {1204, "funcbar"_L1, ""_L1},      {1301, "activate"_L1, ""_L1},      {1302, "maximize"_L1, ""_L1},
    {1303, "closewindow"_L1, ""_L1},  {1304, "clone"_L1, ""_L1},         {1305, "rename"_L1, ""_L1},
};
// clang-format on

// How a letter adds to a path, and how many numbers follow it.
struct Step
{
    char16_t letter;
    int count;
    void (*run)(QPainterPath& path, const double* n);
};

constexpr Step kSteps[] = {
    {u'M', 2, [](QPainterPath& path, const double* n) { path.moveTo(n[0], n[1]); }},
    {u'L', 2, [](QPainterPath& path, const double* n) { path.lineTo(n[0], n[1]); }},
    {u'Q', 4, [](QPainterPath& path, const double* n) { path.quadTo(n[0], n[1], n[2], n[3]); }},
    {u'O', 4, [](QPainterPath& path, const double* n) { path.addEllipse(QPointF(n[0], n[1]), n[2], n[3]); }},
    {u'R', 4,
     [](QPainterPath& path, const double* n) {
         const double radius = std::min({CornerRadius, n[2] / 4, n[3] / 4});
         path.addRoundedRect(n[0], n[1], n[2], n[3], radius, radius);
     }},
    {u'D', 2,
     [](QPainterPath& path, const double* n) {
         path.moveTo(n[0], n[1]);
         path.lineTo(n[0] + 0.01, n[1]); // a line's round end
     }},
    {u'Z', 0, [](QPainterPath& path, const double*) { path.closeSubpath(); }},
};

} // namespace

std::span<const Picture> Pictures() { return kPictures; }

std::span<const NumberedPicture> NumberedPictures() { return kNumbers; }

const Picture* FindPicture(QLatin1StringView name)
{
    const auto* at = std::find_if(std::begin(kPictures), std::end(kPictures),
                                  [name](const Picture& picture) { return picture.name == name; });
    return at != std::end(kPictures) ? at : nullptr;
}

QPainterPath ReadStrokes(QLatin1StringView text)
{
    QPainterPath path;
    const QStringList words = QString(text).split(u' ', Qt::SkipEmptyParts);
    for (qsizetype at = 0; at < words.size();) {
        const QChar letter = words[at++][0];
        for (const Step& step : kSteps) {
            if (letter != step.letter)
                continue;
            std::array<double, 4> numbers{};
            for (int i = 0; i < step.count; ++i)
                numbers[static_cast<std::size_t>(i)] = words[at++].toDouble();
            step.run(path, numbers.data());
        }
    }
    return path;
}

} // namespace kestrune
