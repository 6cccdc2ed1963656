#include "platform/CopyToClipboard.h"

#include "platform/Canvas.h"
#include "platform/Dialogs.h"

namespace orvane {

bool CopyToClipboard(Dialogs& dialogs, const Canvas& picture) {
  // The client area in pixels; an empty picture has nothing to copy.
  const float width = picture.ScaleX(picture.ScaleWidth(), ScaleUnit::User, ScaleUnit::Pixels);
  const float height = picture.ScaleY(picture.ScaleHeight(), ScaleUnit::User, ScaleUnit::Pixels);
  if (width < 1 || height < 1) return false;
  dialogs.CopyPicture(picture);
  return false;
}

}  // namespace orvane
