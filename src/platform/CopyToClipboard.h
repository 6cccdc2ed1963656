#pragma once
// Copies a picture's whole client area to the clipboard as a bitmap, whatever user scale
// is set on it. The menu entries "Copy graph to clipboard", "Copy Left graph to
// clipboard" and "Copy Right graph to clipboard" call nothing else.

namespace orvane {

class Canvas;
class Dialogs;

// Always false: the callers have never looked at the result, and a clipboard that
// cannot take the image is not reported.
bool CopyToClipboard(Dialogs& dialogs, const Canvas& picture);

}  // namespace orvane
