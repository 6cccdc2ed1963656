#include "app/HelpFolders.h"

#include <QDir>

namespace orvane {

QStringList HelpFolders(const QString& programFolder) {
  return {QDir::cleanPath(QDir(programFolder).filePath(QStringLiteral(ORVANE_HELP_FROM_PROGRAM))),
          QStringLiteral(ORVANE_SOURCE_HELP)};
}

}  // namespace orvane
