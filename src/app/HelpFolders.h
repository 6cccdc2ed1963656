#pragma once
// Where the help documents are found when the folder the program was started in has
// none of them.

#include <QString>
#include <QStringList>

namespace orvane {

// Beside the installed program (PREFIX/bin/orvane reads PREFIX/share/orvane/help), then
// the help folder of the source tree the program was built from; in that order.
QStringList HelpFolders(const QString& programFolder);

}  // namespace orvane
