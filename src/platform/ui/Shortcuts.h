#pragma once
// The keys of a standard command: the desktop's own bindings for it, and always the key
// users of every desktop know it by (some desktops bind no key to Save As or Quit).

#include <QKeySequence>
#include <QList>

namespace orvane {

inline QList<QKeySequence> StandardKeys(QKeySequence::StandardKey command, const QKeySequence& known) {
  QList<QKeySequence> keys = QKeySequence::keyBindings(command);
  if (!keys.contains(known)) keys.prepend(known);
  return keys;
}

}  // namespace orvane
