#pragma once
// The stereo export file: the surface definition and every plot setting as text
// records, the user constants after them, and the two pictures as bitmaps beside it.
// The window reads such a file back.

#include <functional>
#include <string>
#include <vector>

#include "stereo/StereoSettings.h"

namespace orvane {

class Canvas;

// The magic of the first record.
inline constexpr std::string_view kStereoMagic = "STEREO";
// The one message of an import that is not a stereo file.
inline constexpr std::string_view kIncompatibleFile = "Incompatible file";

// The file's text, lines ended by CR LF: the settings as last read for a plot and the
// user constants as listed ("a=2.37").
std::string FormatStereoFile(const StereoSettings& settings, const std::vector<std::string>& constants);

// Writes the file through a temporary file beside it, renamed over the target, so that a
// failed write leaves any previous file intact. RuntimeError 75 when it cannot be written.
void WriteStereoFile(const std::string& path, const StereoSettings& settings,
                     const std::vector<std::string>& constants);

// Saves the two pictures as path + "_left.bmp" and path + "_right.bmp", and the
// red-cyan picture when one is given as path + "_anaglyph.bmp", each through a
// temporary file renamed over the target once all are written. Without persistent
// images (`persist` false) the pictures are switched to persistent, redrawn by
// `replot` (which composes the red-cyan picture again), saved, and switched back.
// RuntimeError 75 when a bitmap cannot be written; the previous bitmaps are then left
// as they were.
void SaveStereoPictures(Canvas& left, Canvas& right, const std::string& path, bool persist,
                        const std::function<void()>& replot, const Canvas* anaglyph = nullptr);

enum class ImportStatus {
  Ok,            // every setting and constant read
  Incompatible,  // not a stereo file: nothing changed
  Unreadable,    // the file cannot be opened: nothing changed
  Malformed,     // ends early or holds text where a value was expected
};

struct StereoImport {
  ImportStatus status = ImportStatus::Ok;
  // The fields to show: all of them read from the file when Ok; those read before the
  // fault when Malformed (the others as they were); unchanged otherwise.
  StereoFields fields;
  // The user constants read, in order, to register with the engine and list.
  std::vector<std::string> constants;
  // "Incompatible file", or which file, which line and what was expected there.
  std::string message;
  int line = 0;  // 1-based line of the fault; 0 when none
};

// Reads a stereo file onto `current` (the window's fields as they are).
StereoImport ReadStereoFile(const std::string& path, const StereoFields& current);
// The same from the file's text; `name` is used in messages.
StereoImport ParseStereoFile(const std::string& text, const std::string& name, const StereoFields& current);

}  // namespace orvane
